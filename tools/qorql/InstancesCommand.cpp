// Instances, stored and live, as the object manager enumerates them.
// SPDX-License-Identifier: Apache-2.0
#include "InstancesCommand.h"

#include <algorithm>
#include <iostream>

#include "ClassFamily.h"
#include "ClassesCommand.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "ModelContents.h"
#include "OptionDeclarations.h"
#include "Session.h"
#include "SessionOptions.h"
#include "Statements.h"
#include "cimom/CIMApi.h"

namespace {

constexpr const char* kDescription =
    "Prints the instances of a class and its subclasses as MOF text, which loads again where the\n"
    "classes are declared; without CLASS all instances of the namespace, live ones among them.";
constexpr const char* kFooter =
    "With * ? [ ] in it, CLASS is a pattern for the names of classes; case does not matter.\n"
    "Exit status: 0 done; 1 there is no such class; 2 wrong usage; 3 MOF, configuration or provider\n"
    "failure, which of several classes is a warning.\n"
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
  explicit InstancePrinter(const QORString& nameSpace) : _nameSpace(nameSpace) {}

  // THROWS what enumerating throws.
  void print(const QORString& className) {
    CIMApi api;
    const CIMApi::Instances instances =
        api.enumerateInstances(_nameSpace, className, {}, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {});
    QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*instances);
    while (std::cout && ++each) {
      if (!_isFirst) std::cout << '\n';
      _isFirst = false;
      std::cout << EmbeddedObjectManager::instanceMof(*each.key());
    }
  }

 private:
  const QORString& _nameSpace;
  bool _isFirst = true;
};

// The classes that match and are not derived from one that does, so that no instance is printed twice. Associations
// come last, as a person reads them.
std::vector<QORString> familiesOf(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                  const std::string& pattern) {
  const ClassFamily family(manager, nameSpace);
  std::vector<QORString> names;
  for (const QORString& name : matchingClasses(manager, std::string(nameSpace.view()), pattern)) {
    QORString above = family.find(name)->getSuperClassName();
    while (!above.isEmpty() && !isClassMatch(above, pattern)) above = family.find(above)->getSuperClassName();
    if (above.isEmpty()) names.push_back(name);
  }
  std::stable_partition(names.begin(), names.end(),
                        [&](const QORString& name) { return !manager.isAssociation(nameSpace, name); });
  return names;
}

// What one class fails with is a warning beside what the others have.
int printMany(Session& session, const InstancesOptions& options, const QORString& nameSpace) {
  const std::vector<QORString> names = familiesOf(session.manager(), nameSpace, options.className);
  if (names.empty()) {
    const std::string which = options.className.empty() ? "" : " matches \"" + options.className + '"';
    return reportRefusal("no class" + which + " in namespace " + options.session.nameSpace);
  }
  InstancePrinter printer(nameSpace);
  for (const QORString& name : names) {
    try {
      printer.print(name);
    } catch (const QoriBaseException& failure) {
      if (options.session.isQuiet) continue;
      std::cerr << "qorql: warning: " << printableText(faultOf(name, failure)) << '\n';
    }
  }
  return kExitDone;
}

int printOne(Session& session, const InstancesOptions& options, const QORString& nameSpace) {
  const QORString className(options.className);
  if (session.manager().repository()->getClass(nameSpace, className).IsNull()) {
    return reportRefusal(missingClassText(session.manager(), options.session.nameSpace, options.className));
  }
  InstancePrinter(nameSpace).print(className);
  return kExitDone;
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
  session.printWarnings();
  return status;
}

}  // namespace

CommandAction declareInstancesCommand(CLI::App& app) {
  const auto options = std::make_shared<InstancesOptions>();
  describeCommand(app, kDescription, kFooter);
  declareSessionOptions(app, options->session);
  declareValue(
      app,
      {.names = "CLASS", .description = "The class, or a pattern (default: all)", .take = keepIn(options->className)});
  return [options] { return runInstances(*options); };
}
