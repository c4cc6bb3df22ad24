// A sign of life on the terminal while a statement takes long.
#include "ProgressLine.h"

#include <unistd.h>

#include <chrono>
#include <iostream>

ProgressLine::ProgressLine(bool isWanted) {
  if (isWanted && isatty(STDERR_FILENO) != 0) _thread = std::thread([this] { countSeconds(); });
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
    std::cerr << "\rqorql: " << ++seconds << " s ..." << std::flush;
  }
  if (seconds != 0) std::cerr << "\r\033[K" << std::flush;
}
