// Hosts, disks and what ties them, with the explanation and the surprises of statements about them as text.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_EXPLANATIONWORLD_H
#define QORQL_TESTS_UNIT_QORQL_EXPLANATIONWORLD_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/Explain/QORQL_Explanation.h"
#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "QueryWorld.h"

inline constexpr char kExplanationModel[] = R"(
class Host { [key] string Name; uint32 Memory; real32 Heat; };
class FastHost : Host { };
class Disk { [key] string Name; string Kind; uint64 Size; uint16 Ports[]; string HostName; datetime Made; real64 Load; };
[association] class On { [key] Host REF Where; [key] Disk REF What; };
class Spare { [key] uint32 Id; };
[association] class Backed { [key] On REF Kept; [key] Spare REF By; };
instance of Host { Name = "a"; Memory = 1; };
instance of Host { Name = "b"; Memory = 2; };
instance of Disk { Name = "d"; Kind = "k"; Size = 1; HostName = "a"; };
instance of Spare { Id = 1; };
)";

inline std::string textOf(const QORQL_ExplainedStep& step) {
  using Step = QORQL_ExplainedStep;
  constexpr const char* kKinds[] = {"fetch", "associate", "", "combine", "sort", "select", "first", "fail"};
  constexpr const char* kMethods[] = {"filter", "hash", "keys", "product"};
  std::string text = step.kind == Step::kCondition ? kMethods[step.method] : kKinds[step.kind];
  if (step.isDiscarded) text += " discarded";
  if (step.dependsOnValues) text += "?";
  if (step.kind == Step::kAssociate) text += " " + step.source + " " + step.association;
  if (step.kind != Step::kFetch && step.kind != Step::kAssociate) return text + " " + step.text;
  text += " " + step.className + (step.alias.empty() ? "" : " AS " + step.alias) + ":";
  if (step.hasAllProperties) text += " *";
  for (const std::string& name : step.properties) text += " " + name;
  return text;
}

struct ExplanationWorld : testing::Test {
  QueryWorld world{kExplanationModel};

  template <class Use>
  void parse(const std::string& query, Use use) {
    const QORString text(query.data(), query.size());
    const QORString nameSpace("root/cimv2");
    QORQL_Lexer lexer(text, false);
    QORQL_SymbolTable symbols(nullptr);
    const auto parsed =
        QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", nameSpace).StaticCast<QORQL_Query>();
    use(*parsed, symbols, nameSpace);
  }
  std::vector<std::string> steps(const std::string& query) {
    std::vector<std::string> texts;
    parse(query, [&](const QORQL_Query& parsed, const QORQL_SymbolTable& symbols, const QORString& nameSpace) {
      const QORQL_Explanation explanation(parsed, symbols, nameSpace);
      for (const auto& step : explanation.steps()) texts.push_back(textOf(step));
    });
    return texts;
  }
  std::vector<std::string> rules(const std::string& query) {
    std::vector<std::string> found;
    parse(query, [&](const QORQL_Query& parsed, const QORQL_SymbolTable&, const QORString& nameSpace) {
      for (const auto& surprise : QORQL_findSurprises(parsed, nameSpace)) found.emplace_back(surprise.rule);
    });
    return found;
  }
  std::string surprise(const std::string& query) {
    std::string text;
    parse(query, [&](const QORQL_Query& parsed, const QORQL_SymbolTable&, const QORString& nameSpace) {
      for (const auto& one : QORQL_findSurprises(parsed, nameSpace)) text += one.text;
    });
    return text;
  }
  // The condition as text.
  std::string condition(const std::string& text) {
    const std::vector<std::string> found = steps("SELECT Name FROM Disk WHERE " + text);
    return found.size() < 3 ? "" : found[1].substr(found[1].find(' ') + 1);
  }
};

#endif
