// Asks the engine and the model of matching about filters by chance:
// random_filters COUNT SEED. The prepared form, the walk of the tree and the
// model must agree for each instance, whole and cut down to the listed properties.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <memory>
#include <vector>

#include "ChanceMain.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "EngineThings.h"
#include "RandomFilter.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriInstanceName.h"

using namespace filter_model;

namespace {

using Object = QORSmrPtr<IQoriObject>;

constexpr unsigned long kFiltersOfOneSchema = 100;
constexpr unsigned kInstances = 24;
constexpr unsigned kAsked = 6;
constexpr int kDepth = 2;

// Counts what was asked, so that one sees what the filters reach.
struct Tally {
  unsigned long filters = 0;
  unsigned long asked = 0;
  unsigned long ofFrom = 0;
  unsigned long matches = 0;
  unsigned long never = 0;
  unsigned long failed = 0;
};

struct Instance {
  std::shared_ptr<Thing> thing;
  std::vector<Object> objects;  // one thing, with a layout and without
};

// One filter, asked of instances.
class Trial {
 public:
  Trial(const Filter& filter, bool isOwnNameSpace, Tally& tally)
      : _filter(filter),
        _statement("DMTF:CQL", QORString(filter.toText()), isOwnNameSpace ? kNameSpace : kOther,
                   isOwnNameSpace ? "" : kNameSpace),
        _tally(tally) {}

  bool isValid() {
    ++_tally.filters;
    if (_statement.validate() == QUERY_VALIDATE_SUCCESS) return true;
    return fail(std::string("is refused: ") + std::string(_statement.getFault().message.view()));
  }

  bool isOfFrom(const Schema& schema, const Instance& instance) const {
    return Matching(schema, _filter, *instance.thing).isOfFrom();
  }

  // By the classes of the schema, which the object manager has now.
  bool ask(const Schema& schema, const Instance& instance) {
    const Matching model(schema, _filter, *instance.thing);
    const bool expected = model.holds();
    ++_tally.asked;
    _tally.ofFrom += model.isOfFrom() ? 1 : 0;
    _tally.matches += expected ? 1 : 0;
    for (const Object& object : instance.objects) {
      if (!isAsExpected(object, expected, "") || !isAsExpectedByList(schema, object, expected)) return false;
    }
    return isToldRight(instance.objects[0], expected) && isOfItsNameSpaceAlone(instance.objects[0]);
  }

 private:
  bool fail(const std::string& what) {
    std::cout << _filter.toText() << "\n  " << what << "\n";
    ++_tally.failed;
    return false;
  }

  bool isAsExpected(const Object& object, bool expected, const std::string& kind) {
    const bool prepared = _statement.isMatch(object, kNameSpace);
    const bool walked = _statement.isMatchFromClause(object) && _statement.isMatchWhereClause(object);
    if (prepared == expected && walked == expected) return true;
    std::string text = "prepared " + std::to_string(prepared) + ", walked " + std::to_string(walked) + ", expected " +
                       std::to_string(expected) + kind + ": " + std::string(object->getClassName().view());
    for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) {
      const QORSmrPtr<IQoriProperty> property(object->getPropertyAt(i));
      const QORSmrPtr<IQoriValue> value(property->getValue());
      const std::string shown(value.IsNull() ? "NULL" : std::string(value->toString().view()));
      text += "\n    " + std::string(property->getName().view()) + " = " + shown;
    }
    return fail(text);
  }

  // With the properties that are listed for its class, and with one FROM class for that.
  bool isAsExpectedByList(const Schema& schema, const Object& object, bool expected) {
    std::vector<std::string> asked = {std::string(object->getClassName().view())};
    if (_filter.from.size() == 1 && schema.isSubClass(asked[0], _filter.from[0].className)) {
      asked.push_back(_filter.from[0].className);
    }
    for (const std::string& className : asked) {
      const QORSmrPtr<IQoriInstanceName> path(new CQoriInstanceName(QORString(className), nullptr, nullptr));
      for (const auto& names : {_statement.getPropertyList(path), _statement.getWherePropertyList(path)}) {
        if (names.IsNull()) continue;
        const Object restricted(new CQoriBaseObject(object, names, false));
        if (!isAsExpected(restricted, expected, " with the list of " + className)) return false;
      }
    }
    return true;
  }

  // What explains a match and what says that there is none agree with it.
  bool isToldRight(const Object& object, bool expected) {
    std::string why;
    const bool explained = _statement.explainMatch(object, kNameSpace, why);
    if (explained != expected || why.empty() != expected) return fail("is explained by '" + why + "'");
    const bool isNever = !_statement.neverMatchesBecause().isEmpty();
    _tally.never += isNever ? 1 : 0;
    return !isNever || !expected || fail("is said to match never");
  }

  bool isOfItsNameSpaceAlone(const Object& object) {
    return !_statement.isMatch(object, kOther) || fail("matches in another namespace");
  }

  const Filter _filter;
  CQLQueryStatement _statement;
  Tally& _tally;
};

// Those that have no subclasses come later.
Schema withoutLeaves(const Schema& schema) {
  Schema early;
  for (const ClassType& type : schema.classes) {
    const bool isLeaf = type.name.starts_with("C_") && type.name.ends_with("2");
    if (!isLeaf) early.classes.push_back(type);
  }
  return early;
}

// Rather instances of a FROM class.
bool askSome(RandomChoice& choice, const Schema& schema, const std::vector<Instance>& instances, Trial& trial) {
  const auto pick = [&]() -> const Instance& {
    for (unsigned i = 0; i < 4; ++i) {
      const Instance& instance = choice.of(instances);
      if (trial.isOfFrom(schema, instance)) return instance;
    }
    return choice.of(instances);
  };
  for (unsigned i = 0; i < kAsked; ++i) {
    if (!trial.ask(schema, pick())) return false;
  }
  return true;
}

// Filters of the classes that a schema has at first; some are asked again when it has all.
void tryOneSchema(RandomChoice& choice, unsigned long count, Tally& tally) {
  EmbeddedObjectManager maker;  // of instances, also of classes that come later
  maker.makeCurrent();
  RandomSchema schemas(choice);
  const Schema whole = schemas.make();
  declare(whole);
  std::vector<Instance> instances(kInstances);
  for (Instance& instance : instances) {
    instance.thing = schemas.makeThing(whole, kDepth);
    instance.objects = {laidOutObject(*instance.thing), loneObject(*instance.thing)};
  }
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  const Schema first = choice.chance(50) ? withoutLeaves(whole) : whole;
  declare(first);
  RandomFilter filters(choice, first);
  std::vector<std::unique_ptr<Trial>> asked;
  for (unsigned long i = 0; i < count && tally.failed < 10; ++i) {
    auto trial = std::make_unique<Trial>(filters.make(), choice.chance(50), tally);
    if (trial->isValid() && askSome(choice, first, instances, *trial)) asked.push_back(std::move(trial));
  }
  declare(whole);
  for (std::size_t i = 0; i < asked.size(); i += 4) askSome(choice, whole, instances, *asked[i]);
}

int run(unsigned long count, std::uint32_t seed) {
  Tally tally;
  RandomChoice choice(seed);
  while (tally.filters < count && tally.failed < 10) {
    tryOneSchema(choice, std::min(kFiltersOfOneSchema, count - tally.filters), tally);
  }
  std::cout << tally.filters << " filters, asked " << tally.asked << " times, " << tally.ofFrom
            << " of FROM: " << tally.matches << " matches, " << tally.never << " never, " << tally.failed << " wrong\n";
  return tally.failed == 0 && tally.matches > tally.asked / 8 && tally.never < tally.asked / 2 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) { return mainByChance(count, arguments, "random_filters COUNT SEED", run); }
