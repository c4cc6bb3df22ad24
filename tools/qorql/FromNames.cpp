// The classes of a FROM clause, and what they are called besides.
// SPDX-License-Identifier: Apache-2.0
#include "FromNames.h"

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Query.h"

namespace {

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

std::string_view nameAt(std::string_view text, std::size_t offset) noexcept {
  std::size_t end = offset;
  while (end < text.size() && isNameCharacter(text[end])) ++end;
  return offset < end ? text.substr(offset, end - offset) : std::string_view();
}

FromNames::FromNames(const QORQL_Query& query, std::string_view text) {
  const auto& from = dynamic_cast<const QORQL_FromClause&>(*query.getFromClause());
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    const QORQL_FromSpecifier& specifier = *specifiers.key();
    const bool hasAlias = !specifier.getAlias().isEmpty();
    _sources.push_back({std::string(nameAt(text, specifier.getOffset())),
                        hasAlias ? std::string(nameAt(text, specifier.getAliasOffset())) : std::string(),
                        specifier.getOffset()});
  }
}

std::string FromNames::classOf(std::string_view name) const {
  for (const Source& source : _sources) {
    if (QORString::equalIgnoringCase(source.className, name) || QORString::equalIgnoringCase(source.alias, name)) {
      return source.className;
    }
  }
  return "";
}
