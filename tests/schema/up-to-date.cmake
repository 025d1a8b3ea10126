# Compiles the protocol's modules into the folder OUTPUT and compares with the files committed in SOURCE, so
# that neither a module, nor the compiler, nor a generated file can change alone.
file(REMOVE_RECURSE ${OUTPUT})
file(GLOB modules ${SOURCE}/records/*.asn1)
execute_process(
    COMMAND ${COMPILER} --headers ${OUTPUT}/include/zyn/records --rows ${OUTPUT}/records/generated
        --dump ${OUTPUT}/tests/golden/schema.txt --flat ${OUTPUT}/asn1/Zyn.asn1 ${modules}
    RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "zyn-schema ended with ${result}")
endif()

file(GLOB_RECURSE made RELATIVE ${OUTPUT} ${OUTPUT}/*)
file(GLOB committed RELATIVE ${SOURCE}
    ${SOURCE}/include/zyn/records.h ${SOURCE}/include/zyn/records/* ${SOURCE}/records/generated/* ${SOURCE}/asn1/*)
set(all ${made} ${committed})
list(REMOVE_DUPLICATES all)
foreach(file ${all})
  if(NOT EXISTS ${SOURCE}/${file})
    message(SEND_ERROR "${file} is not there yet; ./do generate makes it")
  elseif(NOT EXISTS ${OUTPUT}/${file})
    message(SEND_ERROR "${file} belongs to no module; delete it")
  else()
    file(SHA256 ${SOURCE}/${file} old)
    file(SHA256 ${OUTPUT}/${file} new)
    if(NOT old STREQUAL new)
      message(SEND_ERROR "${file} is out of date; ./do generate makes it again")
    endif()
  endif()
endforeach()
