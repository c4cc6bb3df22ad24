// The object manager that the statements of one run are asked of.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SESSION_H
#define QORQL_TOOL_SESSION_H

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofError.h"
#include "Cimom/Mof/MofLoader.h"
#include "LiveClasses.h"
#include "SessionOptions.h"

// Made once, then opened. Keeps the options as they were then.
class Session {
 public:
  // Of a process that keeps one session to its end; or one of several, which becomes the process's own by takeOver().
  enum class Life { OfTheProcess, UntilReplaced };
  explicit Session(const SessionOptions& options, Life life = Life::OfTheProcess);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  // Reads configuration and MOF and adds the live classes. MOF files may build on
  // the classes of `commonMof`, which are there before them when they do. Live
  // classes that do not fit are reported at once, or when they are named. THROWS
  // QoriBaseException when one of them fails, or nothing is declared in the namespace.
  enum class LeftOut { TellAtOnce, TellWhenNamed };
  void open(const char* commonMof = nullptr, LeftOut leftOut = LeftOut::TellAtOnce);
  // Makes its object manager that of the process.
  void takeOver() { _manager->makeCurrent(); }
  // The warning about live classes that did not fit, once, if this is one of them.
  void tellOfLeftOut(std::string_view className);

  // Makes a loader do as the options say; what it leaves out is then told with tellOfFaults().
  void prepare(MofLoader& loader) const { loader.setLenient(_options.isLenient); }
  // Warns of what a lenient load has left out. THROWS QoriBaseException when that is refused.
  void tellOfFaults(const MofFaults& faults) const;

  // The servers that are asked; null: none are.
  RemoteServers* servers() noexcept { return _servers.get(); }
  // Tells of servers that were left out since they failed. Returns `status`, or the one for that where it was done.
  int settle(int status);

  // Before a statement: takes a new object manager where servers that failed may know more of the classes that were
  // declared without them. THROWS as open().
  void renew();

  // Until loadMore() or renew() is called the next time.
  EmbeddedObjectManager& manager() { return *_manager; }

  // Loads MOF into an open session. Where live classes do not fit beside it,
  // as a full CIM schema does, all is loaded again, the live classes last; so
  // it is where MOF with a fault is to be loaded leniently.
  // THROWS QoriBaseException; then everything is as it was.
  void loadMore(const std::string& path, const std::string& nameSpace);

  // What was logged while a statement ran, unless the log is printed at once:
  // shown as warnings after a statement that succeeded, forgotten after one
  // that failed, since the error says the same.
  void printWarnings();
  // Without those that it has printed before.
  void printNewWarnings();
  void dropWarnings() { _log->warnings.clear(); }

 private:
  struct MorePath {
    std::string path;
    std::string nameSpace;
  };

  // What the log's lines go to. The sink shares it: a thread may be writing one while the session ends.
  struct Log {
    std::optional<QORuint32> severity;  // of lines that are printed at once; none: they are warnings
    bool hidesRefusals = false;
    std::vector<std::string> warnings{};

    void take(const QORString& who, const QORString& message, QORuint32 lineSeverity);
  };

  void connectServers();
  bool hasLiveClasses() const { return !_options.hasNoLiveClasses && _servers == nullptr; }
  std::unique_ptr<EmbeddedObjectManager> makeManager();
  void loadConfiguration(EmbeddedObjectManager& manager) const;
  // The faults of a lenient load.
  MofFaults loadMof(EmbeddedObjectManager& manager) const;
  MofFaults loadFile(EmbeddedObjectManager& manager, const MorePath& file) const;
  void loadMofOver(const char* commonMof, const MofException& alone);
  void loadLeniently(const char* commonMof);
  void addLiveClasses(EmbeddedObjectManager& manager);
  void openAnew(const MorePath* last);
  void requireNamespace(bool hasCommonMof) const;

  const SessionOptions _options;
  const Life _life;
  const std::shared_ptr<Log> _log;
  std::shared_ptr<RemoteServers> _servers;  // null: none are asked
  bool _isIncomplete = false;               // a server was left out
  std::unique_ptr<EmbeddedObjectManager> _manager;
  std::vector<MorePath> _more;
  LeftOut _leftOutPolicy = LeftOut::TellAtOnce;
  LeftOutClasses _leftOut;      // that are still to be reported
  std::set<std::string> _told;  // by printNewWarnings
};

#endif
