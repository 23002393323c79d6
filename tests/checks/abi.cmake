# The check of the binary interface must be able to fail.

if(NOT CMAKE_CROSSCOMPILING)
  find_program(ABIDIFF abidiff REQUIRED)
  add_test(NAME AbiCheckCatchesAnotherMemberOfARecord
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-abi-check
      ${PROJECT_SOURCE_DIR} ${CMAKE_CXX_COMPILER} ${PROJECT_BINARY_DIR}/graphql_api/exports.map)
  set_tests_properties(AbiCheckCatchesAnotherMemberOfARecord PROPERTIES LABELS unit TIMEOUT 300)
endif()
