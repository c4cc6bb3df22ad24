// The codes of a result with the texts that their classes give them.
// SPDX-License-Identifier: Apache-2.0
#include "ValueColumns.h"

#include "cimom/CQoriValue.h"

namespace {

QORSmrPtr<IQoriValue> told(const QORSmrPtr<IQoriValue>& value, const ValueTexts& texts) {
  const std::string text = value.IsNull() ? "" : texts.textOf(*value);
  if (text.empty()) return value;
  return QORSmrPtr<IQoriValue>(new CQoriValue(QORString(std::string(value->toString().view()) + " (" + text + ")")));
}

// As texts, also those that have none: the elements of an array are of one type.
QORSmrPtr<IQoriValue> elementsTold(const IQoriValue& array, const ValueTexts& texts) {
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List());
  QORValSlistIterator<QORSmrPtr<IQoriValue>> each(*array.getArray());
  while (++each) {
    const QORSmrPtr<IQoriValue> element = told(each.key(), texts);
    elements->append(element.IsNull() ? element : QORSmrPtr<IQoriValue>(new CQoriValue(element->toString())));
  }
  return QORSmrPtr<IQoriValue>(new CQoriValue(elements, CQoriType::string));
}

}  // namespace

ValueColumns::ValueColumns(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                           const std::vector<QORQL_ResultReader::Column>& columns)
    : _manager(manager), _nameSpace(nameSpace) {
  for (const QORQL_ResultReader::Column& column : columns) {
    _properties.push_back(column.propertyName);
    _texts.push_back(column.className.isEmpty() ? ValueTexts() : declaredTexts(column.className, column.propertyName));
  }
}

ValueTexts ValueColumns::declaredTexts(const QORString& className, const QORString& property) const {
  for (const CimPropertyDeclaration& declared : _manager.allProperties(_nameSpace, className)) {
    if (declared.name.isEqualCaseInsensitive(property)) return ValueTexts(declared);
  }
  return {};
}

const ValueTexts& ValueColumns::textsOf(std::size_t index, const QORString& rowClass) {
  if (rowClass.isEmpty()) return _texts[index];
  const auto [known, isNew] = _textsOfClass.try_emplace(rowClass);
  if (isNew) {
    for (const QORString& property : _properties) {
      known->second.push_back(property.isEmpty() ? ValueTexts() : declaredTexts(rowClass, property));
    }
  }
  return known->second[index];
}

QORSmrPtr<IQoriValue> ValueColumns::withText(std::size_t index, const QORSmrPtr<IQoriValue>& value,
                                             const QORString& rowClass) {
  const ValueTexts& texts = textsOf(index, rowClass);
  if (value.IsNull() || texts.isEmpty()) return value;
  return value->isArray() ? elementsTold(*value, texts) : told(value, texts);
}
