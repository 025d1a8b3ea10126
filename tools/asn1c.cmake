# zyn_add_asn1c(target modules... [OPTIONS options...]) makes a static library of what asn1c generates from ASN.1 modules.
# It is generated while configuring, because only then are its sources known; ZYN_ASN1C tells whether asn1c is there.
find_program(ZYN_ASN1C asn1c)

function(zyn_add_asn1c target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" OPTIONS)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target})
  file(REMOVE_RECURSE ${folder})
  file(MAKE_DIRECTORY ${folder})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${arg_UNPARSED_ARGUMENTS})
  execute_process(COMMAND ${ZYN_ASN1C} -fcompound-names ${arg_OPTIONS} ${arg_UNPARSED_ARGUMENTS}
      WORKING_DIRECTORY ${folder} OUTPUT_QUIET ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB sources ${folder}/*.c)
  list(FILTER sources EXCLUDE REGEX converter-sample)
  # Its run-time needs a unit for each file; what it makes of types does not, and there are hundreds.
  set(runtime ${sources})
  list(FILTER runtime EXCLUDE REGEX "/(Asn|Zyn)[A-Za-z]+\\.c$")
  set_source_files_properties(${runtime} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  add_library(${target} STATIC EXCLUDE_FROM_ALL ${sources})
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 50)
  target_include_directories(${target} SYSTEM PUBLIC ${folder})
  # Its debug calls, which have an empty body but are made all the same, are compiled out.
  target_compile_options(${target} PRIVATE -w "-DASN_DEBUG(...)=((void)0)")
endfunction()
