// A line on the terminal that shows progress while something takes long.
// SPDX-License-Identifier: Apache-2.0
#include "ProgressLine.h"

#include <chrono>
#include <iostream>

#include "DisplayText.h"
#include "Terminal.h"

ProgressLine::ProgressLine(bool isWanted, const Activity& activity) : _activity(activity) {
  if (isWanted && standardErrorShape().isTerminal) _thread = std::thread([this] { countSeconds(); });
}

ProgressLine::~ProgressLine() {
  if (!_thread.joinable()) return;
  {
    const std::lock_guard lock(_mutex);
    _isOver = true;
  }
  _changed.notify_one();
  _thread.join();
}

void ProgressLine::countSeconds() {
  std::unique_lock lock(_mutex);
  unsigned seconds = 0;
  while (!_changed.wait_for(lock, std::chrono::seconds(1), [this] { return _isOver; })) {
    const std::string line = "qorql: " + std::to_string(++seconds) + " s, " + printableText(_activity.get()) + " ...";
    const std::string shown = '\r' + cutText(line, standardErrorShape().width - 1, "...") + "\033[K";
    std::cerr << shown << std::flush;
  }
  if (seconds != 0) std::cerr << "\r\033[K" << std::flush;
}
