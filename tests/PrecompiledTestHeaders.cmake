# GoogleTest's headers take longer to read than most tests do: all programs that link it share one
# precompiled copy. The preset armhf has none, which shows that each test includes what it uses.
add_library(test_headers OBJECT ${CMAKE_CURRENT_BINARY_DIR}/test_headers.cpp)
file(CONFIGURE OUTPUT test_headers.cpp CONTENT "")
target_link_libraries(test_headers PRIVATE GTest::gmock project_warnings)
target_precompile_headers(test_headers PRIVATE
  <gmock/gmock.h> <gtest/gtest.h>
  <filesystem> <fstream> <functional> <map> <memory> <regex> <string> <thread> <vector>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # The same headers give the same file: a compiler cache compares it.
  target_compile_options(test_headers PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
endif()

function(use_precompiled_test_headers folder)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(libraries ${target} LINK_LIBRARIES)
    if(libraries MATCHES "GTest::" AND NOT target STREQUAL "test_headers")
      target_precompile_headers(${target} REUSE_FROM test_headers)
    endif()
  endforeach()
  get_property(subfolders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(subfolder IN LISTS subfolders)
    use_precompiled_test_headers(${subfolder})
  endforeach()
endfunction()
use_precompiled_test_headers(${CMAKE_CURRENT_SOURCE_DIR})
