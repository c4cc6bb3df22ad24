// What the command line says about the form of results.
#include "OutputOptions.h"

#include "OptionChecks.h"

const std::map<std::string, OutputForm>& outputForms() {
  static const std::map<std::string, OutputForm> forms = {{"table", OutputForm::Table},
                                                          {"csv", OutputForm::Csv},
                                                          {"json", OutputForm::Json},
                                                          {"html", OutputForm::Html},
                                                          {"xml", OutputForm::Xml}};
  return forms;
}

void declareOutputOptions(CLI::App& app, OutputOptions& options) {
  const auto takeForm = [&options](const std::string& form) { options.form = outputForms().at(form); };
  app.add_option_function<std::string>("-o,--output", takeForm,
                                       "table, csv, json, html or xml (default: the FORMAT clause, else table)")
      ->type_name("FORM")
      ->check(oneOf(outputForms()));
  declareFlag(app, "--stats", options.hasStatistics, "Print counts and times of each statement to standard error");
}
