// The manual page, made from what the commands declare, as the help is.
// SPDX-License-Identifier: Apache-2.0
#include "ManualPage.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "Command.h"
#include "DeclaredOptions.h"
#include "SessionOptions.h"
#include "Version.h"

namespace {

std::string roff(const std::string& text) {
  std::string result;
  bool isLineStart = true;
  for (const char c : text) {
    if (isLineStart && (c == '.' || c == '\'')) result += "\\&";
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
    isLineStart = c == '\n';
  }
  return result;
}

std::string synopsis(const CLI::App& app) {
  std::string text = ".B " + roff(app.get_name()) + "\n[OPTIONS]";
  for (const CLI::Option* option : app.get_options()) {
    if (!isPositional(*option)) continue;
    const std::string name = option->get_name(true) + (isRepeatable(*option) ? "..." : "");
    text += option->get_required() ? " " + name : " [" + name + "]";
  }
  return text + "\n";
}

void printOption(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : namesOf(option)) names += (names.empty() ? "" : ", ") + ("\\fB" + roff(name) + "\\fR");
  if (isPositional(option)) names = "\\fI" + option.get_name(true) + "\\fR";
  if (takesValue(option) && !isPositional(option)) names += " \\fI" + roff(option.get_type_name()) + "\\fR";
  std::cout << ".TP\n" << names << '\n' << roff(option.get_description()) << '\n';
}

// The options that most commands have alike, declared apart from them.
class SessionPart {
 public:
  SessionPart() { declareSessionOptions(_app, _options); }
  const CLI::App& app() const noexcept { return _app; }
  bool has(const CLI::Option& option) const {
    const std::vector<std::string> names = namesOf(option);
    return !names.empty() && _app.get_option_no_throw(names.back()) != nullptr;
  }

 private:
  CLI::App _app;
  SessionOptions _options;
};

void printCommand(const Command& command, const SessionPart& session) {
  const DeclaredCommand declared = declareCommand(command);
  const CLI::App& app = *declared.app;
  std::cout << ".SS " << roff(app.get_name()) << '\n' << synopsis(app);
  std::cout << ".PP\n" << roff(app.get_description()) << '\n';
  for (const CLI::Option* option : app.get_options()) {
    if (option != app.get_help_ptr() && !session.has(*option)) printOption(*option);
  }
  std::cout << ".PP\n.nf\n" << roff(app.get_footer()) << "\n.fi\n";
}

constexpr const char* kEnvironment =
    ".SH ENVIRONMENT\n"
    ".TP\n\\fBQORQL_PAGER\\fR, else \\fBPAGER\\fR\n"
    "The pager for what is longer than the screen of a terminal; empty: none. Unless given, less where it is "
    "installed.\n"
    ".TP\n\\fBLESS\\fR\n"
    "The options of less; FRX unless given.\n";

constexpr const char* kFiles =
    ".SH FILES\n"
    ".TP\n\\fI$XDG_CACHE_HOME/qorql/\\fR, else \\fI~/.cache/qorql/\\fR\n"
    "What large MOF files declare; may be deleted at any time.\n"
    ".TP\n\\fI$XDG_STATE_HOME/qorql/history\\fR, else \\fI~/.local/state/qorql/history\\fR\n"
    "The statements of the shell.\n"
    ".TP\n\\fI~/.editrc\\fR\n"
    "The keys of the shell, see\n.BR editrc (5).\n";

}  // namespace

void printManualPage() {
  const SessionPart session;
  const DeclaredCommand first = declareCommand(allCommands().front());
  std::cout << ".TH QORQL 1 \"\" \"qorql " << roff(versionText()) << "\" \"User Commands\"\n"
            << ".SH NAME\nqorql \\- query CIM instances\n.SH SYNOPSIS\n"
            << synopsis(*first.app) << ".br\n.B qorql\n\\fICOMMAND\\fR [OPTIONS] ...\n"
            << ".SH OPTIONS\nEvery command except pages takes these; the others are listed with their command.\n";
  for (const CLI::Option* option : session.app().get_options()) {
    if (option != session.app().get_help_ptr()) printOption(*option);
  }
  printOption(*first.app->get_help_ptr());
  std::cout << ".SH COMMANDS\nWithout a command the first one runs.\n";
  for (const Command& command : allCommands()) printCommand(command, session);
  std::cout << kEnvironment << kFiles;
}
