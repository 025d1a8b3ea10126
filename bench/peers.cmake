# The peers: each is measured where its packages are installed. What their compilers make stays in the build tree.
set(peers ${CMAKE_CURRENT_BINARY_DIR}/peers)
file(MAKE_DIRECTORY ${peers})
add_custom_command(OUTPUT ${peers}/zyn.proto ${peers}/zyn.fbs ${peers}/zyn-flat.h
    COMMAND zyn-bench-schema ${peers} DEPENDS zyn-bench-schema VERBATIM)

include(${PROJECT_SOURCE_DIR}/tools/asn1c.cmake)
if(ZYN_ASN1C)
  file(GLOB modules CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/records/*.asn1)
  zyn_add_asn1c(zyn-bench-asn1c ${modules})
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
