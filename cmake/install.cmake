# What is installed, and where. Components, one Debian package each: runtime, dev, tools.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The build keeps debug information for profilers; what is installed is stripped.
install(CODE "set(CMAKE_INSTALL_DO_STRIP TRUE)" ALL_COMPONENTS)

set(libraries zyn zyn-static)
if(ZYN_JSON)
  list(APPEND libraries zyn-json zyn-json-static)
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL /usr)
    set_target_properties(zyn-json PROPERTIES INSTALL_RPATH $ORIGIN) # it needs zyn, which lies beside it
  endif()
else()
  set(no_json PATTERN json.h EXCLUDE)
endif()
install(TARGETS ${libraries} EXPORT zyn-targets
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE COMPONENT dev
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/zyn TYPE INCLUDE COMPONENT dev ${no_json})

# The protocol's modules, and all of them as one.
file(GLOB modules CONFIGURE_DEPENDS records/*.asn1 asn1/*.asn1)
install(FILES ${modules} DESTINATION ${CMAKE_INSTALL_DATADIR}/zyn/asn1 COMPONENT dev)
install(DIRECTORY examples TYPE DOC COMPONENT dev USE_SOURCE_PERMISSIONS)

# find_package(zyn CONFIG)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/zyn)
configure_package_config_file(cmake/zyn-config.cmake.in zyn-config.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(zyn-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zyn-config.cmake ${PROJECT_BINARY_DIR}/zyn-config-version.cmake
    DESTINATION ${package} COMPONENT dev)
install(EXPORT zyn-targets NAMESPACE zyn:: DESTINATION ${package} COMPONENT dev)

# pkg-config. Its files look from where they lie, so that what is installed may be moved.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
string(PREPEND pc_prefix "\${pcfiledir}/")
foreach(name includedir libdir)
  string(TOUPPER ${name} upper)
  set(pc_${name} "\${prefix}")
  cmake_path(APPEND pc_${name} ${CMAKE_INSTALL_${upper}})
endforeach()
foreach(library zyn zynjson)
  if(library STREQUAL zyn OR ZYN_JSON)
    configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
  endif()
endforeach()

# The tool, and what comes out of it (tools/zyn).
if(TARGET zyn-tool)
  set(ZYN_ZSH_FOLDER zsh/site-functions CACHE STRING "Where completions for zsh go, below share/")
  set(pages ${PROJECT_BINARY_DIR}/tools/zyn)
  install(TARGETS zyn-tool COMPONENT tools)
  install(FILES ${pages}/zyn.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${pages}/zyn.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME zyn COMPONENT tools)
  install(FILES ${pages}/_zyn DESTINATION ${CMAKE_INSTALL_DATADIR}/${ZYN_ZSH_FOLDER} COMPONENT tools)
  install(FILES ${pages}/zyn.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tools)
endif()
