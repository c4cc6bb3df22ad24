// What the command line says about the form of results.
#include "OutputOptions.h"

#include "OptionDeclarations.h"

const std::map<std::string, OutputForm>& outputForms() {
  static const std::map<std::string, OutputForm> forms = {
      {"table", OutputForm::Table},     {"csv", OutputForm::Csv},   {"json", OutputForm::Json},
      {"jsonl", OutputForm::JsonLines}, {"html", OutputForm::Html}, {"xml", OutputForm::Xml},
      {"mof", OutputForm::Mof}};
  return forms;
}

void declareOutputOptions(CLI::App& app, OutputOptions& options) {
  const auto takeForm = [&options](const std::string& form) { options.form = outputForms().at(form); };
  declareValue(app, {.names = "-o,--output",
                     .type = "FORM",
                     .description = "table, csv, json, jsonl, html, xml or mof (default: table, or FORMAT AS)",
                     .take = takeForm,
                     .check = oneOf(outputForms())});
  declareFlag(app, "--stats", options.hasStatistics, "Print counts and times of each statement to standard error");
  declareFlag(app, "--warnings", options.hasWarnings, "Warn where the language surprises, as on a terminal");
  declareFlag(app, "--strict", options.isStrict, "Refuse statements that would be warned of; nothing is run then");
}
