# The manual pages that are installed, as man shows them.
if(GRAPHQL_API_INSTALL)
  find_program(MAN man REQUIRED)
  add_test(NAME ManualPagesAreWholeAndWithoutFault
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-manual-pages
      ${PROJECT_BINARY_DIR}/docs ${PROJECT_BINARY_DIR}/bookstore/completions/bookstore)
  set_tests_properties(ManualPagesAreWholeAndWithoutFault PROPERTIES LABELS install TIMEOUT 60)
endif()
