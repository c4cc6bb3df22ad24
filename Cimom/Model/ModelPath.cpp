// The canonical text of instance paths.
#include "Cimom/Model/ModelPath.h"

#include <string_view>

#include "Cimom/Model/ModelScalar.h"
#include "cimom/IQoriValue.h"

namespace model {

PathText::PathText(const QORString& nameSpace, const QORString& className) {
  constexpr std::size_t kRoomForKeys = 128;
  _path.reserve(nameSpace.length() + className.length() + kRoomForKeys);
  if (!nameSpace.isEmpty()) {
    _path += nameSpace;
    _path += ':';
  }
  _path += className;
}

void PathText::addKey(const QORString& name, const QoriScalar& value, const IQoriType& type) {
  _path += _separator;
  _separator = ',';
  _path += name;
  _path += '=';
  if (value.isNull()) {
    _path += "NULL";
  } else if (value.kind == QoriScalarKind::Complex) {
    appendQuoted(value.value->toString());
  } else if (value.isNumber() || value.kind == QoriScalarKind::Boolean) {
    _path += scalarText(value, CQoriType::codeOf(type));
  } else {
    appendQuoted(scalarText(value, CQoriType::codeOf(type)));
  }
}

void PathText::appendQuoted(const QORString& text) {
  _path += '"';
  std::string_view rest = text.view();
  for (std::size_t special; (special = rest.find_first_of("\"\\")) != std::string_view::npos;) {
    _path.append(rest.substr(0, special));
    _path += '\\';
    _path += rest[special];
    rest.remove_prefix(special + 1);
  }
  _path.append(rest);
  _path += '"';
}

}  // namespace model
