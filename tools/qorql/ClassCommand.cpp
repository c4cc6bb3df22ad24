// One class, with what it needs to load again.
#include "ClassCommand.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "ClassesCommand.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "OptionChecks.h"
#include "Session.h"
#include "SessionOptions.h"

namespace {

constexpr const char* kDescription =
    "Prints a class as MOF text that loads again: the declarations of its qualifiers, its\n"
    "superclasses from the root on, and the class.";
constexpr const char* kFooter =
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
  std::cout << text;
  return kExitDone;
}

}  // namespace

CommandAction declareClassCommand(CLI::App& app) {
  const auto options = std::make_shared<ClassOptions>();
  app.description(kDescription);
  app.footer(kFooter);
  declareSessionOptions(app, options->session);
  declareFlag(app, "--alone", options->isAlone, "The class alone, without superclasses and qualifiers");
  app.add_option("NAME", options->name, "The class")->type_name(" ")->required();
  return [options] { return printClass(*options); };
}
