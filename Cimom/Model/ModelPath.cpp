// The canonical text of instance paths.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelPath.h"

#include <algorithm>
#include <string_view>

#include "Cimom/Model/ModelScalar.h"
#include "cimom/IQoriValue.h"

namespace model {

PathText::PathText(std::string& text, const QORString& nameSpace, const QORString& className) : _path(text) {
  if (!nameSpace.isEmpty()) _path.append(nameSpace.view()) += ':';
  _path += className.view();
}

void PathText::addKey(const QORString& name, const QoriScalar& value, const IQoriType& type) {
  _path += _separator;
  _separator = ',';
  _path.append(name.view()) += '=';
  if (value.isNull()) {
    _path += "NULL";
  } else if (value.kind == QoriScalarKind::Complex) {
    appendQuoted(value.value->toString().view());
  } else if (value.isNumber() || value.kind == QoriScalarKind::Boolean) {
    _path += scalarText(value, CQoriType::codeOf(type)).view();
  } else if (value.kind == QoriScalarKind::Char16) {
    appendQuoted(scalarText(value, CQoriType::codeOf(type)).view());
  } else {
    appendQuoted(value.text->view());
  }
}

void PathText::appendQuoted(std::string_view rest) {
  _path += '"';
  const auto isSpecial = [](char c) { return c == '"' || c == '\\'; };
  for (;;) {
    const std::size_t special =
        static_cast<std::size_t>(std::find_if(rest.begin(), rest.end(), isSpecial) - rest.begin());
    if (special == rest.size()) break;
    _path.append(rest.substr(0, special));
    _path += '\\';
    _path += rest[special];
    rest.remove_prefix(special + 1);
  }
  _path.append(rest);
  _path += '"';
}

}  // namespace model
