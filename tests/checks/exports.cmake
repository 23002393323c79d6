# What the built library shows to the dynamic linker.

add_test(NAME LibraryExportsItsInterfaceAndNothingElse
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-exports
    $<TARGET_FILE:graphql_api> ${PROJECT_SOURCE_DIR}/packaging/debian/libgraphql-api1.symbols)
set_tests_properties(LibraryExportsItsInterfaceAndNothingElse PROPERTIES
  LABELS unit TIMEOUT ${test_seconds})
