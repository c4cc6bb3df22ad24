// A disk that takes no more.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_SERVER_FULLDISK_H
#define QORQL_TESTS_UNIT_SERVER_FULLDISK_H

#include <sys/resource.h>

#include <csignal>

// No more than so many bytes can be written into a file meanwhile.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : _handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &_before);
    const rlimit limit{bytes, _before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &_before);
    std::signal(SIGXFSZ, _handler);
  }

 private:
  rlimit _before{};
  void (*_handler)(int);
};

#endif
