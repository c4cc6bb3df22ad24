// What type the values of each column have in all rows, for forms that tell it before the first row.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_COLUMNTYPES_H
#define QORQL_SERVER_COLUMNTYPES_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "qorql.h"

// What the datetimes of a column are, where somebody looked at them all.
enum class DateTimes { Texts, Timestamps, Intervals };

// What a datetime is. What no number of microseconds says is a text: one with wildcards, and what is none.
DateTimes dateTimesOf(std::string_view text) noexcept;

// A column that shows a property has its declared type. What is computed has the type that all its values have, and
// where they are numbers of different types one that holds them all; whether datetimes are timestamps or intervals
// their values tell, too. Those columns are open until their rows have been seen.
class ColumnTypes {
 public:
  // The property's declaration; none where the class does not declare it.
  using Declared =
      std::function<std::optional<CimPropertyDeclaration>(const QORString& className, const QORString& property)>;

  enum class Look {
    Types,             // as values have them, where they are not as declared
    TypesAndDateTimes  // what the datetimes are, too
  };

  ColumnTypes(const std::vector<QORQL_ResultReader::Column>& columns, const Declared& declared,
              Look look = Look::TypesAndDateTimes);

  // The columns whose values are to be seen.
  const std::vector<std::size_t>& open() const noexcept { return _open; }
  // A value of an open column; null for NULL.
  void see(std::size_t index, const IQoriValue* value);
  struct Type {
    std::string_view name;  // the CIM type; empty when no row tells it
    bool isArray = false;
    DateTimes dateTimes = DateTimes::Texts;
    std::string conflict;      // where no one type holds the values: the types that they have
    QORString referenceClass;  // of a declared reference; else empty

    // Becomes the widest type of a family of numbers, which was expected before values were known: where these told no
    // type, and where they are numbers of that family. BORROWS the name.
    void widenTo(std::string_view expected);
  };
  // Of each column.
  std::vector<Type> settle() const;

 private:
  struct Seen {
    QORuint32 types = 0;  // a bit for each code
    bool hasArray = false;
    bool hasScalar = false;
    bool hasNegative = false;
    QORuint64 greatest = 0;       // of integers
    bool kinds[3] = {};           // of datetimes
    std::string_view declared{};  // the declared type, where there is one; of a shared type object
    bool isDeclaredArray = false;
    bool isDeclaredObject = false;  // declared as a text that holds objects
    QORString referenceClass{};
  };

  static void seeScalar(Seen& seen, const IQoriValue& value);
  static DateTimes dateTimesOf(const Seen& seen) noexcept;
  // False when there is none.
  static bool findType(const Seen& seen, std::string_view& name);

  std::vector<Seen> _seen;
  std::vector<std::size_t> _open;
};

#endif
