add_test(NAME FoldersIncludeOnlyWhatTheyMay
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-boundaries ${PROJECT_SOURCE_DIR})
set_tests_properties(FoldersIncludeOnlyWhatTheyMay PROPERTIES LABELS unit TIMEOUT ${test_seconds})
