// Lists that commands print in the forms of results.
// SPDX-License-Identifier: Apache-2.0
#include "ListOutput.h"

#include <iostream>
#include <map>

#include "OptionDeclarations.h"
#include "OutputOptions.h"
#include "cimom/CQoriValue.h"

void declareListOutput(CLI::App& app, std::optional<OutputForm>& form, bool& hasNoHeader, const char* formForPeople) {
  using Forms = std::map<std::string, std::optional<OutputForm>>;
  const auto forms = std::make_shared<Forms>(Forms{{formForPeople, std::nullopt},
                                                   {"csv", OutputForm::Csv},
                                                   {"json", OutputForm::Json},
                                                   {"jsonl", OutputForm::JsonLines},
                                                   {"html", OutputForm::Html}});
  std::string names;
  for (const auto& known : *forms) names += (names.empty() ? "" : "|") + known.first;
  const ValueCheck check = oneOf(*forms);
  const auto take = [&form, forms](const std::string& name) { form = forms->at(name); };
  declareValue(
      app,
      {.names = "-o,--output", .type = names.c_str(), .description = "Form of the list", .take = take, .check = check});
  declareNoHeader(app, hasNoHeader);
}

void printLists(OutputForm form, const std::vector<List>& lists, bool hasHeader) {
  const std::unique_ptr<ResultWriter> writer = makeResultWriter(form, std::cout, nullptr, hasHeader);
  const QORString noClass;
  for (const List& list : lists) {
    writer->begin({list.title, list.columns, list.rows.size()});
    for (const ListRow& row : list.rows) {
      if (std::cout) writer->writeRow(ResultRow(row, noClass));
    }
    writer->end();
  }
  writer->finish();
}

ResultColumn textColumn(const char* name) { return {name, false, "string", false}; }

ResultColumn numberColumn(const char* name) { return {name, true, "uint64", false}; }

QORSmrPtr<IQoriValue> listText(std::string_view text) { return QORSmrPtr<IQoriValue>(new CQoriValue(QORString(text))); }

QORSmrPtr<IQoriValue> listNumber(std::size_t number) {
  return QORSmrPtr<IQoriValue>(new CQoriValue(number, CQoriType::uint64));
}
