# The completions as the shells themselves work with them, from the files that are installed.

foreach(shell bash zsh fish)
  find_program(${shell}_PROGRAM ${shell} REQUIRED)
endforeach()
foreach(completion bash:bookstore zsh:_bookstore fish:bookstore.fish)
  string(REPLACE ":" ";" completion ${completion})
  list(GET completion 0 shell)
  list(GET completion 1 file)
  add_test(NAME CompletionIn_${shell}
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-completion
      ${shell} ${PROJECT_BINARY_DIR}/bookstore/completions/${file})
  set_tests_properties(CompletionIn_${shell} PROPERTIES LABELS bookstore TIMEOUT 120)
endforeach()
