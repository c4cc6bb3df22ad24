// The text of a statement cut into words and signs, and places in it.
#ifndef QORQL_TOOL_STATEMENTTEXT_H
#define QORQL_TOOL_STATEMENTTEXT_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "cmpbase.h"

// A coarse view of the text for messages about names: it does not judge it.
class StatementText {
 public:
  enum class Kind { Word, Number, Literal, Sign };
  struct Piece {
    Kind kind;
    std::string_view text;  // a literal's with its quotes
    std::size_t offset;
  };
  // A FROM name: a class and what it is called besides.
  struct Source {
    std::string className;
    std::string alias;  // empty: none
    std::size_t offset;
  };
  static constexpr std::size_t kNowhere = std::string_view::npos;

  // BORROWS the text, which begins at that place of a longer one.
  explicit StatementText(std::string_view text, QORuint32 firstLine = 1, QORuint32 firstColumn = 1);

  std::string_view text() const noexcept { return _text; }
  const std::vector<Piece>& pieces() const noexcept { return _pieces; }
  const std::vector<Source>& sources() const noexcept { return _sources; }
  // The class of a FROM name in any case; empty when it is none.
  std::string classOf(std::string_view name) const;
  // The class that WHERE requires of the property's object with ISA; empty when it requires none.
  std::string isaClassOf(std::string_view property) const;

  // Whether a piece is this word or sign, ignoring case. False outside the pieces.
  bool is(std::size_t piece, std::string_view word) const noexcept;
  bool isWord(std::size_t piece) const noexcept;
  // The piece is a name that no dot or scope joins to one before it, and that is
  // neither a keyword's class nor an alias being given.
  bool beginsReference(std::size_t piece) const noexcept;
  // The first piece that names a property of that name on its own, else the
  // first one of that name; kNowhere when there is none.
  std::size_t findReference(std::string_view name) const noexcept;
  std::size_t findWord(std::string_view name) const noexcept;
  // Where the pieces of the FROM clause begin, and where those after it do.
  std::size_t fromPiece() const noexcept { return _from; }
  std::size_t behindFrom() const noexcept { return _behindFrom; }

  // "line 1, column 15": columns count characters.
  std::string place(std::size_t offset) const;

 private:
  std::size_t endOfPiece(std::size_t start, Kind& kind) const;
  void readPieces();
  void readSources();
  void readIsaClasses();

  std::string_view _text;
  QORuint32 _firstLine;
  QORuint32 _firstColumn;
  std::vector<Piece> _pieces;
  std::vector<Source> _sources;
  std::map<std::string, std::string> _isaClasses;  // by property, in upper case
  std::size_t _from = 0;
  std::size_t _behindFrom = 0;
};

#endif
