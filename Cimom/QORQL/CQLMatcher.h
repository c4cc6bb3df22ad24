// A filter's WHERE clause prepared for matching: paths to properties, literals
// and conditions found once, then applied to any number of instances.
#ifndef QORQL_CQLMATCHER_H
#define QORQL_CQLMATCHER_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "cimom/IQoriObject.h"

class CQLQueryStatement;

// Where a factor's value is on an instance: a property, or one reached through
// properties that hold embedded objects, and a place in it. Threads may share one.
class CQLPropertyPath {
 public:
  // BORROWS the statement.
  CQLPropertyPath(const CQLQueryStatement& statement, const QORQL_Factor& factor);

  // Null when any step is missing, of another class than the scope asks for, or
  // no object. An index outside the array is missing too.
  QORSmrPtr<IQoriValue> value(const IQoriObject& instance) const;
  // A view of the same, valid while the instance, `object` and `holder` live.
  // Allocates nothing where the objects have layouts.
  QoriScalar view(const IQoriObject& instance, QORSmrPtr<IQoriObject>& object, QORSmrPtr<IQoriValue>& holder) const;
  // As a person would write it.
  std::string text() const;

 private:
  // One step, with the place where the property was last found: a guess that is
  // checked by name, so that threads and classes may share it.
  struct Step {
    explicit Step(const QORString& property) : name(property) {}
    QORString name;
    mutable std::atomic<QORuint32> place{0};
  };

  void addSteps(const QORString& path, const CQLQueryStatement& statement);
  QORsint32 placeOf(const Step& step, const IQoriLayout& layout) const;
  QORSmrPtr<IQoriValue> read(const IQoriObject& object, const Step& step) const;
  // The object that holds the last property; null when a step is missing.
  const IQoriObject* follow(const IQoriObject& instance, QORSmrPtr<IQoriObject>& object) const;
  QORSmrPtr<IQoriValue> element(const QORSmrPtr<IQoriValue>& value) const;

  const CQLQueryStatement& _statement;
  std::vector<std::unique_ptr<Step>> _steps;  // empty: nothing can be read
  QORString _scope;
  QORsint32 _index;
};

// The names on both sides of ISA: a property, or text in its place, and a class.
struct CQLIsaNames {
  explicit CQLIsaNames(const QORQL_Comparison& comparison);
  bool areBothGiven = false;
  QORString propertyName;
  QORString className;
};

// One condition of a chain of ANDs.
class CQLCondition {
 public:
  virtual ~CQLCondition() = default;
  virtual bool holds(const QORSmrPtr<IQoriObject>& instance) const = 0;
  // The condition with the values that it compared on the instance.
  virtual std::string explain(const QORSmrPtr<IQoriObject>& instance) const = 0;
};

// Threads may share one. BORROWS the statement.
class CQLMatcher {
 public:
  explicit CQLMatcher(const CQLQueryStatement& statement);
  ~CQLMatcher();
  bool matches(const QORSmrPtr<IQoriObject>& instance) const;
  // The first condition that does not hold; null when all do.
  const CQLCondition* firstFailure(const QORSmrPtr<IQoriObject>& instance) const;
  // Why no instance can match, whatever it holds; empty when one may.
  const std::string& hopeless() const noexcept { return _hopeless; }

 private:
  void addConditions(const CQLQueryStatement& statement, const QORSmrPtr<QORQL_Evaluatable>& expression);

  std::vector<std::unique_ptr<CQLCondition>> _conditions;
  std::string _hopeless;
};

#endif
