// Each instance is met once, under the class at its root.
// SPDX-License-Identifier: Apache-2.0
#include "ModelContents.h"

#include <algorithm>
#include <map>

namespace {

bool isBefore(const QORString& a, const QORString& b) { return a.compareTo(b, false) < 0; }

class Counting {
 public:
  Counting(EmbeddedObjectManager& manager, const QORString& nameSpace)
      : _manager(manager), _nameSpace(nameSpace), _reader(manager, nameSpace) {}

  void countUnder(const QORString& root) {
    const bool isAssociation = _manager.isAssociation(_nameSpace, root);
    const CIMApi::PropertyNames none(new QORValSlist<QORString>());
    _reader.read(root, isAssociation ? CIMApi::PropertyNames() : none, [&](const IQoriObject& instance) {
      ++_contents.instanceCount;
      isAssociation ? countTie(instance) : void(++_counts[instance.getClassName()]);
    });
  }

  ModelContents finish() {
    _contents.gaps = _reader.gaps();
    for (const auto& [name, count] : _counts) _contents.classes.push_back({name, count});
    for (auto& [name, ties] : _ties) {
      std::move(ties.begin(), ties.end(), std::back_inserter(_contents.ties));
    }
    return std::move(_contents);
  }

 private:
  static std::vector<ModelContents::End> endsOf(const IQoriObject& association) {
    std::vector<ModelContents::End> ends;
    for (QORuint32 i = 0; i < association.getPropertyCount(); ++i) {
      const QORSmrPtr<IQoriProperty> property(association.getPropertyAt(i));
      if (property->getValue().IsNull()) continue;
      const QORSmrPtr<IQoriInstanceName> name(property->getValue()->getReference());
      if (!name.IsNull()) ends.push_back({property->getName(), name->getClassName()});
    }
    return ends;
  }
  void countTie(const IQoriObject& association) {
    const std::vector<ModelContents::End> ends = endsOf(association);
    std::vector<ModelContents::Tie>& ties = _ties[association.getClassName()];
    const auto known = std::find_if(ties.begin(), ties.end(), [&](const auto& tie) { return tie.ends == ends; });
    if (known != ties.end()) {
      ++known->count;
    } else {
      ties.push_back({association.getClassName(), ends, 1});
    }
  }

  EmbeddedObjectManager& _manager;
  const QORString& _nameSpace;
  InstanceReader _reader;
  ModelContents _contents;
  std::map<QORString, std::size_t, decltype(&isBefore)> _counts{isBefore};
  std::map<QORString, std::vector<ModelContents::Tie>, decltype(&isBefore)> _ties{isBefore};
};

}  // namespace

ModelContents contentsOf(EmbeddedObjectManager& manager, const QORString& nameSpace) {
  Counting counting(manager, nameSpace);
  for (const QORString& root : rootClasses(manager, nameSpace)) counting.countUnder(root);
  return counting.finish();
}

std::vector<QORString> rootClasses(const EmbeddedObjectManager& manager, const QORString& nameSpace) {
  std::vector<QORString> roots;
  for (const QORString& name : manager.classNames(nameSpace)) {
    const QORString above = manager.superClassName(nameSpace, name);
    if (!above.isNull() && above.isEmpty()) roots.push_back(name);
  }
  return roots;
}
