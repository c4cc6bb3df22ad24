// What stands on one side of a filter's comparison, as far as its text and the
// schema tell.
#ifndef QORQL_TOOL_FILTEROPERAND_H
#define QORQL_TOOL_FILTEROPERAND_H

#include <string>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "StatementText.h"
#include "cimom/QoriScalar.h"

struct FilterOperand {
  enum class Kind { Unknown, Number, Text, Boolean, Other };

  Kind kind = Kind::Unknown;
  std::string type;        // "uint16", of an array its element's; of a literal "number" or "text"
  std::string property;    // its name as written; empty: a literal
  std::string written;     // the reference as a whole
  std::size_t piece = 0;   // where it begins
  bool isArray = false;    // and not one element of it
  bool isAsked = false;    // after ANY or EVERY
  bool isSigned = false;   // of a signed whole type, or a whole literal after a minus
  QoriScalar number{};     // a literal number; of kind Null for anything else
  bool saysTruth = false;  // the literal TRUE or FALSE, with or without quotes
};

// Whether its values are embedded objects.
bool holdsObjects(const CimPropertyDeclaration& property);

// BORROWS all it is given.
class FilterOperandReader {
 public:
  FilterOperandReader(EmbeddedObjectManager& manager, const QORString& nameSpace, const StatementText& text)
      : _manager(manager), _nameSpace(nameSpace), _text(text) {}

  // The operands of the comparison whose sign is that piece. False when one side
  // is more than a literal or a reference.
  bool read(std::size_t sign, FilterOperand& left, FilterOperand& right) const;

 private:
  std::size_t startOf(std::size_t sign) const noexcept;
  bool isEnd(std::size_t piece) const noexcept;
  std::size_t readOperand(std::size_t piece, FilterOperand& operand) const;
  std::size_t readLiteral(std::size_t piece, FilterOperand& operand) const;
  std::size_t behindNumber(std::size_t piece) const noexcept;
  std::size_t readReference(std::size_t piece, FilterOperand& operand) const;
  std::size_t behindIndex(std::size_t piece, bool& isElement) const noexcept;
  void describe(const std::string& qualifier, const std::string& scope, bool isElement, FilterOperand& operand) const;

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const StatementText& _text;
};

#endif
