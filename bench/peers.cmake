# The peers: each is measured where its packages are installed. What their compilers make stays in the build tree.
set(peers ${CMAKE_CURRENT_BINARY_DIR}/peers)
file(MAKE_DIRECTORY ${peers}/asn1c)
add_custom_command(OUTPUT ${peers}/zyn.proto ${peers}/zyn.fbs ${peers}/zyn-flat.h
    COMMAND zyn-bench-schema ${peers} DEPENDS zyn-bench-schema VERBATIM)

find_program(ASN1C asn1c)
if(ASN1C)
  file(GLOB modules CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/records/*.asn1)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${modules})
  execute_process(COMMAND ${ASN1C} -fcompound-names ${modules} WORKING_DIRECTORY ${peers}/asn1c
      OUTPUT_QUIET ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB sources ${peers}/asn1c/*.c)
  list(FILTER sources EXCLUDE REGEX converter-sample)
  add_library(zyn-bench-asn1c STATIC ${sources})
  target_include_directories(zyn-bench-asn1c SYSTEM PUBLIC ${peers}/asn1c)
  # Its debug calls, which have an empty body but are made all the same, are compiled out.
  target_compile_options(zyn-bench-asn1c PRIVATE -w "-DASN_DEBUG(...)=((void)0)")
  target_sources(zyn-bench PRIVATE suite-asn1c.cpp)
  target_link_libraries(zyn-bench PRIVATE zyn-bench-asn1c)
else()
  message(STATUS "bench: no asn1c")
endif()

find_package(Protobuf)
if(Protobuf_FOUND AND Protobuf_PROTOC_EXECUTABLE)
  add_custom_command(OUTPUT ${peers}/zyn.pb.cc ${peers}/zyn.pb.h
      COMMAND ${Protobuf_PROTOC_EXECUTABLE} --proto_path ${peers} --cpp_out ${peers} zyn.proto
      DEPENDS ${peers}/zyn.proto VERBATIM)
  add_library(zyn-bench-protobuf STATIC ${peers}/zyn.pb.cc ${peers}/zyn.pb.h)
  target_include_directories(zyn-bench-protobuf SYSTEM PUBLIC ${peers} ${Protobuf_INCLUDE_DIRS})
  target_link_libraries(zyn-bench-protobuf PUBLIC ${Protobuf_LIBRARIES})
  target_sources(zyn-bench PRIVATE suite-protobuf.cpp)
  target_link_libraries(zyn-bench PRIVATE zyn-bench-protobuf)
else()
  message(STATUS "bench: no protobuf")
endif()

find_program(FLATC flatc)
find_path(FLATBUFFERS_INCLUDE flatbuffers/flatbuffers.h)
if(FLATC AND FLATBUFFERS_INCLUDE)
  add_custom_command(OUTPUT ${peers}/zyn_generated.h
      COMMAND ${FLATC} --cpp --cpp-std c++17 --gen-object-api --no-warnings -o ${peers} ${peers}/zyn.fbs
      DEPENDS ${peers}/zyn.fbs VERBATIM)
  add_library(zyn-bench-flatbuffers INTERFACE ${peers}/zyn_generated.h ${peers}/zyn-flat.h)
  target_include_directories(zyn-bench-flatbuffers SYSTEM INTERFACE ${peers} ${FLATBUFFERS_INCLUDE})
  target_sources(zyn-bench PRIVATE suite-flatbuffers.cpp)
  target_link_libraries(zyn-bench PRIVATE zyn-bench-flatbuffers)
  add_dependencies(zyn-bench zyn-bench-flatbuffers)
else()
  message(STATUS "bench: no FlatBuffers")
endif()
