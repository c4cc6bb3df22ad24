// What may have been meant by a statement that is refused or fails.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_HINT_H
#define QORQL_HINT_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/QORQL_Fault.h"
#include "cmpbase.h"

// What the engine says of an error stays as it is; a hint says besides how the
// language has it. A value.
//
//   catch (const QoriBaseException& error) {
//     const QORQL_Hint hint = QORQL_hintOf(error, text);
//     if (!hint.text.empty()) std::cerr << error.what() << "\nhint: " << hint.text << '\n';
//   }
struct QORQL_Hint {
  // Whether it is about a word of the text.
  bool hasPlace() const noexcept { return offset != QORQL_Fault::kNowhere; }

  const char* rule = "";  // which of QORQL_hintRules() it is of; empty like the text
  std::string text{};     // for a person, one line; empty where nothing better is known
  QORuint32 offset =
      QORQL_Fault::kNowhere;  // the byte of the statement's text; QORQL_placeOf makes a line and a column
};

// What the class repository cannot list; a function that is empty knows nothing.
struct QORQL_KnownNames {
  QORString nameSpace{};                                                           // that the statement asks
  std::function<std::vector<QORString>()> classes{};                               // of the namespace
  std::function<std::vector<QORString>(const QORString& className)> properties{};  // of a class, inherited ones too
};

// The hint for an error of parsing or running the statement of that text, the first of the rules that knows one.
// With names it also says which name was meant by one that does not exist. Linear in the text and the names; asked only
// after an error, it costs a statement without one nothing. THROWS nothing but what the names' functions throw, and
// std::bad_alloc. Any thread.
QORQL_Hint QORQL_hintOf(const QoriBaseException& error, std::string_view text, const QORQL_KnownNames& names = {});
// The same for a fault that was kept.
QORQL_Hint QORQL_hintOf(const QORQL_Fault& fault, std::string_view text, const QORQL_KnownNames& names = {});
// The same for a filter's fault: it advises only what a filter knows, which are comparisons that AND joins.
QORQL_Hint QORQL_hintOfFilter(const QORQL_Fault& fault, std::string_view text, const QORQL_KnownNames& names = {});

// The names of the rules, in the order in which they are asked.
std::vector<std::string> QORQL_hintRules();

#endif
