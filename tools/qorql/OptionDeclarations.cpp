// Declares options and arguments to the library of the command line.
// SPDX-License-Identifier: Apache-2.0
#include "OptionDeclarations.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <system_error>

namespace {

CLI::Option* addValue(CLI::App& app, const ValueOption& option) {
  if (!option.isRepeatable) return app.add_option_function(option.names, option.take, option.description);
  const auto takeEach = [take = option.take](const std::vector<std::string>& values) {
    for (const std::string& value : values) take(value);
  };
  CLI::Option* const added =
      app.add_option_function<std::vector<std::string>>(option.names, takeEach, option.description);
  // An option is repeated with its name; arguments follow each other.
  return added->allow_extra_args(!added->nonpositional());
}

}  // namespace

void describeCommand(CLI::App& app, const char* description, const char* footer) {
  app.description(description);
  app.footer(footer);
}

void declareValue(CLI::App& app, const ValueOption& option) {
  CLI::Option* const added = addValue(app, option)->type_name(option.type)->required(option.isRequired);
  if (option.check != nullptr) added->check(CLI::Validator(option.check, ""));
}

void declareFlag(CLI::App& app, const char* names, bool& isSet, const char* description) {
  app.add_flag(names, isSet, description)->disable_flag_override();
}

void declareVersionFlag(CLI::App& app, const char* name, const std::string& text, const char* description) {
  app.set_version_flag(name, text, description)->disable_flag_override();
}

void declareExclusion(CLI::App& app, const char* name, const char* other) {
  app.get_option(name)->excludes(app.get_option(other));
}

void refuseBoth(const char* name, const char* other) { throw CLI::ExcludesError(name, other); }

void refuseWithout(const char* name) { throw CLI::RequiredError(name); }

std::string checkFile(const std::string& given) { return CLI::ExistingFile(given); }

QORuint64 parseCount(const std::string& given) noexcept {
  QORuint64 count = 0;
  const char* const end = given.data() + given.size();
  const auto [behind, error] = std::from_chars(given.data(), end, count);
  return error == std::errc() && behind == end ? count : 0;
}

std::string checkCount(const std::string& given) {
  return parseCount(given) != 0 ? "" : "'" + given + "' is not a whole number of 1 or more";
}

double parseSeconds(const std::string& given) noexcept {
  double seconds = 0;
  const char* const end = given.data() + given.size();
  const auto [behind, error] = std::from_chars(given.data(), end, seconds);
  const bool isGood = error == std::errc() && behind == end && std::isfinite(seconds) && seconds > 0;
  return isGood ? seconds : 0;
}

std::string checkSeconds(const std::string& given) {
  return parseSeconds(given) != 0 ? "" : "'" + given + "' is not a number of seconds above 0";
}
