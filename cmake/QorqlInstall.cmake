# What `cmake --install` lays down: the libraries, their headers under include/qorql, and
# a package description, so that find_package(QORQL) gives QORQL::qorql and QORQL::embedded.
# SPDX-License-Identifier: Apache-2.0
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(qorql_headers ${CMAKE_INSTALL_INCLUDEDIR}/qorql)
set(qorql_package ${CMAKE_INSTALL_LIBDIR}/cmake/QORQL)

set(qorql_libraries qorql qorql_model)
if(QORQL_EMBEDDED)
  list(APPEND qorql_libraries embedded)
endif()
foreach(library ${qorql_libraries})
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${qorql_headers}>)
endforeach()
install(TARGETS ${qorql_libraries} EXPORT QORQLTargets)
qorql_install_headers(${qorql_headers} ${QORQL_PLATFORM_HEADERS} ${QORQL_ENGINE_HEADERS})
if(QORQL_EMBEDDED)
  qorql_install_headers(${qorql_headers} ${QORQL_EMBEDDED_HEADERS})
  install(TARGETS ${QORQL_LOADED_LIBRARIES} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/qorql)
endif()

install(EXPORT QORQLTargets NAMESPACE QORQL:: DESTINATION ${qorql_package})
install(FILES ${PROJECT_SOURCE_DIR}/cmake/QORQLConfig.cmake DESTINATION ${qorql_package})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/QORQLConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QORQLConfigVersion.cmake DESTINATION ${qorql_package})

# For pkg-config; the files find their prefix from where they lie.
set(qorql_pc_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH qorql_prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH qorql_libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH qorql_includedir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR}/qorql)
function(qorql_install_pc qorql_pc_name qorql_pc_description qorql_pc_requires)
  set(file ${CMAKE_CURRENT_BINARY_DIR}/${qorql_pc_name}.pc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/qorql.pc.in ${file} @ONLY)
  install(FILES ${file} DESTINATION ${qorql_pc_folder})
endfunction()
qorql_install_pc(qorql "Query engine for CIM object managers" "")
qorql_install_pc(qorqlmodel "Values, types and objects of CIM for the query engine" "")
if(QORQL_EMBEDDED)
  qorql_install_pc(qorqlembedded "CIM object manager in the process, for the query engine" qorqlmodel)
endif()

if(QORQL_TOOL)
  # The tool finds its libraries wherever the prefix is put.
  file(RELATIVE_PATH qorql_libraries_from_tool ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(qorql_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${qorql_libraries_from_tool}")
  install(TARGETS qorql_tool)
  # What runs it as a server; systemd looks for its files in the same place on every machine.
  set(qorql_service ${PROJECT_SOURCE_DIR}/tools/qorql/service)
  install(FILES ${qorql_service}/qorql.service DESTINATION lib/systemd/system)
  install(FILES ${qorql_service}/qorql.sysusers DESTINATION lib/sysusers.d RENAME qorql.conf)
  install(FILES ${qorql_service}/server.ini DESTINATION ${CMAKE_INSTALL_DATADIR}/qorql)
endif()
