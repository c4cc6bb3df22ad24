// One class, with what it needs to load again.
// SPDX-License-Identifier: Apache-2.0
#include "ClassCommand.h"

#include <iostream>

#include "ClassesCommand.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "OptionDeclarations.h"
#include "Pager.h"
#include "Session.h"
#include "SessionOptions.h"

namespace {

constexpr const char* kClassDescription =
    "Prints a class as MOF text that loads again: the declarations of its qualifiers, its\n"
    "superclasses from the root on, and the class.";
constexpr const char* kClassFooter =
    "Exit status: 0 done; 1 there is no such class; 2 wrong usage; 3 MOF or configuration failure.\n"
    "\n"
    "Example:\n"
    "  qorql class Linux_Process";

struct ClassOptions {
  SessionOptions session;
  std::string name;
  bool isAlone = false;
};

int printClass(const ClassOptions& options) {
  Session session(options.session);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  const std::string& nameSpace = options.session.nameSpace;
  const QORString text = session.manager().classMof(nameSpace.c_str(), options.name.c_str(), !options.isAlone);
  if (text.isNull()) return reportRefusal(missingClassText(session.manager(), nameSpace, options.name));
  const Pager pager(!options.session.hasNoPager);
  std::cout << text;
  return session.settle(kExitDone);
}

}  // namespace

CommandAction declareClassCommand(CLI::App& app) {
  const auto options = std::make_shared<ClassOptions>();
  describeCommand(app, kClassDescription, kClassFooter);
  declareSessionOptions(app, options->session);
  declareNoPager(app, options->session.hasNoPager);
  declareFlag(app, "--alone", options->isAlone, "The class alone, without superclasses and qualifiers");
  declareValue(app, {.names = "NAME", .description = "The class", .take = keepIn(options->name), .isRequired = true});
  return [options] { return printClass(*options); };
}
