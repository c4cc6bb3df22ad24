// What the program is busy with, for the progress line.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ACTIVITY_H
#define QORQL_TOOL_ACTIVITY_H

#include <mutex>
#include <string>
#include <utility>

// Any thread may set and read it.
class Activity {
 public:
  explicit Activity(std::string text) : _text(std::move(text)) {}

  void set(std::string text) {
    const std::lock_guard lock(_mutex);
    _text.swap(text);
  }
  std::string get() const {
    const std::lock_guard lock(_mutex);
    return _text;
  }

 private:
  mutable std::mutex _mutex;
  std::string _text;
};

#endif
