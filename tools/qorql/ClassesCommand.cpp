// Class names, one a line, in the order of names.
// SPDX-License-Identifier: Apache-2.0
#include "ClassesCommand.h"

#include <fnmatch.h>

#include <algorithm>
#include <iostream>

#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "OptionDeclarations.h"
#include "Pager.h"
#include "Session.h"
#include "SessionOptions.h"

namespace {

constexpr const char* kClassesDescription = "Lists the classes of the namespace, in the order of their names.";
constexpr const char* kClassesFooter =
    "PATTERN is a part of the name or, with * ? [ ] in it, the whole name; case does not matter.\n"
    "Exit status: 0 done; 1 no class matches; 2 wrong usage; 3 MOF or configuration failure.\n"
    "\n"
    "Example:\n"
    "  qorql classes 'Linux_*'";

struct ClassesOptions {
  SessionOptions session;
  std::string pattern;
  bool isLong = false;
};

std::string wholePattern(const std::string& given) { return hasWildcard(given) ? given : "*" + given + "*"; }

// What the class is besides a class; empty when it is nothing else.
std::string kindOf(const IQoriClass& declared) {
  struct Kind {
    const char* qualifier;
    bool isInherited;
    const char* word;
  };
  constexpr Kind kKinds[] = {
      {"Abstract", false, "abstract"}, {"Association", true, "association"}, {"Indication", true, "indication"}};
  std::string kinds;
  for (const Kind& kind : kKinds) {
    const IQoriQualifier* const qualifier = declared.getQualifier(kind.qualifier, kind.isInherited);
    const bool isSet = qualifier != nullptr && (qualifier->getValue().IsNull() || qualifier->getValue()->getBoolean());
    if (isSet) kinds.append(kinds.empty() ? "" : " ").append(kind.word);
  }
  return kinds;
}

void printClass(const EmbeddedObjectManager& manager, const ClassesOptions& options, const QORString& name) {
  std::cout << name;
  if (options.isLong) {
    const QORSmrPtr<IQoriClass> declared = manager.repository()->getClass(options.session.nameSpace.c_str(), name);
    if (!declared.IsNull()) std::cout << '\t' << declared->getSuperClassName() << '\t' << kindOf(*declared);
  }
  std::cout << '\n';
}

// " but in interop, root/device": the namespaces of which something holds; empty when there is none.
template <class Predicate>
std::string elsewhere(const EmbeddedObjectManager& manager, Predicate isThere) {
  std::string names;
  for (const QORString& nameSpace : manager.namespaces()) {
    if (isThere(nameSpace)) names.append(names.empty() ? " but in " : ", ").append(nameSpace.view());
  }
  return names;
}

int listClasses(const ClassesOptions& options) {
  Session session(options.session);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  const std::vector<QORString> names = matchingClasses(session.manager(), options.session.nameSpace, options.pattern);
  const Pager pager(!options.session.hasNoPager);
  for (const QORString& name : names) printClass(session.manager(), options, name);
  if (!names.empty()) return session.settle(kExitDone);
  return reportRefusal(noMatchText(session.manager(), options.session.nameSpace, options.pattern));
}

}  // namespace

std::vector<QORString> matchingClasses(const EmbeddedObjectManager& manager, const std::string& nameSpace,
                                       const std::string& pattern) {
  std::vector<QORString> names = manager.classNames(nameSpace.c_str());
  std::erase_if(names, [&pattern](const QORString& name) { return !isClassMatch(name, pattern); });
  std::sort(names.begin(), names.end(),
            [](const QORString& a, const QORString& b) { return a.compareTo(b, false) < 0; });
  return names;
}

bool isClassMatch(const QORString& name, const std::string& pattern) {
  return fnmatch(wholePattern(pattern).c_str(), name.c_str(), FNM_CASEFOLD) == 0;
}

bool hasWildcard(const std::string& pattern) { return pattern.find_first_of("*?[") != std::string::npos; }

std::string noMatchText(const EmbeddedObjectManager& manager, const std::string& nameSpace,
                        const std::string& pattern) {
  const std::string which = pattern.empty() ? "" : " matches \"" + pattern + '"';
  const auto isThere = [&](const QORString& other) {
    return !matchingClasses(manager, std::string(other.view()), pattern).empty();
  };
  return "no class" + which + " in namespace " + nameSpace + elsewhere(manager, isThere);
}

std::string missingClassText(const EmbeddedObjectManager& manager, const std::string& nameSpace,
                             const std::string& name) {
  const std::string missing = "there is no class " + name + " in namespace " + nameSpace;
  if (hasWildcard(name)) {
    return missing + ": a name is needed here, and no pattern; qorql classes '" + name + "' lists what matches";
  }
  const std::string others = elsewhere(manager, [&](const QORString& other) {
    return !manager.repository()->getClass(other, QORString(name)).IsNull();
  });
  if (!others.empty()) return missing + others;
  QORQL_Suggestion suggestion(name);
  for (const QORString& known : manager.classNames(QORString(nameSpace))) suggestion.consider(known.view());
  const std::string meant = suggestion.best().empty() ? "" : ": did you mean " + suggestion.best() + "?";
  return missing + meant;
}

CommandAction declareClassesCommand(CLI::App& app) {
  const auto options = std::make_shared<ClassesOptions>();
  describeCommand(app, kClassesDescription, kClassesFooter);
  declareSessionOptions(app, options->session);
  declareNoPager(app, options->session.hasNoPager);
  declareFlag(app, "-l,--long", options->isLong,
              "With the superclass and what the class is (abstract, association, indication), separated by tabs");
  declareValue(app,
               {.names = "PATTERN", .description = "Which classes (default: all)", .take = keepIn(options->pattern)});
  return [options] { return listClasses(*options); };
}
