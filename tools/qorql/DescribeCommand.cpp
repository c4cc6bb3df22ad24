// A class as a list of its properties: for people with what each of them means under it.
// SPDX-License-Identifier: Apache-2.0
#include "DescribeCommand.h"

#include <algorithm>
#include <iostream>

#include "ClassDescription.h"
#include "ClassesCommand.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "JoinedWords.h"
#include "ListOutput.h"
#include "OptionDeclarations.h"
#include "Pager.h"
#include "Session.h"
#include "SessionOptions.h"
#include "Terminal.h"
#include "cimom/CQoriValue.h"

namespace {

constexpr const char* kDescribeDescription =
    "Describes a class: its properties, inherited ones too, each with its type, whether it is a\n"
    "key, the class that it comes from, the first sentence of its Description and its values.";
constexpr const char* kDescribeFooter =
    "Exit status: 0 done; 1 there is no such class; 2 wrong usage; 3 MOF or configuration failure.\n"
    "\n"
    "Examples:\n"
    "  qorql describe Linux_Process\n"
    "  qorql describe -o csv CIM_StorageVolume";

struct DescribeOptions {
  SessionOptions session;
  std::string className;
  std::optional<OutputForm> form;  // none: text
  bool hasNoHeader = false;
};

// "2 (OK)"
std::string textOf(const ValueTexts::Entry& entry) {
  return entry.code + (entry.text.empty() ? "" : " (" + entry.text + ")");
}

std::vector<std::string> valuesOf(const PropertyDescription& property) {
  std::vector<std::string> values;
  for (const ValueTexts::Entry& entry : property.values.entries()) values.push_back(textOf(entry));
  return values;
}

// A text in lines that are indented and, on a terminal, no wider than it.
class Paragraphs {
 public:
  explicit Paragraphs(std::ostream& out) : _out(out), _shape(standardOutputShape()) {}

  void print(const std::string& given) {
    if (given.empty()) return;
    std::string text = printableText(given);
    while (const std::size_t cut = cutOf(text)) {
      _out << kIndent << text.substr(0, cut) << '\n';
      text.erase(0, cut + 1);
    }
    _out << kIndent << text << '\n';
  }

 private:
  static constexpr std::string_view kIndent = "    ";

  // The last blank that the line has room for, else the first one; 0 where all has room or there is no blank.
  std::size_t cutOf(const std::string& text) const {
    const std::size_t room = _shape.width - std::min(_shape.width, kIndent.size());
    if (!_shape.isTerminal || displayWidth(text) <= room) return 0;
    std::size_t cut = 0;
    for (std::size_t blank = text.find(' '); blank != std::string::npos; blank = text.find(' ', blank + 1)) {
      if (cut != 0 && displayWidth(std::string_view(text).substr(0, blank)) > room) break;
      cut = blank;
    }
    return cut;
  }

  std::ostream& _out;
  const TerminalShape _shape;
};

// Names, types, keys and origins under each other.
class Columns {
 public:
  explicit Columns(const std::vector<PropertyDescription>& properties) {
    for (const PropertyDescription& property : properties) {
      _name = std::max(_name, displayWidth(property.name));
      _type = std::max(_type, displayWidth(property.type));
    }
  }
  std::string line(const PropertyDescription& property) const {
    return filled(property.name, _name) + filled(property.type, _type) + (property.isKey ? "key  " : "     ") +
           property.origin;
  }

 private:
  static std::string filled(const std::string& text, std::size_t width) {
    return text + std::string(width + 2 - displayWidth(text), ' ');
  }

  std::size_t _name = 0;
  std::size_t _type = 0;
};

QORSmrPtr<IQoriValue> arrayOf(const std::vector<std::string>& texts) {
  if (texts.empty()) return {};
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List());
  for (const std::string& text : texts) elements->append(listText(text));
  return QORSmrPtr<IQoriValue>(new CQoriValue(elements, CQoriType::string));
}

List listOf(const ClassDescription& description) {
  List list{description.name,
            {textColumn("Property"),
             textColumn("Type"),
             {"Key", false, "boolean", false},
             textColumn("Class"),
             textColumn("Description"),
             {"Values", false, "string", true}},
            {}};
  for (const PropertyDescription& property : description.properties) {
    const QORSmrPtr<IQoriValue> isKey(new CQoriValue(property.isKey, CQoriType::boolean));
    const QORSmrPtr<IQoriValue> sentence =
        property.sentence.empty() ? QORSmrPtr<IQoriValue>() : listText(property.sentence);
    list.rows.push_back({listText(property.name), listText(property.type), isKey, listText(property.origin), sentence,
                         arrayOf(valuesOf(property))});
  }
  return list;
}

int describe(const DescribeOptions& options) {
  Session session(options.session);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  const QORString nameSpace(options.session.nameSpace);
  const QORString className(options.className);
  const EmbeddedObjectManager& manager = session.manager();
  if (manager.repository()->getClass(nameSpace, className).IsNull()) {
    return reportRefusal(missingClassText(manager, options.session.nameSpace, options.className));
  }
  const Pager pager(!options.session.hasNoPager);
  if (options.form) {
    printLists(*options.form, {listOf(descriptionOf(manager, nameSpace, className))}, !options.hasNoHeader);
  } else {
    printDescription(std::cout, manager, nameSpace, className);
  }
  return session.settle(kExitDone);
}

}  // namespace

void printDescription(std::ostream& out, const EmbeddedObjectManager& manager, const QORString& nameSpace,
                      const QORString& className) {
  const ClassDescription description = descriptionOf(manager, nameSpace, className);
  Paragraphs paragraphs(out);
  out << description.name << '\n';
  if (!description.superclasses.empty()) paragraphs.print("derived from " + joined(description.superclasses, ", "));
  paragraphs.print(description.sentence);
  out << '\n';
  const Columns columns(description.properties);
  for (const PropertyDescription& property : description.properties) {
    out << columns.line(property) << '\n';
    paragraphs.print(property.sentence);
    paragraphs.print(joined(valuesOf(property), ", "));
  }
}

CommandAction declareDescribeCommand(CLI::App& app) {
  const auto options = std::make_shared<DescribeOptions>();
  describeCommand(app, kDescribeDescription, kDescribeFooter);
  declareSessionOptions(app, options->session);
  declareNoPager(app, options->session.hasNoPager);
  declareListOutput(app, options->form, options->hasNoHeader, "text");
  declareValue(app,
               {.names = "CLASS", .description = "The class", .take = keepIn(options->className), .isRequired = true});
  return [options] { return describe(*options); };
}
