# find_package(QORQL [COMPONENTS qorql model embedded]): the libraries that are installed, each
# as QORQL::name. A component that is not there leaves the package not found.
# SPDX-License-Identifier: Apache-2.0
include(${CMAKE_CURRENT_LIST_DIR}/QORQLTargets.cmake)
foreach(component ${QORQL_FIND_COMPONENTS})
  if(TARGET QORQL::${component})
    set(QORQL_${component}_FOUND TRUE)
  elseif(QORQL_FIND_REQUIRED_${component})
    set(QORQL_FOUND FALSE)
    set(QORQL_NOT_FOUND_MESSAGE "QORQL::${component} is not installed")
  endif()
endforeach()
