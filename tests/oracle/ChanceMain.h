// The main of a program that tries things by chance.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_CHANCEMAIN_H
#define QORQL_TESTS_CHANCEMAIN_H

#include <cstddef>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <utility>

#include "cmpbase.h"

template <class... Numbers, std::size_t... I>
int runByWords(char** words, int (*run)(Numbers...), std::index_sequence<I...> /*places*/) {
  return run(static_cast<Numbers>(std::strtoul(words[I], nullptr, 10))...);
}

// Calls `run` with the numbers that are the words of the command line, and gives
// its status; 2 for another number of words, and for an exception, which is told.
template <class... Numbers>
int mainByChance(int count, char** arguments, const char* usage, int (*run)(Numbers...)) {
  if (count != 1 + static_cast<int>(sizeof...(Numbers))) {
    std::cerr << "usage: " << usage << "\n";
    return 2;
  }
  try {
    return runByWords(arguments + 1, run, std::index_sequence_for<Numbers...>());
  } catch (const QoriBaseException& error) {
    std::cerr << error.getMessage() << "\n";
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
  }
  return 2;
}

#endif
