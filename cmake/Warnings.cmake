# The target with the compiler warnings. Every target of this project links it privately. In other
# projects they are not errors: compilers that we do not test may warn of other things.
add_library(graphql_api_warnings INTERFACE)
target_compile_options(graphql_api_warnings INTERFACE
  -Wall -Wextra -Wpedantic
  -Wshadow       # a name that hides another name is easily misread
  -Wconversion   # type sizes differ between development machine and device
  $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror>
)
if(NOT GRAPHQL_API_LIBRARY_ONLY)  # a short name, which another project may have given
  add_library(project_warnings ALIAS graphql_api_warnings)
endif()
