add_test(NAME ReadmeTellsTheTruth
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-readme ${PROJECT_SOURCE_DIR})
set_tests_properties(ReadmeTellsTheTruth PROPERTIES LABELS unit TIMEOUT ${test_seconds})
