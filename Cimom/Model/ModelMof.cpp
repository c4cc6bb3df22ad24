// Objects as MOF instance text.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelMof.h"

#include <cmath>
#include <string_view>

#include "Cimom/Model/ModelClassObject.h"
#include "Cimom/Model/ModelError.h"
#include "Cimom/Model/ModelScalar.h"

namespace model {

namespace {

// Each level doubles the backslashes of the level inside it.
constexpr int kMaximumDepth = 12;

void appendObject(QORString& out, const IQoriObject& object, int depth);

// The letter that stands for the byte in an escape; 0 when there is none. A text in double quotes may hold a single
// one.
char escapeLetter(char c, char quote) noexcept {
  switch (c) {
    case '\b':
      return 'b';
    case '\t':
      return 't';
    case '\n':
      return 'n';
    case '\f':
      return 'f';
    case '\r':
      return 'r';
    case '\'':
      return quote == c ? c : '\0';
    case '"':
    case '\\':
      return c;
    default:
      return '\0';
  }
}

void appendEscaped(QORString& out, std::string_view text, char quote) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (const char c : text) {
    const char letter = escapeLetter(c, quote);
    if (letter != '\0') {
      out += '\\';
      out += letter;
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      out += "\\x00";
      out += kDigits[static_cast<unsigned char>(c) >> 4];
      out += kDigits[static_cast<unsigned char>(c) & 0x0F];
    } else {
      out += c;
    }
  }
}

void appendQuoted(QORString& out, const QORString& text, char quote) {
  out += quote;
  appendEscaped(out, text.view(), quote);
  out += quote;
}

// MOF wants a point in every real, and has no word for infinity.
void appendReal(QORString& out, double value, const QORString& text) {
  if (!std::isfinite(value)) {
    out += "NULL";
    return;
  }
  const std::size_t exponent = text.find("e");
  const QORString mantissa = text.subStr(0, exponent);
  out += mantissa;
  if (!mantissa.contains(".")) out += ".0";
  if (exponent != QORString::npos) out += text.subStr(exponent);
}

void appendArray(QORString& out, const IQoriValue::List& elements, int depth);

void appendComplex(QORString& out, const IQoriValue& value, int depth) {
  const QORSmrPtr<IQoriObject> object = value.getObject();
  const QORSmrPtr<IQoriInstanceName> reference = value.getReference();
  if (value.isArray()) {
    appendArray(out, *value.getArray(), depth);
  } else if (!reference.IsNull()) {
    appendQuoted(out, reference->toString(), '"');
  } else if (!object.IsNull()) {
    QORString text;
    appendObject(text, *object, depth + 1);
    appendQuoted(out, text, '"');
  } else {
    out += "NULL";
  }
}

void appendValue(QORString& out, const QORSmrPtr<IQoriValue>& value, int depth) {
  if (value.IsNull()) {
    out += "NULL";
    return;
  }
  const QoriScalar scalar = value->scalar();
  switch (scalar.kind) {
    case QoriScalarKind::Complex:
      return appendComplex(out, *value, depth);
    case QoriScalarKind::Text:
    case QoriScalarKind::DateTime:
      return appendQuoted(out, *scalar.text, '"');
    case QoriScalarKind::Char16:
      return appendQuoted(out, value->toString(), '\'');
    case QoriScalarKind::Real:
      return appendReal(out, scalar.r, value->toString());
    default:
      out += value->toString();
  }
}

void appendArray(QORString& out, const IQoriValue::List& elements, int depth) {
  out += '{';
  bool first = true;
  QORValSlistIterator<QORSmrPtr<IQoriValue>> it(elements);
  while (++it) {
    if (!first) out += ", ";
    first = false;
    appendValue(out, it.key(), depth);
  }
  out += '}';
}

void appendObject(QORString& out, const IQoriObject& object, int depth) {
  if (const auto* const definition = dynamic_cast<const ModelClassObject*>(&object); definition != nullptr) {
    out += definition->getMofText();
    return;
  }
  if (depth > kMaximumDepth) raiseValueError("toString", "Embedded objects are nested too deeply");
  out += "instance of ";
  out += object.getClassName();
  out += " { ";
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> property = object.getPropertyAt(i);
    out += property->getName();
    out += " = ";
    appendValue(out, property->getValue(), depth);
    out += "; ";
  }
  out += "};";
}

}  // namespace

QORString mofText(const IQoriObject& object) {
  QORString text;
  appendObject(text, object, 1);
  return text;
}

void appendMofValue(QORString& out, const QORSmrPtr<IQoriValue>& value) { appendValue(out, value, 1); }

}  // namespace model
