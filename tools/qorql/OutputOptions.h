// What the command line says about the form of results, and the writers of these forms.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_OUTPUTOPTIONS_H
#define QORQL_TOOL_OUTPUTOPTIONS_H

#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "ResultWriter.h"

namespace CLI {
class App;
}

struct OutputOptions {
  std::optional<OutputForm> form;  // none: the statement's FORMAT clause, else a table
  bool hasStatistics = false;
  bool hasWarnings = false;    // warnings where the language surprises, also without a terminal
  bool hasValueTexts = false;  // codes with the texts of ValueMap and Values
  bool isStrict = false;       // a statement with warnings is refused
  bool hasNoHeader = false;    // no names over the columns of a table or of CSV
  double timeout = 0;          // of a statement, in seconds; 0: none
};

// The forms by their names.
const std::map<std::string, OutputForm>& outputForms();

// BORROWS the options until the command line has been parsed.
void declareOutputOptions(CLI::App& app, OutputOptions& options);

// The flag of commands whose forms may have a line of names. BORROWS it until the command line has been parsed.
void declareNoHeader(CLI::App& app, bool& hasNoHeader);

// REQUIRES a form other than Xml, which the engine writes itself. BORROWS the stream.
std::unique_ptr<ResultWriter> makeResultWriter(OutputForm form, std::ostream& out, const KeysOfClass& keysOf,
                                               bool hasHeader);

#endif
