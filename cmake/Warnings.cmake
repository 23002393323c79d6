# The one target that carries the warnings: everything of ours links it privately.
add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
  -Wall -Wextra -Wpedantic
  -Wshadow       # a name that hides another one reads as the other one
  -Wconversion   # sizes differ between the desk and the device
  -Werror
)
