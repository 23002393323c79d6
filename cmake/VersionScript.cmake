# Version scripts for the linker: a library exports the names of the script and nothing else.
# Visibility flags alone would still export the standard library's template instances.

# Lets `library` be linked with the version script `map`.
function(export_only library map)
  set_property(TARGET ${library} APPEND PROPERTY LINK_DEPENDS ${map})
  target_link_options(${library} PRIVATE -Wl,--version-script=${map})
endfunction()

# Writes the version script `map` with the names of the Debian symbols file `symbols`.
function(make_version_script symbols map)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${symbols})
  file(STRINGS ${symbols} lines)
  set(names "")
  set(cpp_names "")
  foreach(line IN LISTS lines)
    if(line MATCHES "^ \\(c\\+\\+\\)\"(.+)@Base\" [0-9.]+$")
      # The linker writes the streams of char in their short form, c++filt does not.
      string(REGEX REPLACE "std::basic_([a-z]*stream)<char, std::char_traits<char> >" "std::\\1"
        name "${CMAKE_MATCH_1}")
      string(APPEND cpp_names "      \"${name}\";\n")
    elseif(line MATCHES "^ ([A-Za-z_][A-Za-z0-9_]*)@Base [0-9.]+$")
      string(APPEND names "    ${CMAKE_MATCH_1};\n")
    elseif(NOT line MATCHES "^(#|\\* |lib[a-z_]+\\.so\\.)")
      message(FATAL_ERROR "${symbols}: cannot read the line '${line}'. Write an export as "
        "' NAME@Base VERSION' or ' (c++)\"DEMANGLED NAME@Base\" VERSION'.")
    endif()
  endforeach()
  if(names STREQUAL "" AND cpp_names STREQUAL "")
    message(FATAL_ERROR "${symbols}: names no export")
  endif()
  # Unchanged content keeps its date, and nothing is linked again.
  file(CONFIGURE OUTPUT ${map} @ONLY CONTENT
    "{\n  global:\n@names@    extern \"C++\" {\n@cpp_names@    };\n  local:\n    *;\n};\n")
endfunction()
