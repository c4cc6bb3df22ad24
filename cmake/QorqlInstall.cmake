# What `cmake --install` lays down: the libraries, their headers under include/qorql, and
# a package description, so that find_package(QORQL) gives QORQL::qorql and QORQL::embedded.
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
  target_compile_features(${library} INTERFACE cxx_std_20)
endforeach()
install(TARGETS ${qorql_libraries} EXPORT QORQLTargets)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${qorql_headers} FILES_MATCHING PATTERN "*.h")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Cimom DESTINATION ${qorql_headers} FILES_MATCHING PATTERN "*.h")

install(EXPORT QORQLTargets NAMESPACE QORQL:: DESTINATION ${qorql_package})
install(FILES ${PROJECT_SOURCE_DIR}/cmake/QORQLConfig.cmake DESTINATION ${qorql_package})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/QORQLConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QORQLConfigVersion.cmake DESTINATION ${qorql_package})

if(QORQL_TOOL)
  # The tool finds its libraries wherever the prefix is put.
  file(RELATIVE_PATH qorql_libraries_from_tool ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(qorql_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${qorql_libraries_from_tool}")
  install(TARGETS qorql_tool)
endif()
