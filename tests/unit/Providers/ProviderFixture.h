// Runs a provider the way the object manager does and keeps what it emits.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_PROVIDERFIXTURE_H
#define QORQL_TESTS_PROVIDERFIXTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Cimom/Embedded/InstanceProvider.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

using ProvidedRow = std::vector<QORSmrPtr<IQoriValue>>;

// A request for the named properties of all instances.
inline InstanceProvider::Request requestFor(const InstanceProvider& provider,
                                            const std::vector<std::string>& properties) {
  InstanceProvider::Request request;
  request.nameSpace = "root/cimv2";
  request.className = provider.getClassName();
  for (const std::string& property : properties) request.propertyNames.push_back(QORString(property));
  return request;
}

// The rows of such a request, of one instance alone when `only` is given.
inline std::vector<ProvidedRow> enumerateRows(InstanceProvider& provider, const std::vector<std::string>& properties,
                                              const QORSmrPtr<IQoriInstanceName>& only = {}) {
  InstanceProvider::Request request = requestFor(provider, properties);
  request.only = only;
  std::vector<ProvidedRow> rows;
  provider.enumerate(request, [&](ProvidedRow&& row) { rows.push_back(std::move(row)); });
  return rows;
}

// The name of the instance with that text as its one key.
inline QORSmrPtr<IQoriInstanceName> nameOf(const InstanceProvider& provider, const char* key, const std::string& text) {
  using Keys = QORValSlist<QORSmrPtr<IQoriProperty>>;
  QORSmrPtr<Keys> keys = new Keys();
  const QORSmrPtr<IQoriValue> value = new CQoriValue(QORString(text));
  keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(key, value, true)));
  const QORSmrPtr<IQoriNameSpacePath> path = new CQoriNameSpacePath("", "root/cimv2");
  return new CQoriInstanceName(provider.getClassName(), keys, path);
}

// The text of a value; "(null)" for none.
inline std::string textOf(const QORSmrPtr<IQoriValue>& value) {
  return value.IsNull() ? "(null)" : std::string(value->toString().view());
}

inline std::string typeOf(const QORSmrPtr<IQoriValue>& value) {
  return value.IsNull() ? "(null)" : std::string(value->getType()->getName().view());
}

// The row whose first value has the given text; an empty row when there is none.
inline ProvidedRow findRowIfAny(const std::vector<ProvidedRow>& rows, const std::string& key) {
  for (const ProvidedRow& row : rows) {
    if (textOf(row.at(0)) == key) return row;
  }
  return {};
}

// The same where there must be one. THROWS std::runtime_error, a failed test, when there is none.
inline ProvidedRow findRow(const std::vector<ProvidedRow>& rows, const std::string& key) {
  ProvidedRow row = findRowIfAny(rows, key);
  if (row.empty()) throw std::runtime_error("there is no row " + key);
  return row;
}

#endif
