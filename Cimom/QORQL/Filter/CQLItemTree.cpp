// A B+tree: entries of inner nodes are the least of a child each. Nodes that
// become empty go; others may be small, since what was taken out often comes back.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLItemTree.h"

#include <algorithm>
#include <memory>
#include <new>

struct CQLItemTree::Node {
  QORuint32 count;
  bool isLeaf;

  const CQLTreeEntry* entries() const noexcept { return reinterpret_cast<const CQLTreeEntry*>(this + 1); }
  CQLTreeEntry* entries() noexcept { return reinterpret_cast<CQLTreeEntry*>(this + 1); }
  const Node* child(QORuint32 at) const noexcept { return static_cast<const Node*>(entries()[at].target); }
};

namespace {

using TreeNode = CQLItemTree::Node;

constexpr QORuint32 kWidest = 32;

// The room to note it is reserved first, so that no node is lost.
TreeNode* makeNode(const CQLTreeEntry* entries, QORuint32 count, bool isLeaf, CQLItemTree::Steps& steps) {
  static_assert(sizeof(TreeNode) % alignof(CQLTreeEntry) == 0);
  steps.made.push_back(nullptr);
  TreeNode* const node = new (::operator new(sizeof(TreeNode) + count * sizeof(CQLTreeEntry))) TreeNode{count, isLeaf};
  std::uninitialized_copy_n(entries, count, node->entries());
  steps.made.back() = node;
  return node;
}

// The place of the last entry that is not above the given one, the first one at least.
QORuint32 childFor(const TreeNode& node, const CQLTreeEntry& entry) noexcept {
  const CQLTreeEntry* const begin = node.entries();
  const CQLTreeEntry* const above = std::upper_bound(begin, begin + node.count, entry);
  return above == begin ? 0 : static_cast<QORuint32>(above - begin) - 1;
}

QORuint32 placeFor(const TreeNode& node, const CQLTreeEntry& entry) noexcept {
  const CQLTreeEntry* const begin = node.entries();
  return static_cast<QORuint32>(std::lower_bound(begin, begin + node.count, entry) - begin);
}

// The entries of a node that is being made; at most two more than a node holds.
struct Draft {
  CQLTreeEntry entries[kWidest + 2];
  QORuint32 count = 0;

  void add(const CQLTreeEntry* from, QORuint32 number) noexcept {
    std::copy_n(from, number, entries + count);
    count += number;
  }
  void addNode(const TreeNode* node) noexcept {
    if (node != nullptr) entries[count++] = {node->entries()[0].hash, node->entries()[0].order, node};
  }
  CQLItemTree::Made make(bool isLeaf, CQLItemTree::Steps& steps) const {
    if (count == 0) return {};
    if (count <= kWidest) return {makeNode(entries, count, isLeaf, steps), nullptr};
    const QORuint32 half = count / 2;
    const TreeNode* const first = makeNode(entries, half, isLeaf, steps);
    return {first, makeNode(entries + half, count - half, isLeaf, steps)};
  }
};

CQLItemTree::Made insertInto(const TreeNode& node, const CQLTreeEntry& entry, CQLItemTree::Steps& steps) {
  Draft draft;
  if (node.isLeaf) {
    const QORuint32 at = placeFor(node, entry);
    draft.add(node.entries(), at);
    draft.add(&entry, 1);
    draft.add(node.entries() + at, node.count - at);
  } else {
    const QORuint32 at = childFor(node, entry);
    const CQLItemTree::Made made = insertInto(*node.child(at), entry, steps);
    draft.add(node.entries(), at);
    draft.addNode(made.first);
    draft.addNode(made.second);
    draft.add(node.entries() + at + 1, node.count - at - 1);
  }
  steps.replaced.push_back(&node);
  return draft.make(node.isLeaf, steps);
}

const TreeNode* eraseFrom(const TreeNode& node, const CQLTreeEntry& entry, CQLItemTree::Steps& steps) {
  Draft draft;
  const QORuint32 at = node.isLeaf ? placeFor(node, entry) : childFor(node, entry);
  draft.add(node.entries(), at);
  if (!node.isLeaf) draft.addNode(eraseFrom(*node.child(at), entry, steps));
  draft.add(node.entries() + at + 1, node.count - at - 1);
  steps.replaced.push_back(&node);
  return draft.make(node.isLeaf, steps).first;
}

}  // namespace

const TreeNode* CQLItemTree::insert(const TreeNode* root, const CQLTreeEntry& entry, Steps& steps) {
  if (root == nullptr) return makeNode(&entry, 1, true, steps);
  const Made made = insertInto(*root, entry, steps);
  if (made.second == nullptr) return made.first;
  Draft draft;
  draft.addNode(made.first);
  draft.addNode(made.second);
  return draft.make(false, steps).first;
}

const TreeNode* CQLItemTree::erase(const TreeNode* root, const CQLTreeEntry& entry, Steps& steps) {
  const TreeNode* made = eraseFrom(*root, entry, steps);
  // A root with a single child is replaced by the child.
  while (made != nullptr && !made->isLeaf && made->count == 1) {
    const TreeNode* const child = made->child(0);
    steps.replaced.push_back(made);
    made = child;
  }
  return made;
}

void CQLItemTree::freeNode(const void* node) noexcept { ::operator delete(const_cast<void*>(node)); }

void CQLItemTree::destroy(const TreeNode* root) noexcept {
  if (root == nullptr) return;
  for (QORuint32 i = 0; !root->isLeaf && i < root->count; ++i) destroy(root->child(i));
  freeNode(root);
}

const void* CQLItemTree::find(const TreeNode* root, QORuint64 hash) noexcept {
  const CQLTreeEntry* const entry = Cursor(root, {hash, 0, nullptr}).get();
  return entry != nullptr && entry->hash == hash && entry->order == 0 ? entry->target : nullptr;
}

CQLItemTree::Cursor::Cursor(const TreeNode* root, const CQLTreeEntry& least) noexcept {
  for (const TreeNode* node = root; node != nullptr; node = node->child(_steps[_depth - 1].at)) {
    _steps[_depth] = {node, node->isLeaf ? placeFor(*node, least) : childFor(*node, least)};
    ++_depth;
    if (node->isLeaf) break;
  }
  // The first entry may be in the next leaf.
  if (_depth > 0 && _steps[_depth - 1].at == _steps[_depth - 1].node->count) next();
}

const CQLTreeEntry* CQLItemTree::Cursor::get() const noexcept {
  return _depth == 0 ? nullptr : _steps[_depth - 1].node->entries() + _steps[_depth - 1].at;
}

const CQLTreeEntry* CQLItemTree::Cursor::next() noexcept {
  while (_depth > 0) {
    Step& step = _steps[_depth - 1];
    if (step.at + 1 < step.node->count) {
      ++step.at;
      break;
    }
    --_depth;
  }
  if (_depth == 0) return nullptr;
  while (!_steps[_depth - 1].node->isLeaf) {
    _steps[_depth] = {_steps[_depth - 1].node->child(_steps[_depth - 1].at), 0};
    ++_depth;
  }
  return get();
}
