# The embedded object manager: repository and instances, the MOF reader, live Linux classes
# and CIM-XML, with all that they need from the system.
find_package(PkgConfig REQUIRED)
pkg_check_modules(INIH REQUIRED IMPORTED_TARGET inih)
pkg_check_modules(PROC2 REQUIRED IMPORTED_TARGET libproc2)
pkg_check_modules(MOUNT REQUIRED IMPORTED_TARGET mount)
pkg_check_modules(UDEV REQUIRED IMPORTED_TARGET libudev)
pkg_check_modules(SYSTEMD REQUIRED IMPORTED_TARGET libsystemd)
pkg_check_modules(ZSTD REQUIRED IMPORTED_TARGET libzstd)
pkg_check_modules(XXHASH REQUIRED IMPORTED_TARGET libxxhash)
pkg_check_modules(EXPAT REQUIRED IMPORTED_TARGET expat)
find_program(QORQL_FLATC flatc REQUIRED)

set(QORQL_GENERATED ${CMAKE_CURRENT_BINARY_DIR}/generated)
add_custom_command(OUTPUT ${QORQL_GENERATED}/MofCacheFormat_generated.h
                   COMMAND ${QORQL_FLATC} --cpp -o ${QORQL_GENERATED} ${CMAKE_CURRENT_SOURCE_DIR}/Cimom/Mof/MofCacheFormat.fbs
                   DEPENDS Cimom/Mof/MofCacheFormat.fbs VERBATIM)

file(GLOB QORQL_EMBEDDED_SOURCES CONFIGURE_DEPENDS Cimom/Embedded/*.cpp Cimom/Mof/*.cpp Cimom/Providers/*.cpp
     Cimom/CimXml/*.cpp)
add_library(embedded SHARED ${QORQL_EMBEDDED_SOURCES} ${QORQL_GENERATED}/MofCacheFormat_generated.h)
# Whoever links it finds it beside the object model.
set_target_properties(embedded PROPERTIES OUTPUT_NAME qorqlembedded INSTALL_RPATH "$ORIGIN")
target_include_directories(embedded SYSTEM PRIVATE ${QORQL_GENERATED})
target_link_libraries(embedded PUBLIC qorql_model
                               PRIVATE PkgConfig::INIH PkgConfig::PROC2 PkgConfig::MOUNT PkgConfig::UDEV PkgConfig::SYSTEMD
                                       PkgConfig::ZSTD PkgConfig::XXHASH PkgConfig::EXPAT)
qorql_library(embedded embedded)
