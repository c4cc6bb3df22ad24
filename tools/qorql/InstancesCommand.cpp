// Instances, stored and live, as the object manager enumerates them.
// SPDX-License-Identifier: Apache-2.0
#include "InstancesCommand.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <utility>

#include "ClassesCommand.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "InstanceReader.h"
#include "OptionDeclarations.h"
#include "Pager.h"
#include "Session.h"
#include "SessionOptions.h"
#include "Statements.h"
#include "cimom/CIMApi.h"

namespace {

constexpr const char* kInstancesDescription =
    "Prints the instances of a class and its subclasses as MOF text, which loads again where the\n"
    "classes are declared; without CLASS all instances of the namespace, live ones among them.";
constexpr const char* kInstancesFooter =
    "With * ? [ ] in it, CLASS is a pattern for the names of classes; case does not matter.\n"
    "Exit status: 0 done; 1 there is no such class; 2 wrong usage; 3 MOF, configuration or provider\n"
    "failure, after which those of the other classes are printed all the same.\n"
    "\n"
    "Examples:\n"
    "  qorql instances Linux_OperatingSystem\n"
    "  qorql instances --no-live --mof model.mof";

struct InstancesOptions {
  SessionOptions session;
  std::string className;  // or a pattern; empty: all
};

class InstancePrinter {
 public:
  void print(const IQoriObject& instance) {
    if (!std::cout) return;
    if (!_isFirst) std::cout << '\n';
    _isFirst = false;
    std::cout << EmbeddedObjectManager::instanceMof(instance);
  }

 private:
  bool _isFirst = true;
};

// The classes that match and are not derived from one that does, so that no instance is printed twice. Associations
// come last, as a person reads them.
std::vector<QORString> familiesOf(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                  const std::string& pattern) {
  std::vector<QORString> names;
  for (const QORString& name : matchingClasses(manager, std::string(nameSpace.view()), pattern)) {
    QORString above = manager.superClassName(nameSpace, name);
    while (!above.isEmpty() && !isClassMatch(above, pattern)) above = manager.superClassName(nameSpace, above);
    if (above.isEmpty()) names.push_back(name);
  }
  std::stable_partition(names.begin(), names.end(),
                        [&](const QORString& name) { return !manager.isAssociation(nameSpace, name); });
  return names;
}

// What one class fails with is told beside what the others have.
int printMany(Session& session, const InstancesOptions& options, const QORString& nameSpace) {
  const std::vector<QORString> names = familiesOf(session.manager(), nameSpace, options.className);
  if (names.empty()) {
    return reportRefusal(noMatchText(session.manager(), options.session.nameSpace, options.className));
  }
  InstancePrinter printer;
  InstanceReader reader(session.manager(), nameSpace);
  std::optional<Pager> pager(std::in_place, !options.session.hasNoPager);
  for (const QORString& name : names) {
    reader.read(name, {}, [&](const IQoriObject& instance) { printer.print(instance); });
  }
  pager.reset();  // before anything is told
  std::cout.flush();
  return session.settle(reportGaps(reader.gaps(), options.session.isQuiet));
}

int printOne(Session& session, const InstancesOptions& options, const QORString& nameSpace) {
  const QORString className(options.className);
  if (session.manager().repository()->getClass(nameSpace, className).IsNull()) {
    return reportRefusal(missingClassText(session.manager(), options.session.nameSpace, options.className));
  }
  CIMApi api;
  const CIMApi::Instances instances =
      api.enumerateInstances(nameSpace, className, {}, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {});
  const Pager pager(!options.session.hasNoPager);
  InstancePrinter printer;
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*instances);
  while (std::cout && ++each) printer.print(*each.key());
  return session.settle(kExitDone);
}

int runInstances(const InstancesOptions& options) {
  Session session(options.session);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  const QORString nameSpace(options.session.nameSpace);
  const bool areMany = options.className.empty() || hasWildcard(options.className);
  int status = kExitDone;
  try {
    status = areMany ? printMany(session, options, nameSpace) : printOne(session, options, nameSpace);
  } catch (...) {
    session.dropWarnings();
    std::cout.flush();
    return reportFailure({});
  }
  session.printNewWarnings();  // a class that is asked again after a failure warns once more
  return status;
}

}  // namespace

CommandAction declareInstancesCommand(CLI::App& app) {
  const auto options = std::make_shared<InstancesOptions>();
  describeCommand(app, kInstancesDescription, kInstancesFooter);
  declareSessionOptions(app, options->session);
  declareNoPager(app, options->session.hasNoPager);
  declareValue(
      app,
      {.names = "CLASS", .description = "The class, or a pattern (default: all)", .take = keepIn(options->className)});
  return [options] { return runInstances(*options); };
}
