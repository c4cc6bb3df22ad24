// Compares what a statement left with what its case expects, line by line.
// SPDX-License-Identifier: Apache-2.0
#include "Judge.h"

#include <algorithm>
#include <sstream>

namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  std::istringstream stream(text);
  Lines lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  if (!text.empty() && text.back() != '\n') lines.back() += "  (no line feed at the end)";
  return lines;
}

// Both sides in full, the lines from the first to the last difference marked.
std::string difference(const std::string& title, const Lines& expected, const Lines& got) {
  if (expected == got) return {};
  std::size_t front = 0;
  while (front < expected.size() && front < got.size() && expected[front] == got[front]) ++front;
  std::size_t back = 0;
  while (back < expected.size() - front && back < got.size() - front &&
         expected[expected.size() - 1 - back] == got[got.size() - 1 - back]) {
    ++back;
  }
  std::string text = "  " + title + ": - expected, + got\n";
  for (std::size_t i = 0; i < front; ++i) text += "      " + expected[i] + "\n";
  for (std::size_t i = front; i < expected.size() - back; ++i) text += "    - " + expected[i] + "\n";
  for (std::size_t i = front; i < got.size() - back; ++i) text += "    + " + got[i] + "\n";
  for (std::size_t i = expected.size() - back; i < expected.size(); ++i) text += "      " + expected[i] + "\n";
  return text;
}

std::string difference(const std::string& title, const std::string& expected, const std::string& got) {
  return expected == got ? std::string() : difference(title, linesOf(expected), linesOf(got));
}

std::string describe(const Failure& failure) {
  return failure.toText() + (failure.kind == FailureKind::None ? "\n" : "\n" + failure.message + "\n");
}

// A message that the case leaves open counts as met.
std::string judgeFailure(const Failure& expected, const Failure& got) {
  Failure wanted = expected;
  if (wanted.message.empty() && wanted.kind != FailureKind::None) wanted.message = got.message;
  return difference("error", describe(wanted), describe(got));
}

// What is printed before the hint of what was meant, which may follow the line of an error. The hints have their own
// tests.
std::string withoutHint(const std::string& err) {
  const std::size_t hint = err.find("\nqorql: hint: ");
  return hint == std::string::npos ? err : err.substr(0, hint + 1);
}

// The tool's line for an expected failure, up to the parts that the case leaves open.
std::string judgeToolError(const Failure& expected, const std::string& printed) {
  const std::string err = withoutHint(printed);
  const std::string line = expected.line == 0 ? std::string() : "line " + std::to_string(expected.line) + ", ";
  const std::string place = " (" + line + "CIM status " +
                            (expected.kind == FailureKind::Platform ? "1" : std::to_string(expected.status)) + ")\n";
  if (!expected.message.empty()) return difference("stderr", "qorql: error: " + expected.message + place, err);
  const bool isError = err.starts_with("qorql: error: ") && err.ends_with(place);
  return isError ? std::string() : difference("stderr", "qorql: error: (any message)" + place, err);
}

// Whether the library is to leave out rows, which it logs.
bool endsEarly(const Case& one) {
  return std::any_of(one.log.begin(), one.log.end(), [](const std::string& line) {
    return line.find("Caught an exception occured while ") != std::string::npos;
  });
}

// Takes the lines at the front that tell what the scanner echoes elsewhere; false when there is none.
bool takePassedOver(std::string& err) {
  constexpr std::string_view kPassedOver = "qorql: warning: skipped";
  bool isFound = false;
  for (; err.starts_with(kPassedOver); isFound = true) err.erase(0, err.find('\n') + 1);
  return isFound;
}

}  // namespace

std::string judgeLibrary(const Case& one, const Outcome& outcome) {
  std::string text = judgeFailure(one.failure, outcome.failure);
  if (one.expected == Case::Expected::Csv) text += difference("rows", one.result, outcome.rows);
  if (one.expected == Case::Expected::Xml) text += difference("stream", one.result, outcome.stream);
  if (one.hasCalls) text += difference("calls", one.calls, outcome.calls);
  text += difference("echo", one.echo, outcome.echo);
  return text + difference("log", one.log, outcome.errorLog);
}

std::string judgeTool(const Case& one, const ToolOutcome& outcome) {
  const bool isFailure = one.expected == Case::Expected::Failure;
  const bool isCut = !isFailure && endsEarly(one);
  std::string text =
      difference("exit status", isFailure || isCut ? "1\n" : "0\n", std::to_string(outcome.status) + "\n");
  // A statement may fail after the stream has begun.
  const std::string out = isFailure ? outcome.out.substr(0, outcome.out.find("\n<IRETURNVALUE>")) : outcome.out;
  const bool isShown = !isCut || one.expected == Case::Expected::Xml;
  text += difference("stdout", isShown ? one.result : std::string(), out);
  std::string err = outcome.err;
  if (takePassedOver(err) == one.echo.empty()) text += difference("echo", one.echo, outcome.err);
  if (isFailure) return text + judgeToolError(one.failure, err);
  if (isCut)
    return text + (err.starts_with("qorql: error: ") ? "" : difference("stderr", "qorql: error: (any)\n", err));
  const bool isSilent = one.log.empty();
  return text + (isSilent ? difference("stderr", std::string(), err) : std::string());
}

std::string judgeModes(const Outcome& plain, const Outcome& lazy) {
  return difference("error, plain against lazy", describe(plain.failure), describe(lazy.failure)) +
         difference("rows, plain against lazy", plain.rows, lazy.rows) +
         difference("echo, plain against lazy", plain.echo, lazy.echo) +
         difference("stream, plain against lazy", plain.stream, lazy.stream) +
         difference("calls, plain against lazy", plain.calls, lazy.calls) +
         difference("log, plain against lazy", plain.log, lazy.log);
}
