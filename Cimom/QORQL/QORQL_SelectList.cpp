// The select list: parsing and the rules on mixing entries.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_SelectList.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"

namespace {

// FIRST n, when it is written; leaves SELECT or the number current.
struct FirstPrefix {
  QORboolean isUsed = false;
  QORuint32 count = 0;
  QORuint32 offset = 0;
};

FirstPrefix parseFirst(QORQL_Lexer& lexer) {
  FirstPrefix first;
  if (lexer.lookAhead(1).getType() != TokenFIRST) return first;
  first.offset = lexer.next(false).getOffset();
  const QORString number = lexer.next(false).getValue();
  if (!number.isNumeric()) QORQL_raise(QORQL_Messages::kFirstNotNumeric, lexer);
  first.isUsed = true;
  first.count = static_cast<QORuint32>(number.atoi());
  return first;
}

}  // namespace

QORQL_SelectList::QORQL_SelectList(EntryList entries, const QORboolean& areAllEntriesAggregates,
                                   const QORboolean& isFirstUsed, const QORuint32& entryCount, bool isSelectAll,
                                   const QORString& queryString, const QORString& queryLanguage)
    : _selectedEntries(std::move(entries)),
      _areAllEntriesAggregates(areAllEntriesAggregates),
      _isFirstUsed(isFirstUsed),
      _entries(entryCount),
      _isSelectAll(isSelectAll),
      _queryString(queryString),
      _queryLanguage(queryLanguage) {}

QORQL_SelectList::~QORQL_SelectList() = default;

QORSmrPtr<QORQL_Executable> QORQL_SelectList::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                    QORQL_ProjectionMap& classInfos, const QORString& queryString,
                                                    const QORString& queryLanguage) {
  if (lexer.getCurrent().getType() != TokenSELECT) QORQL_raise(QORQL_Messages::kSelectExpected, lexer);
  const FirstPrefix first = parseFirst(lexer);
  EntryList entries = EntryList::MakeIn(lexer.slabs());
  QORQL_SelectListAggregate state = SEL_UNKNOWN;
  bool isSelectAll = false;
  do {
    lexer.next(false);
    QORSmrPtr<QORQL_SelectedEntry> entry =
        QORQL_SelectedEntry::parse(symbolTable, lexer, classInfos, queryString, queryLanguage);
    _checkForAggregateMismatch(entry->isEntryAggregate(), state, entry->getOffset());
    isSelectAll = entry->isSelectAll();  // of the last entry alone: `*, a` is no select-all list
    entries->append(std::move(entry), lexer.slabs());
  } while (lexer.getCurrent().getType() == TokenCOMMA);
  if (entries->isEmpty()) QORQL_raise(QORQL_Messages::kSelectListMissing, lexer);
  const QORboolean areAllAggregates = state == SEL_AGGREGATE;
  if (areAllAggregates && first.isUsed) {
    QORQL_raiseAt(first.offset, QORQL_Messages::kFirstWithAggregates, lexer);
  }
  return QORSmrPtr<QORQL_Executable>::MakeIn<QORQL_SelectList>(lexer.slabs(), std::move(entries), areAllAggregates,
                                                               first.isUsed, first.count, isSelectAll, queryString,
                                                               queryLanguage);
}

void QORQL_SelectList::_checkForAggregateMismatch(QORboolean isAggregate, QORQL_SelectListAggregate& state,
                                                  QORuint32 offset) {
  const QORQL_SelectListAggregate kind = isAggregate ? SEL_AGGREGATE : SEL_NONAGGREGATE;
  if (state != SEL_UNKNOWN && state != kind) {
    QORQL_raise(QORQL_Messages::kAggregateMismatch, 0, offset, QORString());
  }
  state = kind;
}

QORString QORQL_SelectList::_getCellName(const QORQL_SelectedEntry& entry) {
  if (!entry.getAlias().isEmpty()) return entry.getAlias();
  return entry.getClassName() + "." + entry.getPropertyName();
}
