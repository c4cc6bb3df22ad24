// What the command line says to the commands that take a filter.
// SPDX-License-Identifier: Apache-2.0
#include "FilterOptions.h"

#include "OptionDeclarations.h"

void declareFilterOptions(CLI::App& app, FilterOptions& options) {
  declareSessionOptions(app, options.session);
  declareValue(app, {.names = "-q,--language",
                     .type = "LANGUAGE",
                     .description = "Language of the filter (default: DMTF:CQL; also CQL and WQL)",
                     .take = keepIn(options.language)});
  declareFlag(app, "--strict", options.isStrict, "Refuse filters that would be warned of");
}
