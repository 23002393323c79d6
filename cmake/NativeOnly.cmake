# Labels tests of the current folder that mean nothing where ARM programs run in an emulator, which
# "scripts/test --arm" leaves out and counts. The reason stands beside each call. The tests of
# GoogleTest programs are known to CTest only, which reads the file that is written here, and adds the
# label to those that a test has.
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
