// What the commands use to declare their options.
#ifndef QORQL_TOOL_OPTIONCHECKS_H
#define QORQL_TOOL_OPTIONCHECKS_H

#include <CLI/CLI.hpp>
#include <charconv>
#include <map>
#include <string>

#include "cmpbase.h"

// A value that is one of the map's keys.
template <class Value>
CLI::Validator oneOf(const std::map<std::string, Value>& choices) {
  std::string names;
  for (const auto& choice : choices) names += (names.empty() ? "" : ", ") + choice.first;
  const auto find = [names, &choices](const std::string& given) {
    return choices.contains(given) ? std::string() : "'" + given + "' is none of " + names;
  };
  return CLI::Validator(find, "");
}

// The operation returns what is wrong with a value; nothing for a good one.
inline CLI::Validator check(std::string (*operation)(const std::string&)) {
  return CLI::Validator([operation](const std::string& given) { return operation(given); }, "");
}

inline std::string checkFile(const std::string& given) { return CLI::ExistingFile(given); }

// A number that counts something; not 0.
inline std::string checkCount(const std::string& given) {
  QORuint64 count = 0;
  const char* const end = given.data() + given.size();
  const auto [behind, error] = std::from_chars(given.data(), end, count);
  return error == std::errc() && behind == end && count != 0 ? "" : "'" + given + "' is no whole number from 1 on";
}

// A flag that takes no argument.
inline CLI::Option* declareFlag(CLI::App& app, const char* name, bool& isSet, const char* description) {
  return app.add_flag(name, isSet, description)->disable_flag_override();
}

#endif
