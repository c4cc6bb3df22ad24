# Warnings, sanitizers and coverage, the same for every target of our own.
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
  # Of the engine alone: the rest is built as the test preset builds it, and comes out of the compiler's cache.
  if(QORQL_COVERAGE AND target STREQUAL "qorql")
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -O0)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()

# The same for a library of our own: calls within it go straight to its own
# functions, and may be inlined, as clang has it without being told. Calls
# between libraries stay as they are.
function(qorql_library_options target)
  qorql_target_options(${target})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  endif()
endfunction()
