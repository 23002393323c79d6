# What the built library shows to the dynamic linker.

add_test(NAME LibraryExportsItsInterfaceAndNothingElse
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-exports
    $<TARGET_FILE:graphql_api> ${PROJECT_SOURCE_DIR}/packaging/debian/libgraphql-api1.symbols)
set_tests_properties(LibraryExportsItsInterfaceAndNothingElse PROPERTIES
  LABELS unit TIMEOUT ${test_seconds})

# What each set of platform libraries shows. Tests arrange the fake one with what is in its namespace.
function(add_platform_exports_test name ov_sdk orvane_utilities)
  add_test(NAME PlatformExportsItsDeclarationsAndNothingElse_${name}
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-platform-exports
      $<TARGET_FILE:${ov_sdk}> $<TARGET_FILE:${orvane_utilities}> ${ARGN})
  set_tests_properties(PlatformExportsItsDeclarationsAndNothingElse_${name} PROPERTIES
    LABELS unit TIMEOUT ${test_seconds})
endfunction()
add_platform_exports_test(host ov_sdk orvane_utilities)
add_platform_exports_test(example firmware_ov_sdk firmware_orvane_utilities)
add_platform_exports_test(fake fake_ov_sdk fake_orvane_utilities fake)
add_platform_exports_test(empty empty_ov_sdk empty_orvane_utilities)
