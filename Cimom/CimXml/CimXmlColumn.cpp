// The texts around a value are taken from the property that has none.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlColumn.h"

#include <string_view>

#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Model/ModelScalar.h"
#include "Cimom/Model/ModelSlot.h"

using Code = CQoriType::Code;

namespace {

constexpr std::string_view kPropertyEnd = "</PROPERTY>";
constexpr std::string_view kValueEnd = "</VALUE></PROPERTY>";

}  // namespace

CimXmlColumn::CimXmlColumn(const QORString& name, const QORSmrPtr<IQoriType>& type)
    : _name(name), _type(type), _code(CQoriType::codeOf(*type)) {
  CimXmlWriter(_null).writeProperty(name, *type, {});
  if (type->isArray() || _code >= Code::Reference) return;
  _begin = _null.substr(0, _null.size() - kPropertyEnd.size()) + "<VALUE>";
}

// Which leaves a cell that is of the type already as it is.
bool CimXmlColumn::convert(QoriScalar& cell) const noexcept {
  if (_code == Code::String) return cell.kind == QoriScalarKind::Text;
  if (_code == Code::DateTime) return cell.kind == QoriScalarKind::DateTime;
  return model::convertScalar(cell, _code);
}

bool CimXmlColumn::appendCell(std::string& out, const QoriScalar& cell) const {
  if (cell.isNull()) {
    out += _null;
    return true;
  }
  QoriScalar own = cell;
  if (!takesCells() || !convert(own)) return false;
  out += _begin;
  if (!cimxml::appendScalarText(out, own, _code)) cimxml::appendText(out, model::scalarText(own, _code).view());
  out += kValueEnd;
  return true;
}

void CimXmlColumn::appendValue(std::string& out, const QORSmrPtr<IQoriValue>& value) const {
  if (appendCell(out, value.IsNull() ? QoriScalar() : value->scalar())) return;
  ModelSlot slot;
  slot.set(value, _type);
  CimXmlWriter(out).writeProperty(_name, *_type, slot.value(_type));
}
