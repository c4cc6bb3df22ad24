// A systemd that a test plays over a socket pair: the other end of the providers' bus.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_PLAYEDSYSTEMD_H
#define QORQL_TESTS_PLAYEDSYSTEMD_H

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <array>
#include <thread>
#include <vector>

// Answers each call with `answer`, on a thread of its own for the time of one connection. BORROWS the context.
class PlayedSystemd {
 public:
  PlayedSystemd(sd_bus_message_handler_t answer, void* context) : _answer(answer), _context(context) {}
  PlayedSystemd(const PlayedSystemd&) = delete;
  PlayedSystemd& operator=(const PlayedSystemd&) = delete;
  ~PlayedSystemd() {
    for (std::thread& thread : _threads) thread.join();
  }

  // A connection as the provider makes it.
  sd_bus* connect() {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    _threads.emplace_back([this, end = ends[1]] { serve(end); });
    sd_bus* bus = nullptr;
    EXPECT_GE(sd_bus_new(&bus), 0);
    EXPECT_GE(sd_bus_set_fd(bus, ends[0], ends[0]), 0);
    EXPECT_GE(sd_bus_start(bus), 0);
    return bus;
  }

 private:
  void serve(int end) {
    sd_bus* bus = nullptr;
    sd_id128_t id{};
    id.bytes[0] = 1;
    EXPECT_GE(sd_bus_new(&bus), 0);
    EXPECT_GE(sd_bus_set_fd(bus, end, end), 0);
    EXPECT_GE(sd_bus_set_server(bus, 1, id), 0);
    EXPECT_GE(sd_bus_add_filter(bus, nullptr, _answer, _context), 0);
    EXPECT_GE(sd_bus_start(bus), 0);
    while (sd_bus_is_open(bus) > 0) {
      const int done = sd_bus_process(bus, nullptr);
      if (done < 0) break;
      if (done == 0 && sd_bus_wait(bus, UINT64_MAX) < 0) break;
    }
    sd_bus_close_unref(bus);
  }

  sd_bus_message_handler_t _answer;
  void* _context;
  std::vector<std::thread> _threads;
};

#endif
