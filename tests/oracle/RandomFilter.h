// Schemas, instances and filters by chance, for the model and the engine alike.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_RANDOMFILTER_H
#define QORQL_TESTS_RANDOMFILTER_H

#include <cstdint>
#include <random>

#include "FilterModel.h"

class RandomChoice {
 public:
  explicit RandomChoice(std::uint32_t seed) : _random(seed) {}

  unsigned below(unsigned limit) { return static_cast<unsigned>(_random() % limit); }
  bool chance(unsigned percent) { return below(100) < percent; }
  template <class List>
  const typename List::value_type& of(const List& list) {
    return list[below(static_cast<unsigned>(list.size()))];
  }

 private:
  std::mt19937 _random;
};

// Two families of classes with subclasses, which share some of their properties'
// names, and a class and an association besides. Property names are those of the types, so that filters meet
// properties of every kind, and of one name in several classes.
class RandomSchema {
 public:
  explicit RandomSchema(RandomChoice& choice) : _choice(choice) {}

  filter_model::Schema make();
  // An instance of any class; objects hold others down to a depth.
  std::shared_ptr<filter_model::Thing> makeThing(const filter_model::Schema& schema, int depth);

 private:
  void addClass(filter_model::Schema& schema, const std::string& name, const std::string& superName, unsigned percent);
  filter_model::Value makeValue(const filter_model::Schema& schema, const filter_model::PropertyType& property,
                                int depth);
  filter_model::Value makeScalar(const filter_model::Schema& schema, const std::string& type, int depth);

  RandomChoice& _choice;
};

// Filters that are valid for a schema, though many of them compare what does not.
class RandomFilter {
 public:
  RandomFilter(RandomChoice& choice, const filter_model::Schema& schema) : _choice(choice), _schema(schema) {}

  filter_model::Filter make();

 private:
  using Factor = filter_model::Factor;
  using Sum = filter_model::Sum;
  using Comparison = filter_model::Comparison;

  void addSources();
  std::string selectList();
  std::string spelled(std::string name);
  bool isUnambiguous(const std::string& property) const;
  const filter_model::ClassType& anySource();
  std::string nameOfSource(const filter_model::ClassType& source);
  Comparison comparison(int depth);
  Comparison alikeComparison();
  Comparison isaTest();
  Comparison wellFormed(int depth);
  Sum sum(int depth, bool isAsked);
  filter_model::Product product(int depth);
  Factor factor(int depth);
  Factor reference(bool isWhole);
  void goThroughObjects(Factor& factor);
  Factor literal();
  Factor plainReference(const filter_model::PropertyType& property);
  Factor literalFor(const std::string& type);

  RandomChoice& _choice;
  const filter_model::Schema& _schema;
  filter_model::Filter _filter;
};

#endif
