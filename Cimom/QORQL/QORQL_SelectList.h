// The select list: parsed between SELECT and FROM, executed as the projection.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SELECTLIST_H
#define QORQL_SELECTLIST_H

#include <string_view>
#include <unordered_map>
#include <vector>

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Executable.h"
#include "Cimom/QORQL/QORQL_Fault.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "cimom/CQoriBaseObject.h"

class QORQL_DataRow;
class QORQL_DataTable;
class QORQL_Lexer;
class QORQL_ProjectionPlan;
class QORQL_TableHeader;
class IQoriObject;

enum QORQL_SelectListAggregate { SEL_UNKNOWN = 0, SEL_AGGREGATE = 1, SEL_NONAGGREGATE = 2 };

// What a statement selects. Immutable after name resolution, but for the results of aggregates, which its entries
// keep.
class QORQL_SelectList : public QORQL_Executable {
 public:
  using EntryList = QORSmrPtr<QORValSlist<QORSmrPtr<QORQL_SelectedEntry>>>;

  // A function of the select list while rows are put together.
  struct Function {
    QORString className;
    QORString propertyName;
    QORString alias;
    QORString id;
    QORuint32 functionID = QORQL_FUNCTIONID_UNKNOWN;
    QORSmrPtr<IQoriValue> value;
    bool isTypeSet = false;
  };
  // What a function gave, by its name in the VALUES object.
  struct FunctionResult {
    QORString id;
    QORSmrPtr<IQoriValue> result;
  };
  // The functions of one row.
  struct FunctionResults {
    bool hasFunctions = false;
    bool hasAggregateFunctions = false;
    bool hasOnlyAggregateFunctions = true;
    QORValSlist<FunctionResult> results;  // in entry order
  };

  // The class of the pseudo-object that holds function results, and its column's name.
  static const QORString _FUNCTIONS_VALUES_CLASS;
  // The declared type of a column of which none is known.
  static const QORString DEFAULT_COLUMN_DATA_TYPE;
  // For callers that render results as XML or HTML: the stream's text is escaped by the object manager.
  static const QORString XML_LT;
  static const QORString XML_GT;
  static const QORString XML_QUOTE;
  static const QORString HTML_LINE_FEED;
  static const QORString HTML_SPACE;

  // Shares the list of the entries, which is never null; `entryCount` is the n of FIRST n.
  QORQL_SelectList(EntryList entries, const QORboolean& areAllEntriesAggregates, const QORboolean& isFirstUsed,
                   const QORuint32& entryCount, bool isSelectAll, const QORString& queryString,
                   const QORString& queryLanguage);
  ~QORQL_SelectList() override;

  // Entered on SELECT; leaves the first token after the last entry current.
  static QORSmrPtr<QORQL_Executable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                           QORQL_ProjectionMap& classInfos, const QORString& queryString,
                                           const QORString& queryLanguage);
  // Folds one entry, which begins at that byte of the text, into the list's aggregate state. THROWS
  // QORQL_ParseException code 15, line 0.
  static void _checkForAggregateMismatch(QORboolean isAggregate, QORQL_SelectListAggregate& state,
                                         QORuint32 offset = QORQL_Fault::kNowhere);

  // What the constructor was given; the list is shared.
  QORboolean AreAllEntriesAggregates() const noexcept { return _areAllEntriesAggregates; }
  EntryList getSelectedEntries() const { return _selectedEntries; }
  // Of the last entry alone.
  bool isSelectAll() const noexcept { return _isSelectAll; }
  QORboolean isFirstUsed() const noexcept { return _isFirstUsed; }
  // The n of FIRST n.
  QORuint32 getFirstCount() const noexcept { return _entries; }
  // The name of an entry's column: the alias, else class "." property.
  static QORString _getCellName(const QORQL_SelectedEntry& entry);
  // The name of a function entry's property in the VALUES object: the alias, else FUNCTION_class_property.
  static QORString _functionID(const QORQL_SelectedEntry& entry);

  // The VALUES object of a row with the given properties, one for each function.
  static QORSmrPtr<IQoriObject> valuesObject(const QORSmrPtr<CQoriBaseObject::PropertyList>& properties);

  // The sort key, whose classes and properties the silent run keeps; null when there is none.
  void setOrderByKey(const QORSmrPtr<QORQL_Evaluatable>& key) { _orderByKey = key; }
  const QORSmrPtr<QORQL_Evaluatable>& getOrderByKey() const noexcept { return _orderByKey; }

  // Projects the table and puts the result in its place; streams it where `out` is not null. THROWS
  // QORQL_ParseException code 15 for an aggregate that cannot be streamed.
  void execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
               const QORString& nameSpace) override;

 private:
  using HeaderList = QORSmrPtr<QORValSlist<QORSmrPtr<QORQL_TableHeader>>>;
  using RowList = QORSmrPtr<QORValSlist<QORSmrPtr<QORQL_DataRow>>>;
  using Table = QORSmrPtr<QORQL_DataTable>;
  using PropertyList = QORSmrPtr<QORValSlist<QORString>>;
  using PropertyListMap = QORValMap<QORString, PropertyList>;

  void _updateTableIfRequired(QORQL_SymbolTable& symbols, Table& table, const QORString& nameSpace) const;
  static HeaderList _buildTableHeader(const Table& table, const QORQL_ProjectionPlan& plan);
  RowList _buildTableRows(Table& table, const Table& resultTable, QORQL_SymbolTable& symbols, const HeaderList& headers,
                          const QORQL_ProjectionPlan& plan) const;
  void _buildRows(Table& table, const Table& resultTable, QORQL_SymbolTable& symbols, const HeaderList& headers,
                  const QORQL_ProjectionPlan& plan, FunctionResults& results, const RowList& rows) const;
  QORSmrPtr<QORQL_DataRow> _buildRow(QORSmrPtr<QORQL_DataRow>& row, const Table& resultTable, const HeaderList& headers,
                                     const QORQL_ProjectionPlan& plan, const QORSmrPtr<IQoriObject>& values) const;
  // Leaves the projection of lazy rows to whoever looks at them. False when
  // only building the rows is sure to give the same result.
  bool _projectLazily(QORQL_SymbolTable& symbols, Table& table, const Table& resultTable, const HeaderList& headers,
                      const QORQL_ProjectionPlan& plan) const;
  QORSmrPtr<FunctionResults> _getFunctionResults(QORQL_SymbolTable& symbols, Table& table) const;
  // A call that is computed row by row, and the slot of its entry. BORROWED.
  struct RowFunction {
    QORQL_Evaluatable* expression;
    QORSmrPtr<IQoriValue>* result;
  };
  std::vector<RowFunction> _rowFunctions(FunctionResults& results) const;
  static void _evaluateRowFunctions(QORQL_SymbolTable& symbols, QORSmrPtr<QORQL_DataRow>& row,
                                    const std::vector<RowFunction>& functions);
  // The results by their ids, of equal ones the first.
  using ResultSlots = std::unordered_map<std::string_view, QORSmrPtr<IQoriValue>*>;
  static QORSmrPtr<IQoriValue>& _getFunctionResult(const QORQL_SelectedEntry& entry, const ResultSlots& slots);
  static QORSmrPtr<IQoriObject> _functionResultsToObject(const FunctionResults& results);
  static PropertyList _getPropList(const QORString& className, PropertyListMap& map);
  static void _addAllProperties(const QORString& className, const QORSmrPtr<IQoriObject>& object, PropertyListMap& map);
  void _typeCheckAggregateEntries(const Table& table) const;

  EntryList _selectedEntries;
  QORboolean _areAllEntriesAggregates;
  QORboolean _isFirstUsed;
  QORuint32 _entries;
  bool _isSelectAll;
  QORString _queryString;
  QORString _queryLanguage;
  QORSmrPtr<QORQL_Evaluatable> _orderByKey;
};

#endif
