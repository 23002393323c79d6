# For CMAKE_PROJECT_TOP_LEVEL_INCLUDES: fails where a project looks for a package that the library
# does not need.
macro(refuse_other_packages method package)
  if(NOT "${package}" MATCHES "^([Bb]oost(_headers)?|jsoncpp|graphql_api)$")
    message(FATAL_ERROR "looks for the package ${package}, which the library does not need")
  endif()
endmacro()
cmake_language(SET_DEPENDENCY_PROVIDER refuse_other_packages SUPPORTED_METHODS FIND_PACKAGE)
