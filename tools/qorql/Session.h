// The object manager that the statements of one run are asked of.
#ifndef QORQL_TOOL_SESSION_H
#define QORQL_TOOL_SESSION_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofError.h"
#include "SessionOptions.h"

// Made once, then opened. BORROWS the options.
class Session {
 public:
  explicit Session(const SessionOptions& options);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  // Reads configuration and MOF and adds the live classes. MOF files may build on
  // the classes of `commonMof`, which are there before them when they do. THROWS
  // QoriBaseException when one of them fails.
  void open(const char* commonMof = nullptr);

  EmbeddedObjectManager& manager() { return _manager; }

  // What was logged while a statement ran, unless the log is printed at once:
  // shown as warnings after a statement that succeeded, forgotten after one
  // that failed, since the error says the same.
  void printWarnings();
  void dropWarnings() { _warnings.clear(); }

 private:
  void takeLogLine(const QORString& who, const QORString& message, QORuint32 severity);
  void loadConfiguration();
  void loadMof();
  void loadMofOver(const char* commonMof, const MofException& alone);
  void addLiveClasses();

  const SessionOptions& _options;
  EmbeddedObjectManager _manager;
  std::vector<std::string> _warnings;
};

#endif
