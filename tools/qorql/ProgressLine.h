// A sign of life on the terminal while a statement takes long.
#ifndef QORQL_TOOL_PROGRESSLINE_H
#define QORQL_TOOL_PROGRESSLINE_H

#include <condition_variable>
#include <mutex>
#include <thread>

// While it lives: from the second second on, a line on standard error that
// counts the seconds; wiped out at the end. Does nothing unless it is wanted
// and standard error is a terminal.
class ProgressLine {
 public:
  explicit ProgressLine(bool isWanted);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

 private:
  void countSeconds();

  std::mutex _mutex;
  std::condition_variable _changed;
  bool _isOver = false;
  std::thread _thread;
};

#endif
