# Each public header alone: as C++11, which is what callers on a device may have, and the SDK's also
# as C. Building is the test.

set(headers
  graphql_api/GraphQLApi.h
  graphql_api/GraphQLHeader.h
  graphql_api/GraphQLSampleQueue.h
  graphql_api/GraphQLStorageApi.h
  orvane/utilities/BookStoreVersionProxy.h
  orvane/utilities/CfgWrapper.h
  orvane/utilities/HttpRequest.h
  orvane/utilities/HttpRequestRunner.h
  orvane/utilities/SerializationUtils.h
  orvane/utilities/Str.h
  ov_sdk.h
)

set(sources)
foreach(header IN LISTS headers)
  string(MAKE_C_IDENTIFIER ${header} name)
  file(CONFIGURE OUTPUT ${name}.cpp CONTENT "#include \"${header}\"\n")
  list(APPEND sources ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
endforeach()
file(CONFIGURE OUTPUT ov_sdk_as_c.c CONTENT "#include \"ov_sdk.h\"\n")

add_library(headers_alone OBJECT ${sources} ${CMAKE_CURRENT_BINARY_DIR}/ov_sdk_as_c.c
  RecordLayout.cpp)
set_target_properties(headers_alone PROPERTIES CXX_STANDARD 11 C_STANDARD 99 C_EXTENSIONS OFF)
target_include_directories(headers_alone PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(headers_alone PRIVATE platform JsonCpp::JsonCpp project_warnings)
