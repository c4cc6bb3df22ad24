// A line on the terminal that shows progress while something takes long.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PROGRESSLINE_H
#define QORQL_TOOL_PROGRESSLINE_H

#include <condition_variable>
#include <mutex>
#include <thread>

#include "Activity.h"

// While it lives, and after the first second: a line on standard error that
// counts the seconds and names the activity; erased at the end. Does nothing
// unless it is wanted and standard error is a terminal. BORROWS the activity.
class ProgressLine {
 public:
  ProgressLine(bool isWanted, const Activity& activity);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

 private:
  void countSeconds();

  const Activity& _activity;
  std::mutex _mutex;
  std::condition_variable _changed;
  bool _isOver = false;
  std::thread _thread;
};

#endif
