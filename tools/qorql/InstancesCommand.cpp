// Instances, stored and live, as the object manager enumerates them.
// SPDX-License-Identifier: Apache-2.0
#include "InstancesCommand.h"

#include <iostream>

#include "ClassesCommand.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "OptionDeclarations.h"
#include "Session.h"
#include "SessionOptions.h"
#include "Statements.h"
#include "cimom/CIMApi.h"

namespace {

constexpr const char* kDescription =
    "Prints the instances of a class and its subclasses as MOF text, which loads again where the\n"
    "classes are declared.";
constexpr const char* kFooter =
    "Exit status: 0 done; 1 there is no such class; 2 wrong usage; 3 MOF, configuration or provider\n"
    "failure.\n"
    "\n"
    "Example:\n"
    "  qorql instances Linux_OperatingSystem";

struct InstancesOptions {
  SessionOptions session;
  std::string className;
};

void printInstances(const CIMApi::Instances& instances) {
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*instances);
  bool isFirst = true;
  while (std::cout && ++each) {
    if (!isFirst) std::cout << '\n';
    isFirst = false;
    std::cout << EmbeddedObjectManager::instanceMof(*each.key());
  }
}

int runInstances(const InstancesOptions& options) {
  Session session(options.session);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  const QORString nameSpace(options.session.nameSpace.c_str());
  const QORString className(options.className.c_str());
  if (session.manager().repository()->getClass(nameSpace, className).IsNull()) {
    return reportRefusal(missingClassText(session.manager(), options.session.nameSpace, options.className));
  }
  try {
    CIMApi api;
    printInstances(
        api.enumerateInstances(nameSpace, className, {}, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {}));
  } catch (...) {
    session.dropWarnings();
    std::cout.flush();
    return reportFailure({});
  }
  session.printWarnings();
  return kExitDone;
}

}  // namespace

CommandAction declareInstancesCommand(CLI::App& app) {
  const auto options = std::make_shared<InstancesOptions>();
  describeCommand(app, kDescription, kFooter);
  declareSessionOptions(app, options->session);
  declareValue(app,
               {.names = "CLASS", .description = "The class", .take = keepIn(options->className), .isRequired = true});
  return [options] { return runInstances(*options); };
}
