// An ordered tree of items by hash that changes by copies: who holds a root
// sees the tree as it was.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLITEMTREE_H
#define QORQL_CQLITEMTREE_H

#include <vector>

#include "cmpbase.h"

// One place of the tree: the item `target` under a hash; of one hash by order. The
// order 0 marks items of another kind, which are found separately: whoever chooses
// the values of filters can make hashes collide on purpose.
struct CQLTreeEntry {
  QORuint64 hash;
  QORuint64 order;
  const void* target;

  bool operator<(const CQLTreeEntry& other) const noexcept {
    return hash != other.hash ? hash < other.hash : order < other.order;
  }
};

// Roots and nodes are immutable: any number of threads may read a root, one at a
// time may make others from it. A null root is the empty tree.
class CQLItemTree {
 public:
  struct Node;
  // The node that replaces another one, and one beside it when one is too small.
  struct Made {
    const Node* first = nullptr;
    const Node* second = nullptr;
  };

  // The nodes that steps of a change made, and those that they replaced, of which
  // some may be of the same change. Whoever publishes the last root frees the
  // replaced ones when nobody reads them; whoever gives the change up frees those
  // that were made.
  struct Steps {
    std::vector<const void*> made;
    std::vector<const void*> replaced;
  };

  // A root with the entry, or without it. REQUIRES that the root has no entry of
  // that hash and order, or has it. Costs one small node for each level. THROW
  // std::bad_alloc; the root is good in any case.
  static const Node* insert(const Node* root, const CQLTreeEntry& entry, Steps& steps);
  static const Node* erase(const Node* root, const CQLTreeEntry& entry, Steps& steps);
  static void freeNode(const void* node) noexcept;
  // Frees all nodes of a root that nobody reads.
  static void destroy(const Node* root) noexcept;

  // Calls `visit` with the target of each entry of the hash but that of order 0, in order, until it returns false.
  template <class Visit>
  static void forEach(const Node* root, QORuint64 hash, Visit visit) {
    Cursor cursor(root, {hash, 1, nullptr});
    for (const CQLTreeEntry* entry = cursor.get(); entry != nullptr && entry->hash == hash; entry = cursor.next()) {
      if (!visit(entry->target)) return;
    }
  }
  // The target of the hash's entry of order 0; null when there is none.
  static const void* find(const Node* root, QORuint64 hash) noexcept;

 private:
  // A way through the tree, beginning with the first entry that is not below the given one.
  class Cursor {
   public:
    Cursor(const Node* root, const CQLTreeEntry& least) noexcept;
    const CQLTreeEntry* get() const noexcept;
    const CQLTreeEntry* next() noexcept;

   private:
    // With many entries in a node no tree is deeper.
    static constexpr int kMaximumDepth = 24;
    struct Step {
      const Node* node;
      QORuint32 at;
    };
    Step _steps[kMaximumDepth];
    int _depth = 0;  // steps in use; 0 at the end
  };
};

#endif
