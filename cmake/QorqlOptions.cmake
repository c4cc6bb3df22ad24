# Warnings, sanitizers, coverage, precompiled headers and sources that are compiled together, the same for every target of
# our own.
# SPDX-License-Identifier: Apache-2.0
function(qorql_target_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion)
  # g++ 12 sees overlapping copies inside its own std::string when it optimises.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(QORQL_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(QORQL_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${QORQL_SANITIZE} -fno-omit-frame-pointer
                                             -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${QORQL_SANITIZE})
  endif()
  if(QORQL_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    target_link_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  # g++ tidies its memory up from 128 MB on, which takes a tenth of the time of large sources: a tenth more memory is less.
  if(QORQL_COMPILE_TOGETHER AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE --param=ggc-min-heapsize=524288)
  endif()
  # Of the engine alone: the rest is built as the test preset builds it, and comes out of the compiler's cache.
  if(QORQL_COVERAGE AND target STREQUAL "qorql")
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -O0)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()

# The same for a library of our own: calls within it go straight to its own
# functions, and may be inlined, as clang has it without being told. Calls
# between libraries stay as they are. A virtual call is made as it is written: g++ would compare its target with the one
# that it knows first, while objects are nearly always those of another library.
function(qorql_library_options target)
  qorql_target_options(${target})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fno-semantic-interposition -fno-devirtualize-speculatively)
  endif()
endfunction()

# Most of the compiler's time goes into reading the standard library's headers again for each
# source: what half of our sources include is read once for a target. <iostream> stays out, since
# it leaves something to be initialised in each of them. -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON
# has each source read as it is written.
function(qorql_precompile_headers target)
  target_precompile_headers(${target} PRIVATE
    <algorithm> <array> <atomic> <charconv> <functional> <limits> <map> <memory> <mutex> <optional> <set> <sstream>
    <string> <string_view> <unordered_map> <unordered_set> <utility> <vector> ${ARGN})
  # The compiler's cache wants it.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  endif()
endfunction()

# The same for a library or program of ours, but in builds that look for wrong addresses, where
# a source that lacks an include is seen, and in a project that has ours as a part. In builds that are to be done soon
# all of them share what qorql_headers has read.
function(qorql_product_headers target)
  if(TARGET qorql_headers)
    target_precompile_headers(${target} REUSE_FROM qorql_headers)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_compile_options(${target} PRIVATE -fpch-preprocess)
    endif()
  elseif(PROJECT_IS_TOP_LEVEL AND NOT QORQL_SANITIZE MATCHES "address")
    qorql_precompile_headers(${target} ${ARGN})
  endif()
endfunction()

# Compiles these sources as one, so that the headers they share, and templates that all of them use, are dealt with once.
# Names that no other source sees must differ, too: within a few sources they do, or the compiler says where they do not.
function(qorql_compile_as_one target group)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  set_source_files_properties(${ARGN} PROPERTIES UNITY_GROUP ${group})
  # g++ takes the one source of a class for a header when another source includes it.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
  endif()
endfunction()

# The same for all sources of a folder, at most so many at a time, where a build is to be done soon
# (QORQL_COMPILE_TOGETHER) rather than a change to be built soon. With 32 the compiler has a fifth less
# to do than with eight; names must differ within more sources.
function(qorql_compile_together target group most)
  if(QORQL_COMPILE_TOGETHER)
    set(number 0)
    while(ARGN)
      list(SUBLIST ARGN 0 ${most} some)
      list(REMOVE_ITEM ARGN ${some})
      qorql_compile_as_one(${target} ${group}_${number} ${some})
      math(EXPR number "${number} + 1")
    endwhile()
  endif()
endfunction()
