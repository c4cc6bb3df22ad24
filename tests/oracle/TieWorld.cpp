// Worlds by chance, and their MOF.
// SPDX-License-Identifier: Apache-2.0
#include "TieWorld.h"

namespace {

unsigned below(std::mt19937& random, unsigned bound) { return static_cast<unsigned>(random() % bound); }

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) result += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
  return result + "\"";
}

const TieClass& classOf(int which) { return kTieModel[static_cast<std::size_t>(which)]; }

std::string classMof(int which, bool isFiltered) {
  const TieClass& one = classOf(which);
  std::string text = isTie(which) ? "[Association] " : isFiltered ? "[YRK_TRBS_ProviderFiltered] " : "";
  text += "class " + std::string(one.name) + " { [Key] string Id; uint8 N;";
  for (std::size_t end = 0; end < one.ends.size() && isTie(which); ++end) {
    text += " [Key] " + std::string(classOf(one.endClasses[end]).name) + " REF " + one.ends[end] + ";";
  }
  return text + " };\n";
}

}  // namespace

// Keys stand in the order of their names, and all names of ends come after Id.
std::string TieObject::path() const {
  std::string text = std::string("root/cimv2:") + classOf(which).name + ".Id=" + quoted(id);
  for (std::size_t end = 0; end < ends.size() && isTie(which); ++end) {
    text += "," + std::string(classOf(which).ends[end]) + "=" + quoted(ends[end]->path());
  }
  return text;
}

TieWorld::TieWorld(std::mt19937& random) : _areFiltered(below(random, 3) == 0) {
  for (int which = 0; which < kTieClasses; ++which) {
    const unsigned count = below(random, 9) == 0 ? 0 : 1 + below(random, isTie(which) ? 5 : 3);
    for (unsigned i = 0; i < count; ++i) addObject(random, which);
  }
}

// An association without anything to refer to is left out.
void TieWorld::addObject(std::mt19937& random, int which) {
  TieObject object;
  object.which = which;
  for (std::size_t end = 0; end < object.ends.size() && isTie(which); ++end) {
    const std::deque<TieObject>& ends = of(classOf(which).endClasses[end]);
    if (ends.empty()) return;
    object.ends[end] = &ends[below(random, static_cast<unsigned>(ends.size()))];
  }
  std::deque<TieObject>& all = _objects[static_cast<std::size_t>(which)];
  object.id = std::to_string(all.size());
  if (below(random, 5) != 0) object.number = static_cast<int>(below(random, 4));
  all.push_back(object);
}

std::string TieWorld::toMof() const {
  std::string text = "Qualifier YRK_TRBS_ProviderFiltered : boolean = false, Scope(class), Flavor(ToSubclass);\n";
  for (int which = 0; which < kTieClasses; ++which) text += classMof(which, isFiltered(which));
  for (const std::deque<TieObject>& objects : _objects) {
    for (const TieObject& object : objects) {
      const TieClass& one = classOf(object.which);
      text += "instance of " + std::string(one.name) + " { Id = " + quoted(object.id) + ";";
      if (object.number) text += " N = " + std::to_string(*object.number) + ";";
      for (std::size_t end = 0; end < one.ends.size() && isTie(object.which); ++end) {
        text += " " + std::string(one.ends[end]) + " = " + quoted(object.ends[end]->path()) + ";";
      }
      text += " };\n";
    }
  }
  return text;
}
