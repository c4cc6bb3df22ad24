// What there is in a namespace: the classes that have instances, and what their associations tie.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_MODELCONTENTS_H
#define QORQL_TOOL_MODELCONTENTS_H

#include <cstddef>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "InstanceReader.h"

struct ModelContents {
  struct ClassCount {
    QORString name;
    std::size_t count = 0;  // of its own instances, without those of derived classes
  };
  struct End {
    QORString role;
    QORString className;  // of the instances there; empty where the role has no value
    bool operator==(const End& other) const { return role == other.role && className == other.className; }
  };
  // The instances of an association that tie instances of the same classes.
  struct Tie {
    QORString association;
    std::vector<End> ends;
    std::size_t count = 0;
  };

  std::vector<ClassCount> classes;  // those with instances, without associations, in the order of names
  std::vector<Tie> ties;            // in the order of the associations' names
  InstanceReader::Gaps gaps;        // the classes whose instances are missing
  std::size_t instanceCount = 0;
};

// Enumerates all instances, of all but associations their paths alone. Of live classes, too: what they cannot read is
// among the gaps or logged. REQUIRES the current object manager.
ModelContents contentsOf(EmbeddedObjectManager& manager, const QORString& nameSpace);

// The classes of a namespace that have no superclass: their instances are all there are.
std::vector<QORString> rootClasses(const EmbeddedObjectManager& manager, const QORString& nameSpace);

#endif
