// A picture of a model as a graph in the DOT language.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_MODELPICTURE_H
#define QORQL_TOOL_MODELPICTURE_H

#include <string>

#include "ModelContents.h"

// Draws the classes that have instances, with their numbers, what associations tie, and inheritance: of superclasses
// those that have instances or in which the lines of two drawn classes meet.
class ModelPicture {
 public:
  void add(const EmbeddedObjectManager& manager, const QORString& nameSpace, const ModelContents& contents);
  std::string dot() const;

 private:
  std::string _graphs;  // a cluster for each namespace
  std::size_t _count = 0;
};

#endif
