// An object manager that knows indications, and filters checked against it.
// SPDX-License-Identifier: Apache-2.0
#include "FilterSession.h"

#include <iostream>

#include "Cimom/Providers/IndicationSchema.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "FilterWarnings.h"
#include "IndicationSink.h"
#include "ScannerOutput.h"
#include "StatementFault.h"
#include "StatementText.h"
#include "WqlHint.h"

namespace {

SessionOptions sessionOptions(const FilterOptions& options) {
  SessionOptions session = options.session;
  session.refusesFaults = options.isStrict;
  return session;
}

// Whether the fault is a ; behind the filter.
bool endsWithSemicolon(const StatementText& filter, const CQLQueryFault& fault) {
  const std::size_t piece = filter.pieceAt(fault.offset);
  return filter.is(piece, ";") && piece + 1 == filter.pieces().size();
}

// Whether the fault is WITHIN, of which a hint tells.
bool isAtInterval(const StatementText& filter, const CQLQueryFault& fault) {
  return fault.kind == CQLQueryFault::kSyntax && filter.is(filter.pieceAt(fault.offset), "WITHIN");
}

}  // namespace

FilterSession::FilterSession(const FilterOptions& options) : _options(options), _session(sessionOptions(options)) {}

void FilterSession::open(Session::LeftOut leftOut) {
  _session.open(indicationSchemaMof(), leftOut);
  declareIndications(manager(), nameSpace(), _options.session.isQuiet);
}

CheckedFilter FilterSession::check(const std::string& text, QORuint32 firstLine, QORuint32 firstColumn) {
  CheckedFilter checked;
  checked.statement =
      std::make_unique<CQLQueryStatement>(QORString(_options.language), QORString(text), nameSpace(), nameSpace());
  {
    const ScannerOutput scanner;
    checked.statement->validate();
    checked.warnings = scanner.passedOver({text, firstLine, firstColumn});
  }
  _session.dropWarnings();
  const StatementText filter(text, firstLine, firstColumn);
  const CQLQueryFault& fault = checked.statement->getFault();
  if (fault.kind != CQLQueryFault::kNone) {
    const StatementFault described(manager(), nameSpace(), filter);
    checked.reason = described.describe(fault).text;
    checked.lacksClass = fault.kind != CQLQueryFault::kSyntax && described.hasUnknownClass();
    // What was left out may be the cause, such as quotes of another kind.
    if (fault.kind != CQLQueryFault::kLanguage) {
      for (const std::string& warning : checked.warnings) checked.reason += "; " + warning;
    }
    checked.hint = QORQL_hintOfFilter({fault.cause, fault.name, fault.className, fault.offset}, text);
    const std::string hint = wqlHint(filter, {fault.offset});
    if (isAtInterval(filter, fault)) {
      checked.hint.text = hint;
    } else if (!hint.empty()) {
      checked.reason += "; " + hint;
    }
    checked.reason = printableText(checked.reason);
    if (checked.hint.text.empty() && endsWithSemicolon(filter, fault)) {
      checked.hint = {"", "a filter ends without a ;", fault.offset};
    }
    checked.text = text;
  } else {
    std::vector<std::size_t> places;
    for (const Warning& warning : FilterWarnings(manager(), nameSpace(), filter).of(*checked.statement)) {
      const std::string place = warning.offset ? " (" + filter.place(*warning.offset) + ")" : "";
      checked.warnings.push_back(warning.text + place);
      if (warning.offset) places.push_back(*warning.offset);
    }
    const std::string hint = wqlHint(filter, places);
    if (!hint.empty()) checked.warnings.push_back(hint);
  }
  for (const StatementText::Piece& piece : filter.pieces()) {
    if (piece.kind == StatementText::Kind::Word) _session.tellOfLeftOut(piece.text);
  }
  return checked;
}

CheckedFilter FilterSession::check(const FileFilter& filter) {
  CheckedFilter checked = check(filter.text, filter.firstLine, filter.firstColumn);
  if (filter.isStray && !checked.reason.empty()) checked.hint = {"", kStrayHint};
  return checked;
}

void FilterSession::tellHint(const CheckedFilter& filter, const std::string& place) const {
  if (!_options.session.isQuiet) printHint(filter.hint, filter.text, place);
}

bool FilterSession::passes(const CheckedFilter& filter, const std::string& place) const {
  const bool isRefused = _options.isStrict && !filter.warnings.empty();
  for (const std::string& warning : filter.warnings) {
    const std::string line = place + printableText(warning);
    if (isRefused) {
      reportRefusal(line);
    } else if (!_options.session.isQuiet) {
      std::cerr << "qorql: warning: " << line << '\n';
    }
  }
  return !isRefused;
}
