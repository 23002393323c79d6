add_test(NAME LicenceIsTheSameEverywhere
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-licence ${PROJECT_SOURCE_DIR})
set_tests_properties(LicenceIsTheSameEverywhere PROPERTIES LABELS unit TIMEOUT ${test_seconds})
