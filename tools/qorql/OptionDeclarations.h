// What the commands use to declare their options and arguments. One source implements it with the command-line library:
// that library is all headers, and each source that includes them compiles the whole of it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_OPTIONDECLARATIONS_H
#define QORQL_TOOL_OPTIONDECLARATIONS_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "cmpbase.h"

namespace CLI {
class App;
}

// Returns what is wrong with a value; nothing for a good one.
using ValueCheck = std::function<std::string(const std::string&)>;

// An option that takes a value, or an argument that stands without an option's name.
struct ValueOption {
  const char* names;                             // "-f,--file"; of an argument "FILE"
  const char* type = kNoType;                    // stands for the value in the help
  const char* description = "";                  // one sentence without its dot
  std::function<void(const std::string&)> take;  // called with each good value
  ValueCheck check = nullptr;
  bool isRequired = false;
  bool isRepeatable = false;

  static constexpr const char* kNoType = " ";  // an argument's name says it
};

// What is said before and after the options in the help.
void describeCommand(CLI::App& app, const char* description, const char* footer);

void declareValue(CLI::App& app, const ValueOption& option);

// A flag that takes no value. BORROWS isSet until the command line has been parsed.
void declareFlag(CLI::App& app, const char* names, bool& isSet, const char* description);

// A flag that prints the text and ends.
void declareVersionFlag(CLI::App& app, const char* name, const std::string& text, const char* description);

// Makes it wrong usage to give both of two declared options.
void declareExclusion(CLI::App& app, const char* name, const char* other);

// For an action that finds both given. THROWS CLI::ParseError.
[[noreturn]] void refuseBoth(const char* name, const char* other);
// For an action that finds it missing. THROWS CLI::ParseError.
[[noreturn]] void refuseWithout(const char* name);

// Keeps the value in a variable, which it BORROWS until the command line has been parsed.
inline auto keepIn(std::string& variable) {
  return [&variable](const std::string& given) { variable = given; };
}
inline auto keepIn(std::vector<std::string>& variable) {
  return [&variable](const std::string& given) { variable.push_back(given); };
}

// A value that is one of the map's keys. BORROWS the map.
template <class Value>
ValueCheck oneOf(const std::map<std::string, Value>& choices) {
  std::string names;
  for (const auto& choice : choices) names += (names.empty() ? "" : ", ") + choice.first;
  return [names, &choices](const std::string& given) {
    return choices.contains(given) ? std::string() : "'" + given + "' is not one of " + names;
  };
}

std::string checkFile(const std::string& given);

// A number that counts something: 0 where the text is no such number, as 0 itself is none.
QORuint64 parseCount(const std::string& given) noexcept;
std::string checkCount(const std::string& given);

// A number of seconds, with a fraction or without: 0 where the text is no such number, as 0 itself is none.
double parseSeconds(const std::string& given) noexcept;
std::string checkSeconds(const std::string& given);

#endif
