// The choice of a form, and of its writer.
// SPDX-License-Identifier: Apache-2.0
#include "OutputOptions.h"

#include "ArrowWriter.h"
#include "CsvWriter.h"
#include "HtmlWriter.h"
#include "JsonWriter.h"
#include "MofWriter.h"
#include "OptionDeclarations.h"
#include "TableWriter.h"

const std::map<std::string, OutputForm>& outputForms() {
  static const std::map<std::string, OutputForm> forms = {
      {"table", OutputForm::Table},     {"csv", OutputForm::Csv},    {"json", OutputForm::Json},
      {"jsonl", OutputForm::JsonLines}, {"html", OutputForm::Html},  {"xml", OutputForm::Xml},
      {"mof", OutputForm::Mof},         {"arrow", OutputForm::Arrow}};
  return forms;
}

void declareOutputOptions(CLI::App& app, OutputOptions& options) {
  const auto takeForm = [&options](const std::string& form) { options.form = outputForms().at(form); };
  declareValue(app, {.names = "-o,--output",
                     .type = "FORM",
                     .description = "table, csv, json, jsonl, arrow, html, xml or mof (default: table, or FORMAT AS)",
                     .take = takeForm,
                     .check = oneOf(outputForms())});
  declareNoHeader(app, options.hasNoHeader);
  declareFlag(app, "--values", options.hasValueTexts, "Show codes with their texts, as 2 (OK), not in MOF and XML");
  declareFlag(app, "--stats", options.hasStatistics, "Print counts and times of each statement to standard error");
  declareFlag(app, "--warnings", options.hasWarnings, "Warn where the language surprises, as on a terminal");
  declareFlag(app, "--strict", options.isStrict, "Refuse statements that would cause a warning; nothing is run then");
  declareValue(app, {.names = "--timeout",
                     .type = "SECONDS",
                     .description = "Stop a statement that takes longer; fractions count",
                     .take = [&options](const std::string& given) { options.timeout = parseSeconds(given); },
                     .check = checkSeconds});
}

void declareNoHeader(CLI::App& app, bool& hasNoHeader) {
  declareFlag(app, "--no-header", hasNoHeader, "No names over the columns, in tables and CSV");
}

std::unique_ptr<ResultWriter> makeResultWriter(OutputForm form, std::ostream& out, const KeysOfClass& keysOf,
                                               bool hasHeader) {
  switch (form) {
    case OutputForm::Csv:
      return std::make_unique<CsvWriter>(out, hasHeader);
    case OutputForm::Json:
      return std::make_unique<JsonWriter>(out, JsonWriter::Style::Array);
    case OutputForm::JsonLines:
      return std::make_unique<JsonWriter>(out, JsonWriter::Style::Lines);
    case OutputForm::Html:
      return std::make_unique<HtmlWriter>(out);
    case OutputForm::Mof:
      return std::make_unique<MofWriter>(out, keysOf);
    case OutputForm::Arrow:
      return std::make_unique<ArrowWriter>(out);
    case OutputForm::Table:
    case OutputForm::Xml:
      break;
  }
  return std::make_unique<TableWriter>(out, hasHeader);
}
