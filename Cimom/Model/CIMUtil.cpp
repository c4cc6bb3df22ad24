// Messages, escaping and instance paths in XML.
// SPDX-License-Identifier: Apache-2.0
#include "cimom/CIMUtil.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "Cimom/Model/ModelError.h"
#include "cimom/IQoriProperty.h"

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// The entity for a byte that XML gives a meaning; empty for all others.
std::string_view entity(char c) noexcept {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    default:
      return {};
  }
}

// For each byte, whether it is a whole character that stays as it is.
constexpr std::array<bool, 256> kIsPlainAscii = [] {
  std::array<bool, 256> isPlain{};
  for (std::size_t byte = 0x20; byte < 0x80; ++byte) isPlain[byte] = true;
  for (const char c : {'\t', '\n', '\r'}) isPlain[static_cast<unsigned char>(c)] = true;
  for (const char c : {'&', '<', '>', '"', '\''}) isPlain[static_cast<unsigned char>(c)] = false;
  return isPlain;
}();

bool isPlainAscii(char c) noexcept { return kIsPlainAscii[static_cast<unsigned char>(c)]; }

// Length of the UTF-8 sequence that a lead byte opens; 0 for a byte that opens none.
std::size_t sequenceLength(unsigned char lead) noexcept {
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// U+FFFE and U+FFFF: sound UTF-8, but no characters of XML.
bool isNonCharacter(std::string_view text) noexcept {
  return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

// Whether XML 1.0 allows a character that takes `length` bytes.
bool isAllowed(std::uint32_t code, std::size_t length) noexcept {
  constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return code >= kLeast[length] && code <= 0x10FFFF && !isSurrogate && code != 0xFFFE && code != 0xFFFF;
}

// Length of the valid and allowed multi-byte character at the front; 0 when there is none.
std::size_t multiByteCharacter(std::string_view text) noexcept {
  const unsigned char lead = static_cast<unsigned char>(text.front());
  const std::size_t length = sequenceLength(lead);
  if (length == 0 || text.size() < length) return 0;
  std::uint32_t code = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned char byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte & 0x3FU);
  }
  return isAllowed(code, length) ? length : 0;
}

// Length of the part at the front that needs no change.
std::size_t plainLength(std::string_view text) noexcept {
  std::size_t i = 0;
  while (i < text.size()) {
    if (isPlainAscii(text[i])) {
      ++i;
      continue;
    }
    const std::size_t length = multiByteCharacter(text.substr(i));
    if (length == 0) break;
    i += length;
  }
  return i;
}

void appendEncoded(std::string& out, std::string_view text) {
  for (;;) {
    const std::size_t plain = plainLength(text);
    out.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) return;
    const std::string_view special = entity(text.front());
    out.append(special.empty() ? kReplacement : special);
    text.remove_prefix(isNonCharacter(text) ? 3 : 1);
  }
}

void writeAttribute(std::ostream& out, const char* name, const QORString& value) {
  out << ' ' << name << "=\"" << CIMUtil::xmlEncode(value) << '"';
}

void writeLocalNameSpacePath(std::ostream& out, std::string_view nameSpace) {
  out << "<LOCALNAMESPACEPATH>";
  while (!nameSpace.empty()) {
    const std::size_t end = std::min(nameSpace.find('/'), nameSpace.size());
    if (end != 0) {
      out << "<NAMESPACE";
      writeAttribute(out, "NAME", QORString(nameSpace.substr(0, end)));
      out << "/>";
    }
    nameSpace.remove_prefix(std::min(end + 1, nameSpace.size()));
  }
  out << "</LOCALNAMESPACEPATH>";
}

const char* keyValueType(const QoriScalar& scalar) noexcept {
  if (scalar.isNumber()) return "numeric";
  return scalar.kind == QoriScalarKind::Boolean ? "boolean" : "string";
}

// What all paths in one element have in common.
struct PathWriter {
  std::ostream& out;
  QORString host;
  bool localOnly;

  void writePath(const IQoriInstanceName& name) const {
    const model::NestingGuard guard("StreamInstancePath");
    const char* const element = localOnly ? "LOCALINSTANCEPATH" : "INSTANCEPATH";
    out << '<' << element << '>';
    if (!localOnly) out << "<NAMESPACEPATH><HOST>" << CIMUtil::xmlEncode(host) << "</HOST>";
    writeLocalNameSpacePath(out, name.getNameSpacePath()->getNameSpace().view());
    if (!localOnly) out << "</NAMESPACEPATH>";
    writeInstanceName(name);
    out << "</" << element << '>';
  }

 private:
  void writeInstanceName(const IQoriInstanceName& name) const {
    out << "<INSTANCENAME";
    writeAttribute(out, "CLASSNAME", name.getClassName());
    out << '>';
    QORValSlistIterator<QORSmrPtr<IQoriProperty>> it(*name.getKeys());
    while (++it) writeKey(*it.key());
    out << "</INSTANCENAME>";
  }

  void writeKey(const IQoriProperty& key) const {
    out << "<KEYBINDING";
    writeAttribute(out, "NAME", key.getName());
    out << '>';
    const QORSmrPtr<IQoriValue>& value = key.getValue();
    const QORSmrPtr<IQoriInstanceName> reference =
        value.IsNull() ? QORSmrPtr<IQoriInstanceName>() : value->getReference();
    if (reference.IsNull()) {
      const char* const type = value.IsNull() ? "string" : keyValueType(value->scalar());
      const QORString text = value.IsNull() ? QORString::emptyString() : value->toString();
      out << "<KEYVALUE VALUETYPE=\"" << type << "\">" << CIMUtil::xmlEncode(text) << "</KEYVALUE>";
    } else {
      out << "<VALUE.REFERENCE>";
      writePath(*reference);
      out << "</VALUE.REFERENCE>";
    }
    out << "</KEYBINDING>";
  }
};

}  // namespace

QORString CIMUtil::CreateCIMErrorMsg(int status, const QORString& message) {
  return "CIM status " + QORString::number(static_cast<QORsint64>(status)) + ": " + message;
}

QORString CIMUtil::xmlEncode(const QORString& text) {
  if (plainLength(text.view()) == text.length()) return text;
  std::string encoded;
  encoded.reserve(text.length() + 32);
  appendEncoded(encoded, text.view());
  return QORString(encoded);
}

void CIMUtil::StreamInstancePath(std::ostream& out, const IQoriInstanceName& name, const QORString& hostAddress,
                                 const QORString& hostPort, bool withHost, bool localOnly) {
  QORString host = withHost ? hostAddress : name.getNameSpacePath()->getHost();
  if (withHost && !hostPort.isEmpty()) host = host + ":" + hostPort;
  PathWriter{out, host, localOnly}.writePath(name);
}
