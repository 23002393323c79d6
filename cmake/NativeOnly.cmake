# Labels tests of the current folder that are meaningless in an emulator. "scripts/test --arm" skips and
# counts them. A comment beside each call gives the reason. Only CTest knows the tests of GoogleTest
# programs, so this function writes a file that CTest reads, which adds the label.
function(native_only)
  set(file ${CMAKE_CURRENT_BINARY_DIR}/native_only.cmake)
  file(WRITE ${file} "")
  foreach(name IN LISTS ARGN)
    if(TEST ${name})
      set_property(TEST ${name} APPEND PROPERTY LABELS native_only)
    else()
      file(APPEND ${file} "set_tests_properties([==[${name}]==] PROPERTIES LABELS native_only)\n")
    endif()
  endforeach()
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${file})
endfunction()
