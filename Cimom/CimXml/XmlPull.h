// XML read step by step from a stream: the caller asks for the next element.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_XMLPULL_H
#define QORQL_CIMXML_XMLPULL_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/CimXml/CimXmlElement.h"
#include "Cimom/CimXml/CimXmlException.h"
#include "cmpbase.h"

namespace cimxml {

// One attribute of a start tag; valid until the reader moves on.
struct XmlAttribute {
  std::string_view name;
  std::string_view value;
};

// The attributes of a start tag; valid until the reader moves on.
class XmlAttributes {
 public:
  XmlAttributes() = default;
  explicit XmlAttributes(std::vector<XmlAttribute>& attributes) : _attributes(&attributes) {}
  // Null when the tag has no attribute of the name (exact).
  const std::string_view* find(std::string_view name) const noexcept;
  // The value, empty when absent.
  std::string_view get(std::string_view name) const noexcept;

 private:
  const std::vector<XmlAttribute>* _attributes = nullptr;
};

// Reads a document of the five predefined entities and no DOCTYPE, in pieces of
// some kilobytes, however long it is. Depth, texts and tags are bounded. Every
// fault THROWS CimXmlException with the place, and so does raise(). One reader
// belongs to one thread at a time. What it returns as views is valid until the
// next call.
class XmlPull {
 public:
  // Fills at most `capacity` bytes and says how many; 0 at the end of the
  // document. What it throws passes through.
  using Source = std::function<std::size_t(char* buffer, std::size_t capacity)>;
  struct Limits {
    std::size_t depth = 100;                  // elements within elements
    std::size_t text = std::size_t{1} << 26;  // bytes of one text
    std::size_t tag = std::size_t{1} << 20;   // bytes of one tag or comment, which the parser holds as a whole
  };

  explicit XmlPull(Source source) : XmlPull(std::move(source), Limits()) {}
  XmlPull(Source source, const Limits& limits);
  // Reads a text that is there as a whole. BORROWS it.
  XmlPull(std::string_view document, const Limits& limits);
  XmlPull(const XmlPull&) = delete;
  XmlPull& operator=(const XmlPull&) = delete;
  ~XmlPull();

  // Looks at the next child of the open element without opening it. None
  // when the end of the element, or of the document, comes next. Blanks are
  // skipped; other text is a fault.
  Element peek();
  // Opens the next child. REQUIRES that peek() gave one. The attributes
  // are valid until the next call.
  XmlAttributes open();
  // Closes the open element, whose end must come next.
  void close();
  // Returns the text of the open element, which must have no children, and closes it.
  std::string_view closeText();
  // Skips the next child with everything in it.
  void skip();
  // The name of the next element, as the document writes it.
  std::string_view aheadName() const noexcept;
  // REQUIRES that all elements are closed: nothing but blanks may follow.
  void finish();

  // THROWS CimXmlException at the place that was read last.
  [[noreturn]] void raise(const std::string& message,
                          CimXmlException::Kind kind = CimXmlException::Kind::Structure) const;

  const Limits& limits() const noexcept { return _limits; }

 private:
  struct Event;
  struct Expat;

  const Event& ahead();
  void fill();
  void parse(const char* bytes, std::size_t count, bool isLast);
  [[noreturn]] void raiseParserFault() const;

  Source _source;
  Limits _limits;
  std::unique_ptr<Expat> _expat;
  std::vector<XmlAttribute> _attributes;  // of the tag that was opened last
  std::string _text;                      // of a text that came in pieces
};

}  // namespace cimxml

#endif
