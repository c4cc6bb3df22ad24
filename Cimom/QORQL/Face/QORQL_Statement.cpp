// A statement and its results: the parser, the table and the result reader, put together.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Face/QORQL_Statement.h"

#include <exception>
#include <utility>

#include "Cimom/QORQL/Explain/QORQL_DeclaredTypes.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_StatementPlaces.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

// The lexer goes when the text is read: the tree keeps what it needs of it.
struct QORQL_Statement::State {
  void parse() {
    if (!query.IsNull()) return;
    symbols = std::make_unique<QORQL_SymbolTable>(nullptr);  // a new one, since a failed attempt leaves names in it
    QORQL_Lexer lexer(text, false);
    query = QORQL_Query::parse(*symbols, lexer, false, text, language, nameSpace).StaticCast<QORQL_Query>();
  }

  const QORString text;
  const QORString nameSpace;
  const QORString language;
  QORQL_ResultReader::Declared declared{};
  std::unique_ptr<QORQL_SymbolTable> symbols{};
  QORSmrPtr<QORQL_Query> query{};
};

// The reader borrows all the rest.
struct QORQL_Result::Rows {
  explicit Rows(std::shared_ptr<QORQL_Statement::State> given) : state(std::move(given)) {}

  const std::shared_ptr<QORQL_Statement::State> state;
  QORSmrPtr<QORQL_DataTable> table{new QORQL_DataTable};
  std::unique_ptr<QORQL_ResultReader> reader;
};

namespace {

// Notes what ends a result early, and hands everything on to the monitor that was there before.
class EarlyEnd : public QORQL_ExecutionMonitor {
 public:
  bool isStopRequested() noexcept override { return _outer != nullptr && _outer->isStopRequested(); }
  void stepBegins(Step step, const QORString& subject) noexcept override {
    if (_outer != nullptr) _outer->stepBegins(step, subject);
  }
  void stepEnds(Step step) noexcept override {
    if (_outer != nullptr) _outer->stepEnds(step);
  }
  void conditionApplied(const QORQL_Comparison& comparison, Method method) noexcept override {
    if (_outer != nullptr) _outer->conditionApplied(comparison, method);
  }
  void resultEndsEarly(const std::exception_ptr& cause) noexcept override {
    if (_cause == nullptr) _cause = cause;
    if (_outer != nullptr) _outer->resultEndsEarly(cause);
  }

  void rethrow() const {
    if (_cause != nullptr) std::rethrow_exception(_cause);
  }

 private:
  QORQL_ExecutionMonitor* const _outer = QORQL_currentMonitor();
  std::exception_ptr _cause;
};

}  // namespace

QORQL_Result::QORQL_Result(std::unique_ptr<Rows> rows) noexcept : _rows(std::move(rows)) {}
QORQL_Result::QORQL_Result(QORQL_Result&& other) noexcept = default;
QORQL_Result& QORQL_Result::operator=(QORQL_Result&& other) noexcept = default;
QORQL_Result::~QORQL_Result() = default;

const std::vector<QORQL_Result::Column>& QORQL_Result::columns() const noexcept { return _rows->reader->columns(); }
QORuint64 QORQL_Result::rowCount() const noexcept { return _rows->reader->rowCount(); }
bool QORQL_Result::next() { return _rows->reader->next(); }
void QORQL_Result::restart() noexcept { _rows->reader->restart(); }
QORSmrPtr<IQoriValue> QORQL_Result::value(std::size_t index) { return _rows->reader->value(index); }
QoriScalar QORQL_Result::view(std::size_t index) { return _rows->reader->view(index); }
QORString QORQL_Result::rowClass() { return _rows->reader->rowClass(); }

QORString QORQL_Result::text(std::size_t index) {
  const QORSmrPtr<IQoriValue> found(value(index));
  return found.IsNull() ? QORString() : found->toString();
}

QORQL_Statement::QORQL_Statement(const QORString& text, const QORString& nameSpace, const QORString& language)
    : _state(new State{text, nameSpace, language}) {}
QORQL_Statement::QORQL_Statement(QORQL_Statement&& other) noexcept = default;
QORQL_Statement& QORQL_Statement::operator=(QORQL_Statement&& other) noexcept = default;
QORQL_Statement::~QORQL_Statement() = default;

void QORQL_Statement::setDeclaredProperties(QORQL_ResultReader::Declared declared) {
  _state->declared = std::move(declared);
}

void QORQL_Statement::parse() { _state->parse(); }

QORQL_Result QORQL_Statement::run(std::ostream* xml) {
  parse();
  auto rows = std::make_unique<QORQL_Result::Rows>(_state);
  EarlyEnd end;
  const QORQL_MonitorScope scope(end);
  _state->query->execute(*_state->symbols, rows->table, xml, _state->nameSpace);
  try {
    end.rethrow();
    rows->reader =
        std::make_unique<QORQL_ResultReader>(*_state->query, *_state->symbols, rows->table, _state->declared);
  } catch (QORQL_Exception& error) {  // one that the execution kept to itself, too, has its place
    QORQL_placeFault(*_state->query, error);
    throw;
  }
  return QORQL_Result(std::move(rows));
}

std::vector<QORQL_Surprise> QORQL_Statement::surprises() { return QORQL_findSurprises(query(), _state->nameSpace); }

namespace {

using DeclaredType = QORQL_DeclaredType;

// MIN, MAX, SUM and AVG begin with the widest type of their argument's family.
DeclaredType::Kind kindOf(const QORQL_Evaluatable* expression, const QORQL_DeclaredTypes& types) {
  const auto* const function = QORQL_nodeAs<QORQL_Function>(QORQL_peel(expression));
  const bool isFold = function != nullptr && QORQL_isAggregate(function->getFunctionID()) &&
                      function->getFunctionID() != QORQL_FUNCTIONID_COUNT;
  const DeclaredType type = types.of(isFold ? function->getParameters()->first().Get() : expression);
  if (type.isArray) return DeclaredType::kOther;
  const bool isNumber = type.kind > DeclaredType::kUnknown && type.kind < DeclaredType::kOther;
  return isNumber && isFold && function->getFunctionID() == QORQL_FUNCTIONID_AVG ? DeclaredType::kReal : type.kind;
}

QORString nameOf(DeclaredType::Kind kind) {
  switch (kind) {
    case DeclaredType::kUnsigned:
    case DeclaredType::kUint64:
      return "uint64";
    case DeclaredType::kSigned:
      return "sint64";
    case DeclaredType::kReal:
      return "real64";
    default:
      return QORString::emptyString();
  }
}

}  // namespace

std::vector<QORString> QORQL_Statement::computedTypes() {
  const QORQL_DeclaredTypes types(dynamic_cast<const QORQL_FromClause&>(*query().getFromClause()), _state->nameSpace);
  std::vector<QORString> names;
  const auto& list = dynamic_cast<const QORQL_SelectList&>(*_state->query->getSelectList());
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) {
    const QORQL_SelectedEntry& entry = *entries.key();
    if (entry.isSelectAll() || entry.isClassAll()) return {};
    names.push_back(entry.isPlainProperty() ? QORString::emptyString()
                                            : nameOf(kindOf(entry.getExpression().Get(), types)));
  }
  return names;
}

const QORQL_Query& QORQL_Statement::query() {
  parse();
  return *_state->query;
}

const QORQL_SymbolTable& QORQL_Statement::symbols() {
  parse();
  return *_state->symbols;
}

const QORString& QORQL_Statement::text() const noexcept { return _state->text; }
const QORString& QORQL_Statement::nameSpace() const noexcept { return _state->nameSpace; }
