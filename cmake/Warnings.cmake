# The one target that carries the warnings: everything of ours links it privately. In other projects
# they are not errors: compilers that we do not know warn of other things.
add_library(graphql_api_warnings INTERFACE)
target_compile_options(graphql_api_warnings INTERFACE
  -Wall -Wextra -Wpedantic
  -Wshadow       # a name that hides another one reads as the other one
  -Wconversion   # sizes differ between the desk and the device
  $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror>
)
if(NOT GRAPHQL_API_LIBRARY_ONLY)  # a short name, which another project may have given
  add_library(project_warnings ALIAS graphql_api_warnings)
endif()
