add_test(NAME TestPresetsRunTheTestsOfTheirBuild
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-presets ${PROJECT_SOURCE_DIR})
set_tests_properties(TestPresetsRunTheTestsOfTheirBuild PROPERTIES LABELS unit TIMEOUT ${test_seconds})
