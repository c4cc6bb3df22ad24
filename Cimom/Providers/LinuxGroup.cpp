// Groups, as the system's group database lists them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxGroup.h"

#include "Cimom/Providers/LinuxAccounts.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriValue.h"

const char* const LinuxGroup::kClassName = "Linux_Group";

namespace {

using Group = const LinuxAccountGroup;

LinuxValue readName(Group& group) { return textValue(group.name); }
LinuxValue readGroupNumber(Group& group) { return uint32Value(group.number); }
LinuxValue readMembers(Group& group) {
  QORSmrPtr<IQoriValue::List> elements = new IQoriValue::List();
  for (const std::string& member : group.members) elements->append(textValue(member));
  return new CQoriValue(elements, CQoriType::string);
}
LinuxValue readClassName(Group&) { return textValue(LinuxGroup::kClassName); }

constexpr LinuxProperty<Group> kGroupProperties[] = {
    {"Name", readName},
    {"CommonName", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"GroupNumber", readGroupNumber},
    {"Members", readMembers},
    {"CreationClassName", readClassName},
};

}  // namespace

void LinuxGroup::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Group>>(request, kGroupProperties);
  const QORString wanted = wantedKey(request, "Name");
  for (Group& group : readAccountGroups()) {
    if (wanted.isNull() || wanted == group.name.c_str()) emitInstance(group, properties, emit);
  }
}
