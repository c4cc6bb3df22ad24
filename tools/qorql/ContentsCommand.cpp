// Counts the instances of each class and what associations tie.
// SPDX-License-Identifier: Apache-2.0
#include "ContentsCommand.h"

#include <algorithm>
#include <iostream>
#include <map>

#include "ClassesCommand.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "GraphLayout.h"
#include "ListOutput.h"
#include "ModelContents.h"
#include "ModelPicture.h"
#include "OptionDeclarations.h"
#include "OutputOptions.h"
#include "Pager.h"
#include "Session.h"
#include "SessionOptions.h"

namespace {

constexpr const char* kContentsDescription =
    "Shows what there is: the namespaces, the classes that have instances with their numbers, and\n"
    "the classes that associations tie, with the roles in which they do.";
constexpr const char* kContentsFooter =
    "PATTERN is a part of a class's name or, with * ? [ ] in it, the whole name; case does not\n"
    "matter. An association is listed when it or a class that it ties matches. Unless --namespace\n"
    "names one, all namespaces are listed. Live classes are asked for all their instances.\n"
    "Exit status: 0 done; 1 no class matches; 2 wrong usage; 3 MOF, configuration or provider\n"
    "failure, after which the other classes are listed all the same.\n"
    "\n"
    "svg and html draw the classes with inheritance and associations; they need graphviz's library\n"
    "libgvc, which dot does not.\n"
    "\n"
    "Examples:\n"
    "  qorql contents -o html > model.html\n"
    "  qorql contents --no-live --mof model.mof\n"
    "  qorql contents -o json 'Linux_*'";

// Lists, or a picture that a function makes of the graph in the DOT language.
struct ContentsForm {
  OutputForm list = OutputForm::Table;
  std::string (*draw)(const std::string& dot) = nullptr;
};

const std::map<std::string, ContentsForm> kContentsForms = {
    {"table", {}},
    {"csv", {OutputForm::Csv}},
    {"json", {OutputForm::Json}},
    {"jsonl", {OutputForm::JsonLines}},
    {"dot", {OutputForm::Table, [](const std::string& dot) { return dot; }}},
    {"svg", {OutputForm::Table, svgOf}},
    {"html", {OutputForm::Table, htmlOf}}};

struct ContentsOptions {
  SessionOptions session;
  std::string pattern;
  ContentsForm form;
  bool hasNoHeader = false;
};

std::string endsText(const std::vector<ModelContents::End>& ends) {
  std::string text;
  for (const ModelContents::End& end : ends) {
    text.append(text.empty() ? "" : ", ").append(end.role.view()).append(" ").append(end.className.view());
  }
  return text;
}

bool matches(const ModelContents::Tie& tie, const std::string& pattern) {
  return isClassMatch(tie.association, pattern) ||
         std::any_of(tie.ends.begin(), tie.ends.end(),
                     [&](const ModelContents::End& end) { return isClassMatch(end.className, pattern); });
}

// Without the classes and associations that do not match.
void keepMatches(ModelContents& contents, const std::string& pattern) {
  std::erase_if(contents.classes, [&](const auto& known) { return !isClassMatch(known.name, pattern); });
  std::erase_if(contents.ties, [&](const auto& tie) { return !matches(tie, pattern); });
}

// The lists, which each namespace adds rows to, and the picture.
class Contents {
 public:
  explicit Contents(const ContentsOptions& options) : _options(options) {}

  void add(EmbeddedObjectManager& manager, const QORString& nameSpace) {
    ModelContents contents = contentsOf(manager, nameSpace);
    keepMatches(contents, _options.pattern);
    addRows(manager, nameSpace, contents);
    _picture.add(manager, nameSpace, contents);
    _gaps.push_back(contents.gaps);
  }
  // Returns the exit status.
  int print() const {
    printForm();
    std::cout.flush();
    int status = kExitDone;
    for (const InstanceReader::Gaps& gaps : _gaps) {
      status = std::max(status, reportGaps(gaps, _options.session.isQuiet));
    }
    return status;
  }

 private:
  void printForm() const {
    const Pager pager(!_options.session.hasNoPager);
    if (_options.form.draw != nullptr) {
      std::cout << _options.form.draw(_picture.dot());
    } else {
      printLists(_options.form.list, {_namespaces, _classes, _ties}, !_options.hasNoHeader);
    }
  }

  void addRows(const EmbeddedObjectManager& manager, const QORString& nameSpace, const ModelContents& contents) {
    const QORSmrPtr<IQoriValue> name = listText(nameSpace.view());
    _namespaces.rows.push_back(
        {name, listNumber(manager.classNames(nameSpace).size()), listNumber(contents.instanceCount)});
    for (const auto& known : contents.classes) {
      _classes.rows.push_back({name, listText(known.name.view()), listNumber(known.count)});
    }
    for (const auto& tie : contents.ties) {
      _ties.rows.push_back(
          {name, listText(tie.association.view()), listText(endsText(tie.ends)), listNumber(tie.count)});
    }
  }

  const ContentsOptions& _options;
  ModelPicture _picture;
  std::vector<InstanceReader::Gaps> _gaps;  // of each namespace
  List _namespaces{"Namespaces", {textColumn("Namespace"), numberColumn("Classes"), numberColumn("Instances")}, {}};
  List _classes{"Classes", {textColumn("Namespace"), textColumn("Class"), numberColumn("Instances")}, {}};
  List _ties{"Associations",
             {textColumn("Namespace"), textColumn("Association"), textColumn("Ties"), numberColumn("Instances")},
             {}};
};

std::vector<QORString> listedNamespaces(const EmbeddedObjectManager& manager, const ContentsOptions& options) {
  std::vector<QORString> names = manager.namespaces();
  std::erase_if(names, [&](const QORString& name) {
    const bool isAsked = name.isEqualCaseInsensitive(QORString(options.session.nameSpace));
    return options.session.isNamespaceGiven ? !isAsked : manager.classNames(name).empty();
  });
  return names;
}

// Of a pattern that no class matches, with instances or without; empty when one does, or all are asked for.
std::string complaintOf(const EmbeddedObjectManager& manager, const ContentsOptions& options,
                        const std::vector<QORString>& nameSpaces) {
  const auto isMatch = [&](const QORString& nameSpace) {
    return !matchingClasses(manager, std::string(nameSpace.view()), options.pattern).empty();
  };
  if (options.pattern.empty() || std::any_of(nameSpaces.begin(), nameSpaces.end(), isMatch)) return {};
  return options.session.isNamespaceGiven ? noMatchText(manager, options.session.nameSpace, options.pattern)
                                          : "no class matches \"" + options.pattern + '"';
}

int printContents(const ContentsOptions& options) {
  Session session(options.session);
  int status = kExitDone;
  try {
    session.open();
    EmbeddedObjectManager& manager = session.manager();
    const std::vector<QORString> nameSpaces = listedNamespaces(manager, options);
    const std::string complaint = complaintOf(manager, options, nameSpaces);
    if (!complaint.empty()) return reportRefusal(complaint);
    Contents contents(options);
    for (const QORString& nameSpace : nameSpaces) contents.add(manager, nameSpace);
    status = contents.print();
  } catch (...) {
    return reportStartFailure();
  }
  session.printNewWarnings();  // a class that is asked again after a failure warns once more
  return session.settle(status);
}

}  // namespace

CommandAction declareContentsCommand(CLI::App& app) {
  const auto options = std::make_shared<ContentsOptions>();
  options->session.needsDescriptions = false;
  describeCommand(app, kContentsDescription, kContentsFooter);
  declareSessionOptions(app, options->session);
  declareNoPager(app, options->session.hasNoPager);
  declareValue(app, {.names = "-o,--output",
                     .type = "table|csv|json|jsonl|dot|svg|html",
                     .description = "Form of the lists, or a picture: svg, html, or dot for graphviz (default: table)",
                     .take = [options](const std::string& name) { options->form = kContentsForms.at(name); },
                     .check = oneOf(kContentsForms)});
  declareNoHeader(app, options->hasNoHeader);
  declareValue(app,
               {.names = "PATTERN", .description = "Which classes (default: all)", .take = keepIn(options->pattern)});
  return [options] { return printContents(*options); };
}
