// Fuzz target: the XML stream. Whenever a query succeeds, a library for XML
// finds its stream well-formed. The part of the input after the separator is the
// text of a property of the instances that the query reads.
// SPDX-License-Identifier: Apache-2.0
#include <libxml/parser.h>

#include <algorithm>

#include "FuzzQueries.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriValue.h"

namespace {

constexpr char kTexts[] = R"(
class T_Text { [Key] string Id; string Text; string Texts[]; };
[Association] class T_TextLink { [Key] string Id; T_Text REF Other; };
instance of T_Text as $t1 { Id = "1"; };
instance of T_Text { Id = "2"; };
instance of T_TextLink { Id = "l"; Other = $t1; };
)";

bool isWellFormed(const std::string& stream) {
  xmlDoc* const document = xmlReadMemory(stream.data(), static_cast<int>(stream.size()), "stream.xml", "UTF-8",
                                         XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET | XML_PARSE_HUGE);
  xmlFreeDoc(document);
  return document != nullptr;
}

bool hasLoggedErrors(const QueryOutcome& outcome) {
  return std::any_of(outcome.log.begin(), outcome.log.end(), [](const std::string& line) {
    return line.find("/" + std::to_string(QoriTraceLog::kError) + ": ") != std::string::npos;
  });
}

class Texts {
 public:
  Texts() : _world(fuzzModel() + kTexts) {
    _names = namesOf("T_Text");
    _link = namesOf("T_TextLink").at(0);
  }

  QueryRun& world() { return _world; }
  // Stores the text as a value of its own, twice in an array, and as a key.
  void store(const std::string& content) {
    const QORString text(content.data(), content.size());
    const QORSmrPtr<IQoriValue> value(new CQoriValue(text));
    const QORSmrPtr<CQoriValue::List> elements(new CQoriValue::List);
    elements->append(value);
    elements->append(value);
    const QORSmrPtr<IQoriValue> array(new CQoriValue(elements, CQoriType::string));
    for (const QORSmrPtr<IQoriInstanceName>& name : _names) {
      _world.manager().modifyInstance(name, {{"Text", value}, {"Texts", array}});
    }
    if (!_stored.IsNull()) _world.manager().deleteInstance(_stored);
    CimInstanceDeclaration declaration;
    declaration.className = "T_Text";
    declaration.properties = {{"Id", QORSmrPtr<IQoriValue>(new CQoriValue(QORString("3") + text))}};
    _stored = _world.manager().createInstance(EmbeddedObjectManager::kDefaultNamespace, declaration);
    _world.manager().modifyInstance(_link, {{"Other", QORSmrPtr<IQoriValue>(new CQoriValue(_stored))}});
  }

 private:
  static std::vector<QORSmrPtr<IQoriInstanceName>> namesOf(const char* className) {
    const CIMApi::Instances all(CIMApi().enumerateInstances(EmbeddedObjectManager::kDefaultNamespace, className, {}, -1,
                                                            nullptr, nullptr, "", {}));
    std::vector<QORSmrPtr<IQoriInstanceName>> names;
    QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*all);
    while (++each) names.push_back(each.key()->getInstanceName());
    return names;
  }

  QueryRun _world;
  std::vector<QORSmrPtr<IQoriInstanceName>> _names;
  QORSmrPtr<IQoriInstanceName> _link;
  QORSmrPtr<IQoriInstanceName> _stored;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Texts texts;
  const auto [query, content] = fuzzParts(fuzzText(data, size));
  if (!isSmallQuery(query)) return 0;
  texts.store(content);
  const QueryOutcome outcome = texts.world().runIn(query, QORQL_DataTable::kExecutionLazy);
  requireStatedError(outcome, query);
  // A failure amid the rows is told by the log and ends the stream where it stands.
  const bool isSuccess = outcome.error.empty() && !hasLoggedErrors(outcome);
  fuzzRequire(!isSuccess || isWellFormed(outcome.stream), "well-formed XML, but it is\n" + outcome.stream);
  return 0;
}
