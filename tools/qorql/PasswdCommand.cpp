// A password comes from the terminal, where it is asked for twice, or from standard input: arguments can be seen by
// everybody.
// SPDX-License-Identifier: Apache-2.0
#include "PasswdCommand.h"

#include <unistd.h>

#include <atomic>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "OptionDeclarations.h"
#include "PasswordPrompt.h"
#include "ServerLibrary.h"

namespace {

constexpr const char* kPasswdDescription =
    "Gives a user of \"qorql serve --users FILE\" a password, or takes the user out. The file is made\n"
    "when there is none.";

constexpr const char* kPasswdFooter =
    "The password is asked for at the terminal, or is the first line of standard input. The file\n"
    "keeps a hash of it alone (yescrypt). A server takes the change when it gets SIGHUP.\n"
    "\n"
    "Exit status: 0 done; 1 there is no such user, or no good password; 2 wrong usage; 3 the file\n"
    "cannot be read or written.\n"
    "\n"
    "Examples:\n"
    "  qorql passwd users anna\n"
    "  qorql passwd --delete users anna";

struct PasswdOptions {
  std::string file;
  std::string user;
  bool isDeleted = false;
};

// Nothing where it was not given the same twice.
std::optional<std::string> askTwice(const std::string& user) {
  static const std::atomic<bool> isStopped = false;
  const std::optional<std::string> password =
      askForPassword("New password of " + printableText(user) + ": ", isStopped);
  if (!password) return std::nullopt;
  const std::optional<std::string> again = askForPassword("The same again: ", isStopped);
  return again == password ? password : std::nullopt;
}

std::optional<std::string> readPassword(const std::string& user) {
  if (isatty(STDIN_FILENO) != 0) return askTwice(user);
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

int run(const PasswdOptions& options) {
  try {
    ServerModule& library = serverLibrary();
    if (options.isDeleted) {
      library.removeUser(options.file, options.user);
      return kExitDone;
    }
    const std::optional<std::string> password = readPassword(options.user);
    if (!password) return reportRefusal("there is no password, or it was not the same twice: nothing is changed");
    library.setPassword(options.file, options.user, *password);
    return kExitDone;
  } catch (const std::invalid_argument& refusal) {
    return reportRefusal(refusal.what());
  } catch (...) {
    return reportStartFailure();
  }
}

}  // namespace

CommandAction declarePasswdCommand(CLI::App& app) {
  const auto options = std::make_shared<PasswdOptions>();
  describeCommand(app, kPasswdDescription, kPasswdFooter);
  declareFlag(app, "--delete", options->isDeleted, "Take the user out of the file");
  declareValue(
      app,
      {.names = "FILE", .description = "The file of the users", .take = keepIn(options->file), .isRequired = true});
  declareValue(
      app, {.names = "USER", .description = "The name of the user", .take = keepIn(options->user), .isRequired = true});
  return [options] { return run(*options); };
}
