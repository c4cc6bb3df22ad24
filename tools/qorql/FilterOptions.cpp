// What the command line says to the commands that take a filter.
#include "FilterOptions.h"

#include <CLI/CLI.hpp>

void declareFilterOptions(CLI::App& app, FilterOptions& options) {
  declareSessionOptions(app, options.session);
  app.add_option("-q,--language", options.language, "Language of the filter (default: DMTF:CQL; also CQL and WQL)")
      ->type_name("LANGUAGE");
}
