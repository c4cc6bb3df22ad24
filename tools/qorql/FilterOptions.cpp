// What the command line says to the commands that take a filter.
// SPDX-License-Identifier: Apache-2.0
#include "FilterOptions.h"

#include <map>

#include "OptionDeclarations.h"

namespace {

const std::map<std::string, FilterOutput> kOutputs = {{"text", FilterOutput::Text}, {"json", FilterOutput::Json}};

}  // namespace

void declareFilterOutput(CLI::App& app, FilterOutput& output) {
  declareValue(app, {.names = "-o,--output",
                     .type = "text|json",
                     .description = "Print lines of text or a JSON array (default: text)",
                     .take = [&output](const std::string& name) { output = kOutputs.at(name); },
                     .check = oneOf(kOutputs)});
}

void declareFilterTexts(CLI::App& app, FilterTexts& texts) {
  declareValue(app, {.names = "--filters",
                     .type = "FILE",
                     .description = "Use the filters of a file instead of FILTER",
                     .take = keepIn(texts.file),
                     .check = checkFile});
  declareValue(app, {.names = "FILTER", .description = "The filter", .take = [&texts](const std::string& given) {
                       texts.text = given;
                     }});
}

void declareFilterOptions(CLI::App& app, FilterOptions& options) {
  declareSessionOptions(app, options.session);
  declareValue(app, {.names = "-q,--language",
                     .type = "LANGUAGE",
                     .description = "Language of the filter (default: DMTF:CQL; also CQL and WQL)",
                     .take = keepIn(options.language)});
  declareFlag(app, "--strict", options.isStrict, "Refuse filters that would cause a warning");
}
