// The codes of a result with the texts that their classes give them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_VALUECOLUMNS_H
#define QORQL_TOOL_VALUECOLUMNS_H

#include <map>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "ValueTexts.h"

// BORROWS the manager.
class ValueColumns {
 public:
  ValueColumns(const EmbeddedObjectManager& manager, const QORString& nameSpace,
               const std::vector<QORQL_ResultReader::Column>& columns);

  // Whether the column shows a property whose values have texts.
  bool hasTexts(std::size_t index) const { return !_texts[index].isEmpty(); }
  // "2 (OK)" for 2, "5 (Read, Execute)" for bits, each element of an array likewise; the value itself where it has no
  // text. The class is that of the
  // row's object, which may give other texts than the class of FROM; empty where there is no such object.
  QORSmrPtr<IQoriValue> withText(std::size_t index, const QORSmrPtr<IQoriValue>& value, const QORString& rowClass);

 private:
  ValueTexts declaredTexts(const QORString& className, const QORString& property) const;
  const ValueTexts& textsOf(std::size_t index, const QORString& rowClass);

  const EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  std::vector<QORString> _properties;
  std::vector<ValueTexts> _texts;
  std::map<QORString, std::vector<ValueTexts>> _textsOfClass;  // of classes of rows
};

#endif
