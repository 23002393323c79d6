# Defines graphql_api::graphql_api, the library, and graphql_api::platform, what a platform
# implementation declares; with the component "host" also graphql_api::host, the platform implementation
# of a development machine. A firmware leaves the component out and links its own.

include(CMakeFindDependencyMacro)
find_dependency(Boost 1.74)
if(NOT TARGET JsonCpp::JsonCpp)  # a package that cannot be found twice
  find_dependency(jsoncpp)
endif()

include("${CMAKE_CURRENT_LIST_DIR}/graphql_api-targets.cmake")

foreach(component IN LISTS graphql_api_FIND_COMPONENTS)
  if(component STREQUAL "host" AND EXISTS "${CMAKE_CURRENT_LIST_DIR}/graphql_api-host-targets.cmake")
    include("${CMAKE_CURRENT_LIST_DIR}/graphql_api-host-targets.cmake")
    set(graphql_api_host_FOUND TRUE)
    continue()
  endif()
  set(graphql_api_${component}_FOUND FALSE)
  if(graphql_api_FIND_REQUIRED_${component})
    set(graphql_api_FOUND FALSE)
    if(component STREQUAL "host")
      set(graphql_api_NOT_FOUND_MESSAGE "The component \"host\" is not installed. Install the Debian \
package graphql-api-host, or run \"cmake --install BUILD --component host\" in the project graphql_api.")
    else()
      set(graphql_api_NOT_FOUND_MESSAGE
        "There is no component \"${component}\". The only component is \"host\".")
    endif()
  endif()
endforeach()
