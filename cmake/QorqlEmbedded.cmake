# The embedded object manager: repository and instances, the MOF reader, live Linux classes,
# CIM-XML and servers that are asked, with all that they need from the system.
# SPDX-License-Identifier: Apache-2.0
find_package(PkgConfig REQUIRED)
pkg_check_modules(INIH REQUIRED IMPORTED_TARGET inih)
pkg_check_modules(PROC2 REQUIRED IMPORTED_TARGET libproc2)
pkg_check_modules(MOUNT REQUIRED IMPORTED_TARGET mount)
pkg_check_modules(UDEV REQUIRED IMPORTED_TARGET libudev)
pkg_check_modules(SYSTEMD REQUIRED IMPORTED_TARGET libsystemd)
pkg_check_modules(XXHASH REQUIRED IMPORTED_TARGET libxxhash)
pkg_check_modules(EXPAT REQUIRED IMPORTED_TARGET expat)
pkg_check_modules(APT REQUIRED IMPORTED_TARGET apt-pkg)
pkg_check_modules(CURL REQUIRED IMPORTED_TARGET libcurl)
pkg_check_modules(MICROHTTPD REQUIRED IMPORTED_TARGET libmicrohttpd)
pkg_check_modules(GNUTLS REQUIRED IMPORTED_TARGET gnutls)
pkg_check_modules(ZLIB REQUIRED IMPORTED_TARGET zlib)
pkg_check_modules(CRYPT REQUIRED IMPORTED_TARGET libcrypt)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
option(QORQL_RPM "Read rpm's database of packages, where librpm is there to build with" ON)
if(QORQL_RPM)
  pkg_check_modules(RPM IMPORTED_TARGET rpm)
endif()
find_program(QORQL_FLATC flatc REQUIRED)

set(QORQL_GENERATED ${CMAKE_CURRENT_BINARY_DIR}/generated)
add_custom_command(OUTPUT ${QORQL_GENERATED}/MofCacheFormat_generated.h
                   COMMAND ${QORQL_FLATC} --cpp -o ${QORQL_GENERATED} ${CMAKE_CURRENT_SOURCE_DIR}/Cimom/Mof/MofCacheFormat.fbs
                   DEPENDS Cimom/Mof/MofCacheFormat.fbs VERBATIM)

# The schema of the live classes is compiled in.
file(GLOB QORQL_SCHEMA CONFIGURE_DEPENDS Cimom/Providers/Schema/*.mof)
add_custom_command(OUTPUT ${QORQL_GENERATED}/LinuxSchema.cpp
                   COMMAND ${CMAKE_COMMAND} -DFOLDER=${CMAKE_CURRENT_SOURCE_DIR}/Cimom/Providers/Schema
                           -DOUTPUT=${QORQL_GENERATED}/LinuxSchema.cpp -P ${CMAKE_CURRENT_LIST_DIR}/QorqlSchema.cmake
                   DEPENDS ${QORQL_SCHEMA} ${CMAKE_CURRENT_LIST_DIR}/QorqlSchema.cmake VERBATIM)

file(GLOB QORQL_EMBEDDED_SOURCES CONFIGURE_DEPENDS Cimom/Embedded/*.cpp Cimom/Mof/*.cpp Cimom/Providers/*.cpp)
# As a target of its own, what is generated waits for none of the libraries that the object manager is linked with, and its
# sources are compiled before those are.
add_custom_target(embedded_generated DEPENDS ${QORQL_GENERATED}/MofCacheFormat_generated.h ${QORQL_GENERATED}/LinuxSchema.cpp)
add_library(embedded SHARED ${QORQL_EMBEDDED_SOURCES} ${QORQL_GENERATED}/MofCacheFormat_generated.h
                            ${QORQL_GENERATED}/LinuxSchema.cpp)
add_dependencies(embedded embedded_generated)
# Whoever links it finds it beside the object model.
set_target_properties(embedded PROPERTIES OUTPUT_NAME qorqlembedded INSTALL_RPATH "$ORIGIN")
target_include_directories(embedded SYSTEM PRIVATE ${QORQL_GENERATED})
target_link_libraries(embedded PUBLIC qorql_model
                               PRIVATE PkgConfig::INIH PkgConfig::PROC2 PkgConfig::MOUNT PkgConfig::UDEV PkgConfig::SYSTEMD
                                       PkgConfig::XXHASH ${CMAKE_DL_LIBS})
qorql_library(embedded embedded)
foreach(room Embedded Mof Providers)
  set(sources ${QORQL_EMBEDDED_SOURCES})
  list(FILTER sources INCLUDE REGEX "/Cimom/${room}/")
  qorql_compile_together(embedded embedded_${room} 32 ${sources})
endforeach()

# What reads the lists of packages, and what asks servers, is loaded when it is asked for: its libraries would slow down
# every start.
function(qorql_loaded_library target name source library)
  add_library(${target} MODULE ${source})
  set_target_properties(${target} PROPERTIES PREFIX lib OUTPUT_NAME ${name}
                                             LIBRARY_OUTPUT_DIRECTORY $<TARGET_FILE_DIR:embedded>/qorql)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PRIVATE ${library})
  qorql_target_options(${target})
endfunction()
qorql_loaded_library(qorql_apt qorqlapt Cimom/Providers/Apt/AptPackages.cpp PkgConfig::APT)
add_dependencies(embedded qorql_apt)
set(QORQL_LOADED_LIBRARIES qorql_apt)
if(TARGET PkgConfig::RPM)
  qorql_loaded_library(qorql_rpm qorqlrpm Cimom/Providers/Rpm/RpmPackages.cpp PkgConfig::RPM)
  add_dependencies(embedded qorql_rpm)
  list(APPEND QORQL_LOADED_LIBRARIES qorql_rpm)
endif()

# CIM-XML, and what asks servers with it. It is a part of the library that is loaded when a server is asked, of the one
# that serves, and of the tests.
file(GLOB QORQL_CIMXML_SOURCES CONFIGURE_DEPENDS Cimom/CimXml/*.cpp)
file(GLOB QORQL_REMOTE_SOURCES CONFIGURE_DEPENDS Cimom/Remote/*.cpp)
add_library(qorql_remote_parts STATIC ${QORQL_CIMXML_SOURCES} ${QORQL_REMOTE_SOURCES})
set_target_properties(qorql_remote_parts PROPERTIES EXCLUDE_FROM_ALL TRUE)
target_include_directories(qorql_remote_parts PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(qorql_remote_parts PUBLIC embedded PRIVATE PkgConfig::EXPAT ${CMAKE_DL_LIBS})
qorql_library_options(qorql_remote_parts)
qorql_product_headers(qorql_remote_parts)
qorql_compile_together(qorql_remote_parts cimxml 32 ${QORQL_CIMXML_SOURCES})
qorql_compile_together(qorql_remote_parts remote 32 ${QORQL_REMOTE_SOURCES})

qorql_loaded_library(qorql_http qorqlhttp Cimom/Remote/Http/HttpTransport.cpp PkgConfig::CURL)
qorql_loaded_library(qorql_remote qorqlremote Cimom/Remote/Module/RemoteModule.cpp qorql_remote_parts)
set_target_properties(qorql_remote PROPERTIES INSTALL_RPATH "$ORIGIN/..")
add_dependencies(qorql_remote qorql_http)
list(APPEND QORQL_LOADED_LIBRARIES qorql_http qorql_remote)

# What a server answers with. It is a part of the library that is loaded when a server or a listener is started, and of
# the tests.
file(GLOB QORQL_SERVER_SOURCES CONFIGURE_DEPENDS Cimom/Server/*.cpp)
add_library(qorql_server_parts STATIC ${QORQL_SERVER_SOURCES})
set_target_properties(qorql_server_parts PROPERTIES POSITION_INDEPENDENT_CODE ON EXCLUDE_FROM_ALL TRUE)
target_include_directories(qorql_server_parts PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(qorql_server_parts PUBLIC qorql qorql_remote_parts
                                     PRIVATE PkgConfig::MICROHTTPD PkgConfig::GNUTLS PkgConfig::ZLIB PkgConfig::CRYPT
                                                 PkgConfig::SQLITE PkgConfig::SYSTEMD)
qorql_target_options(qorql_server_parts)
qorql_compile_together(qorql_server_parts server 8 ${QORQL_SERVER_SOURCES})

# All of it that runs in the tool is loaded when a server or a listener is started.
add_library(qorql_server MODULE Cimom/Server/Module/ServerModule.cpp)
set_target_properties(qorql_server PROPERTIES PREFIX lib OUTPUT_NAME qorqlserver INSTALL_RPATH "$ORIGIN/.."
                                              LIBRARY_OUTPUT_DIRECTORY $<TARGET_FILE_DIR:embedded>/qorql)
target_link_libraries(qorql_server PRIVATE qorql_server_parts PkgConfig::SYSTEMD)
qorql_target_options(qorql_server)
list(APPEND QORQL_LOADED_LIBRARIES qorql_server)
