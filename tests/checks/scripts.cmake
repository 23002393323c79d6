add_test(NAME SysrootInstallsAndUnpacksWhatIsNeeded
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-sysroot ${PROJECT_SOURCE_DIR})
set_tests_properties(SysrootInstallsAndUnpacksWhatIsNeeded PROPERTIES LABELS unit TIMEOUT ${test_seconds})
