// A query script: models and settings, then cases with a query and what must come of it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_SCRIPT_H
#define QORQL_TESTS_SCRIPT_H

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

enum class FailureKind { None, Parse, Runtime, Platform };

// How a statement was refused, or must be.
struct Failure {
  FailureKind kind = FailureKind::None;
  unsigned code = 0;
  unsigned line = 0;    // of a parse failure
  unsigned status = 0;  // the CIM status; not of a platform failure
  std::string message;  // in an expectation, empty: any

  std::string toText() const;
};

struct Case {
  std::string name;
  unsigned line = 0;  // where it begins
  std::string nameSpace;
  std::string query;
  enum class Expected { Missing, Csv, Xml, Failure } expected = Expected::Missing;
  std::string result;  // of Csv and Xml
  Failure failure;
  std::string echo;  // what the scanner writes to standard output
  bool hasCalls = false;
  std::vector<std::string> calls;
  std::vector<std::string> log;  // lines of severity error; none when the case names none
};

// The text format:
//   # comment                          before and between cases
//   model FILE                         MOF to load, from models/ or examples/
//   mof {{  ...  }}                    MOF to load, the lines between
//   namespace NAME                     of the models and queries; root/cimv2 otherwise
//   set KEY VALUE                      configuration, section ZEMO, before the first query
//   case NAME
//   rule: ID, ID                       rules of docs/language.md that it tests
//   query         then the text
//   result csv    then the rows        |  result xml  then the stream, byte for byte
//   error parse CODE line L status S   |  error runtime CODE status S  |  error platform
//                                      then the message; without one, any message will do
//   echo          then what the scanner writes to standard output, without the last line feed
//   log           then the expected error lines of the log, "who: message"
//   calls         then the expected client calls (see ClientInterposer)
//   end
// A section's text ends at the line that begins the next section.
struct Script {
  std::string nameSpace = "root/cimv2";
  std::vector<std::string> models;
  std::vector<std::string> mofTexts;
  std::vector<std::pair<std::string, std::string>> settings;
  std::vector<Case> cases;
};

struct ScriptError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// THROWS ScriptError with file and line.
Script readScript(const std::string& path);

#endif
