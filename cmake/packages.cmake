# What `./do package` makes: Debian packages of what is installed, and an archive of the source.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The maintainers of zyn <zyn@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_COMPONENTS_GROUPING IGNORE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}) # zynjson finds zyn there
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(names libzyn${PROJECT_VERSION_MAJOR} libzyn-dev zyn-tools)
list(GET names 0 runtime)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${runtime} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The shared libraries that programs need: the codec, and its records as JSON.")
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "Headers, static libraries, CMake package, pkg-config files, examples,\nand the protocol's ASN.1 modules.")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
    "The program zyn shows messages, makes them out of JSON, compares them,\nand tells what is wrong with one.")

# The copyright file: our own line, and behind it the notices of the headers that the programs are made with.
file(READ COPYRIGHT copyright)
foreach(package rapidjson-dev libcli11-dev)
  set(notice /usr/share/doc/${package}/copyright)
  if(EXISTS ${notice})
    file(READ ${notice} text)
    string(APPEND copyright "\n---- Made with ${package}:\n\n${text}")
  endif()
endforeach()
file(WRITE ${PROJECT_BINARY_DIR}/copyright "${copyright}")
foreach(component package IN ZIP_LISTS CPACK_COMPONENTS_ALL names)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  install(FILES ${PROJECT_BINARY_DIR}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()

set(CPACK_SOURCE_GENERATOR TXZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME zyn-${PROJECT_VERSION})
set(CPACK_SOURCE_IGNORE_FILES "^${PROJECT_SOURCE_DIR}/build/" "/\\\\.git(/|$)")
include(CPack)
