// Every instance is stored once; a world is a choice among them, made where
// the engine asks for the instances of a class.
// SPDX-License-Identifier: Apache-2.0
#include "World.h"

#include "ClientInterposer.h"
#include "cimom/CQoriValue.h"

namespace {

constexpr char kNameSpace[] = "root/cimv2";
constexpr const char* kClassNames[kTables] = {"A", "B", "C"};

CimPropertyDeclaration property(const char* name, const QORSmrPtr<IQoriType>& type, bool isKey) {
  CimPropertyDeclaration declaration;
  declaration.name = name;
  declaration.type = type;
  if (isKey) declaration.qualifiers.push_back({"Key", new CQoriValue(true, CQoriType::boolean)});
  return declaration;
}

std::size_t indexOf(int position, const Key& key) {
  return static_cast<std::size_t>(position * (kGreatestKey + 1) + key.value_or(0));
}

CIMApi::Instances choose(const std::vector<Key>& keys, const CIMApi::Instances& all) {
  std::vector<QORSmrPtr<IQoriObject>> objects;
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*all);
  while (++each) objects.push_back(each.key());
  const CIMApi::Instances chosen(new QORValSlist<QORSmrPtr<IQoriObject>>());
  for (std::size_t i = 0; i < keys.size(); ++i) chosen->append(objects[indexOf(static_cast<int>(i), keys[i])]);
  return chosen;
}

}  // namespace

std::string Object::id() const { return std::to_string(position) + (key ? std::to_string(*key) : "n"); }
std::string Object::path() const { return std::string(kNameSpace) + ":" + kClassNames[table] + ".Id=\"" + id() + "\""; }

Universe& Universe::get() {
  static Universe theUniverse;
  return theUniverse;
}

Universe::Universe() {
  _manager.makeCurrent();
  _manager.sink().begin();
  for (int table = 0; table < kTables; ++table) declare(table);
  _manager.sink().commit();
  ClientInterposer::setEnumerationFilter([this](const QORString& className, const CIMApi::Instances& all) {
    return choose(_world[static_cast<std::size_t>(className[0] - 'A')], all);
  });
}

void Universe::declare(int table) {
  CimDeclarationSink& sink = _manager.sink();
  if (table == 0) sink.createNamespace(kNameSpace);
  CimClassDeclaration declaration;
  declaration.name = kClassNames[table];
  declaration.properties = {property("Id", CQoriType::string, true), property("K", CQoriType::sint32, false),
                            property("V", CQoriType::sint32, false)};
  sink.declareClass(kNameSpace, declaration);
  for (int position = 0; position < kPositions; ++position) {
    for (int key = 0; key <= kGreatestKey; ++key) {
      const Object object{table, position, key == 0 ? Key() : Key(key)};
      CimInstanceDeclaration instance;
      instance.className = declaration.name;
      instance.properties = {{"Id", new CQoriValue(QORString(object.id()))},
                             {"V", new CQoriValue(position, CQoriType::sint32)}};
      if (key != 0) instance.properties.push_back({"K", new CQoriValue(key, CQoriType::sint32)});
      sink.createInstance(kNameSpace, instance);
    }
  }
}

std::vector<std::vector<Key>> allKeyLists(const std::vector<Key>& keys, std::size_t length) {
  std::vector<std::vector<Key>> lists = {{}};
  for (std::size_t first = 0, size = 1; size <= length; ++size) {
    const std::size_t last = lists.size();
    for (; first < last; ++first) {
      for (const Key& key : keys) {
        std::vector<Key> longer = lists[first];
        longer.push_back(key);
        lists.push_back(longer);
      }
    }
  }
  return lists;
}

std::string describe(const World& world) {
  std::string text;
  for (int table = 0; table < kTables; ++table) {
    text += std::string(kClassNames[table]) + ":";
    for (const Key& key : world[static_cast<std::size_t>(table)]) text += " " + (key ? std::to_string(*key) : "null");
    text += table + 1 < kTables ? "; " : "";
  }
  return text;
}
