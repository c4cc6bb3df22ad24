# Run by each build: writes OUTPUT from INPUT with the version and the commit of SOURCE,
# when they have changed. A tree without git has no commit, and none is told where SOURCE is empty.
# SPDX-License-Identifier: Apache-2.0
find_package(Git QUIET)
set(QORQL_VERSION_TEXT ${VERSION})
if(GIT_FOUND AND SOURCE AND EXISTS ${SOURCE}/.git)
  execute_process(COMMAND ${GIT_EXECUTABLE} -C ${SOURCE} describe --always --abbrev=12 --dirty=+ --exclude=*
                  OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE status)
  if(status EQUAL 0)
    string(APPEND QORQL_VERSION_TEXT " (${commit})")
  endif()
endif()
configure_file(${INPUT} ${OUTPUT} @ONLY)
