// Associations whose steps leave open in which role they have an object.
// SPDX-License-Identifier: Apache-2.0
#include "RoleNotes.h"

#include <algorithm>
#include <utility>

#include "ClassFamily.h"

namespace {

using Step = QORQL_ExplainedStep;

struct Role {
  QORString name;
  QORString className;
};

// The name that FROM gives a class.
std::string fromName(const std::vector<Step>& steps, const std::string& className) {
  for (const Step& step : steps) {
    const bool isFetched = step.kind == Step::kFetch || step.kind == Step::kAssociate;
    if (isFetched && step.className == className && !step.alias.empty()) return step.alias;
  }
  return className;
}

class RoleFinder {
 public:
  RoleFinder(EmbeddedObjectManager& manager, const QORString& nameSpace, const std::string& association)
      : _family(manager, nameSpace) {
    for (const CimPropertyDeclaration& property : manager.allProperties(nameSpace, QORString(association))) {
      if (!property.referenceClass.isEmpty()) _roles.push_back({property.name, property.referenceClass});
    }
  }

  // Whether some object of the class may stand there.
  bool mayStandAt(const Role& role, const std::string& className) const {
    const QORString name(className);
    return _family.isA(name, role.className) || _family.isA(role.className, name);
  }
  std::vector<Role> rolesOf(const std::string& className) const {
    std::vector<Role> roles;
    std::copy_if(_roles.begin(), _roles.end(), std::back_inserter(roles),
                 [&](const Role& role) { return mayStandAt(role, className); });
    return roles;
  }

 private:
  const ClassFamily _family;
  std::vector<Role> _roles;
};

std::string conditionOf(const Role& role, const std::string& object) {
  return "l." + std::string(role.name.view()) + " = OBJECTPATH(" + object + ")";
}

// The ways in which the association can have both objects.
std::vector<std::pair<Role, Role>> waysOf(const RoleFinder& finder, const Step& step) {
  std::vector<std::pair<Role, Role>> ways;
  for (const Role& source : finder.rolesOf(step.source)) {
    for (const Role& target : finder.rolesOf(step.className)) {
      if (target.name != source.name) ways.emplace_back(source, target);
    }
  }
  return ways;
}

// A class stands in FROM once: the object at the other end is told by the reference to it.
std::string oneEndOf(const Step& step, const Role& source, const Role& target, const std::string& name) {
  return "SELECT l." + std::string(target.name.view()) + " FROM " + step.association + " AS l, " + step.source +
         (name == step.source ? "" : " AS " + name) + " WHERE " + conditionOf(source, name) + " [ASSOC-7]";
}

std::string noteOf(const RoleFinder& finder, const std::vector<Step>& steps, const Step& step) {
  const std::vector<std::pair<Role, Role>> ways = waysOf(finder, step);
  if (ways.size() < 2) return {};
  const auto& [source, target] = ways.front();
  const std::string note =
      step.association + " may have the " + step.source + " in more than one role; to ask for one: ";
  if (step.source == step.className) return note + oneEndOf(step, source, target, fromName(steps, step.source));
  return note + "FROM " + step.association + " AS l ... WHERE " + conditionOf(source, fromName(steps, step.source)) +
         " AND " + conditionOf(target, fromName(steps, step.className)) + " [ASSOC-7]";
}

}  // namespace

std::vector<std::string> roleNotes(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                   const std::vector<Step>& steps) {
  std::vector<std::string> notes;
  for (const Step& step : steps) {
    if (step.kind != Step::kAssociate) continue;
    const std::string note = noteOf(RoleFinder(manager, nameSpace, step.association), steps, step);
    if (!note.empty() && std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
  }
  return notes;
}
