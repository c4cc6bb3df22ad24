// Classes that are declared by their headings.
// Tested by tests/unit/Embedded/ClassEntryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <utility>

#include "Cimom/Embedded/ObjectStore.h"
#include "Cimom/Embedded/RepositoryError.h"

namespace embedded {

namespace {

// The depth of a class below its root. THROWS when its superclass is no earlier heading of the namespace.
QORuint32 depthOf(const std::vector<CimClassHeading>& headings, const std::vector<QORuint32>& depths) {
  const CimClassHeading& heading = headings[depths.size()];
  if (heading.superClass == CimClassHeading::kNoSuperClass) return 0;
  const std::size_t number = static_cast<std::size_t>(heading.superClass);
  const bool isEarlier = heading.superClass >= 0 && number < depths.size();
  if (!isEarlier || !headings[number].nameSpace.isEqualCaseInsensitive(heading.nameSpace)) {
    refuse(CimStatus::InvalidSuperclass, {"class ", heading.name.view(), ": its superclass does not come before it"});
  }
  if (depths[number] == CQoriClass::kMaximumDepth) {
    refuse(CimStatus::InvalidSuperclass, {"class ", heading.name.view(), ": inheritance is nested too deeply"});
  }
  return depths[number] + 1;
}

}  // namespace

// Next to classes that are there, the rules are to be looked at again.
bool ObjectStore::areFirst(const std::vector<CimClassHeading>& headings, View view) const {
  return std::all_of(headings.begin(), headings.end(), [&](const CimClassHeading& heading) {
    return requireNameSpace(heading.nameSpace, view).classes.empty();
  });
}

bool ObjectStore::declareClasses(const std::vector<CimClassHeading>& headings,
                                 const std::shared_ptr<CimDeclarationSource>& source, View view) {
  if (!becomesPending(view) || !areFirst(headings, view)) return false;
  std::vector<QORuint32> depths;
  std::vector<ClassEntry*> entries;
  for (const CimClassHeading& heading : headings) {
    NameSpace& space = requireNameSpace(heading.nameSpace, view);
    if (heading.name.isEmpty()) refuse(CimStatus::InvalidParameter, {"a class needs a name"});
    if (findClass(space, heading.name, view) != nullptr) {
      refuse(CimStatus::AlreadyExists, {"class ", heading.name.view(), " is declared already"});
    }
    depths.push_back(depthOf(headings, depths));
    if (space.laterClasses == nullptr) space.laterClasses = std::make_unique<LaterClasses>(space.name, source);
    ClassEntry* const superClass = depths.back() == 0 ? nullptr : entries[static_cast<std::size_t>(heading.superClass)];
    const QORuint32 number = static_cast<QORuint32>(entries.size());
    auto entry = std::make_unique<ClassEntry>(heading, superClass, *space.laterClasses, number);
    entries.push_back(&addClass(space, std::move(entry), view));
  }
  return true;
}

}  // namespace embedded
