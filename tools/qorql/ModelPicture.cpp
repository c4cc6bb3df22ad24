// A picture of a model as a graph in the DOT language.
// SPDX-License-Identifier: Apache-2.0
#include "ModelPicture.h"

#include <map>
#include <set>

namespace {

constexpr const char* kHead = R"(digraph model {
  graph [rankdir=LR, fontname="sans-serif", fontsize=12, nodesep=0.3, ranksep=0.9, color="#8d97a8", fontcolor="#667085"];
  node [shape=box, style="rounded,filled", fillcolor="#eef1f6", color="#2f6fed", fontcolor="#1d2433", fontname="sans-serif", fontsize=12, margin="0.15,0.08"];
  edge [fontname="sans-serif", fontsize=10, color="#8d97a8", fontcolor="#667085"];
)";

std::string dotText(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + '"';
}

// One namespace. Names are in the repository's spelling.
class NamespaceGraph {
 public:
  NamespaceGraph(const EmbeddedObjectManager& manager, const QORString& nameSpace, std::size_t number)
      : _manager(manager), _nameSpace(nameSpace), _prefix(std::to_string(number) + ":") {}

  std::string dot(const ModelContents& contents) {
    for (const auto& known : contents.classes) _counts[nameOf(known.name)] = known.count;
    for (const auto& tie : contents.ties) {
      for (const auto& end : tie.ends) _counts.try_emplace(nameOf(end.className), 0);
    }
    findMeetings();
    _text = "  subgraph " + dotText("cluster" + _prefix) + " {\n    label=" + dotText(_nameSpace.view()) + ";\n";
    for (const auto& [name, count] : _counts) addClass(name, count);
    for (const std::string& name : _meetings) {
      if (!_counts.contains(name)) addSuperclass(name);
    }
    for (const auto& [name, count] : _counts) addInheritance(name);
    for (const std::string& name : _meetings) {
      if (!_counts.contains(name)) addInheritance(name);
    }
    for (std::size_t i = 0; i < contents.ties.size(); ++i) addTie(contents.ties[i], i);
    return _text + "  }\n";
  }

 private:
  static std::string nameOf(const QORString& name) { return std::string(name.view()); }
  std::string idOf(const std::string& name) const { return dotText(_prefix + name); }

  // Empty at the root, and of a class that does not exist.
  std::string superclassOf(const std::string& name) const {
    return nameOf(_manager.superClassName(_nameSpace, QORString(name)));
  }
  // The classes in which the lines of at least two classes meet.
  void findMeetings() {
    std::map<std::string, std::set<std::string>> below;
    for (const auto& known : _counts) {
      std::string name = known.first;
      for (std::string above = superclassOf(name); !above.empty(); above = superclassOf(name)) {
        below[above].insert(name);
        name = above;
      }
    }
    for (const auto& [name, children] : below) {
      if (children.size() > 1) _meetings.insert(name);
    }
  }

  void addClass(const std::string& name, std::size_t count) {
    const std::string number = count == 0 ? "" : "\\n" + std::to_string(count);
    std::string label = dotText(name);
    label.insert(label.size() - 1, number);
    _text += "    " + idOf(name) + " [label=" + label + "];\n";
  }
  void addSuperclass(const std::string& name) {
    _text += "    " + idOf(name) + " [label=" + dotText(name) +
             ", style=\"rounded,dashed\", color=\"#8d97a8\", fontcolor=\"#667085\"];\n";
  }
  void addInheritance(const std::string& name) {
    std::string above = superclassOf(name);
    while (!above.empty() && !_counts.contains(above) && !_meetings.contains(above)) above = superclassOf(above);
    if (above.empty()) return;
    _text += "    " + idOf(above) + " -> " + idOf(name) + " [dir=back, arrowtail=empty, style=dashed];\n";
  }
  void addTie(const ModelContents::Tie& tie, std::size_t number) {
    const std::string label = nameOf(tie.association) + " " + std::to_string(tie.count);
    if (tie.ends.size() != 2) return addStar(tie, label, number);
    const auto& [first, second] = std::pair(tie.ends[0], tie.ends[1]);
    _text += "    " + idOf(nameOf(first.className)) + " -> " + idOf(nameOf(second.className)) +
             " [dir=none, color=\"#2f6fed\", label=" + dotText(label) +
             ", tooltip=" + dotText(nameOf(first.role) + " - " + nameOf(second.role)) + "];\n";
  }
  // An association of other than two ends is a node of its own.
  void addStar(const ModelContents::Tie& tie, const std::string& label, std::size_t number) {
    const std::string id = idOf("tie " + std::to_string(number));
    _text += "    " + id + " [shape=ellipse, style=solid, label=" + dotText(label) + "];\n";
    for (const ModelContents::End& end : tie.ends) {
      _text += "    " + id + " -> " + idOf(nameOf(end.className)) +
               " [dir=none, color=\"#2f6fed\", label=" + dotText(nameOf(end.role)) + "];\n";
    }
  }

  const EmbeddedObjectManager& _manager;
  const QORString& _nameSpace;
  const std::string _prefix;
  std::map<std::string, std::size_t> _counts;  // of the classes that are drawn
  std::set<std::string> _meetings;
  std::string _text;
};

}  // namespace

void ModelPicture::add(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                       const ModelContents& contents) {
  _graphs += NamespaceGraph(manager, nameSpace, _count++).dot(contents);
}

std::string ModelPicture::dot() const { return kHead + _graphs + "}\n"; }
