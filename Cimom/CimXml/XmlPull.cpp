// expat reads a piece of the document at a time and hands out events; they wait
// in a queue, with their texts in one buffer, until the caller has taken them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/XmlPull.h"

#include <expat.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace cimxml {

using Kind = CimXmlException::Kind;

namespace {

// So that an event stays in the processor's cache until it is taken.
constexpr std::size_t kPiece = std::size_t{1} << 14;

constexpr const char* kGoesOn = "the document goes on after its end";
constexpr std::string_view kBlanks = " \t\r\n";

}  // namespace

const std::string_view* XmlAttributes::find(std::string_view name) const noexcept {
  for (const XmlAttribute& attribute : *_attributes) {
    if (attribute.name == name) return &attribute.value;
  }
  return nullptr;
}

std::string_view XmlAttributes::get(std::string_view name) const noexcept {
  const std::string_view* const value = find(name);
  return value == nullptr ? std::string_view() : *value;
}

struct XmlPull::Event {
  enum class Kind : QORuint8 { Start, End, Text, EndOfDocument };

  struct Place {
    QORuint64 line;
    QORuint64 column;
  };

  Kind kind;
  Element element;      // of a start
  QORuint32 length;     // of the name or text
  std::size_t text;     // where the name or text begins in the buffer
  Place place;          // of the event's first byte
  Place ink;            // of a text: of its first byte that is no blank; line 0 where it has none
  std::size_t parts;    // of a start: its first attribute in the list of parts
  std::size_t partEnd;  // and the one past its last
};

// The parser and its events so far.
struct XmlPull::Expat {
  // Where an attribute's name and value lie in the buffer.
  struct Part {
    std::size_t begin;
    QORuint32 name;
    QORuint32 value;
  };

  explicit Expat(std::size_t maximumDepth) : depthLimit(maximumDepth), parser(XML_ParserCreate(nullptr)) {
    if (parser == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, &onStart, &onEnd);
    XML_SetCharacterDataHandler(parser, &onText);
    XML_SetStartDoctypeDeclHandler(parser, &onDoctype);
  }
  Expat(const Expat&) = delete;
  Expat& operator=(const Expat&) = delete;
  ~Expat() { XML_ParserFree(parser); }

  void forgetTaken() noexcept {
    events.clear();
    parts.clear();
    buffer.clear();
    taken = 0;
  }

  std::string_view textOf(const Event& event) const noexcept { return {buffer.data() + event.text, event.length}; }

  // An exception must not pass through the parser, which is C.
  template <class Action>
  void guarded(Action action) noexcept {
    if (failure) return;
    try {
      action();
    } catch (...) {
      failure = std::current_exception();
      XML_StopParser(parser, XML_FALSE);
    }
  }

  std::size_t append(std::string_view text) {
    buffer.append(text);
    return buffer.size() - text.size();
  }

  Event& add(Event::Kind kind, std::string_view text) {
    const std::size_t at = append(text);
    events.push_back({kind, Element::None, static_cast<QORuint32>(text.size()), at, placeNow(), Event::Place{0, 0},
                      parts.size(), parts.size()});
    return events.back();
  }

  // The piece is the end of the last event's text. The parser hands out line ends and references by
  // themselves, so that the blanks before a piece's first ink are a column each.
  void noteInk(std::string_view piece) {
    Event& event = events.back();
    if (event.ink.line != 0) return;
    const std::size_t blanks = piece.find_first_not_of(kBlanks);
    if (blanks == std::string_view::npos) return;
    event.ink = placeNow();
    event.ink.column += blanks;
  }

  // Where the parser stands.
  Event::Place placeNow() const noexcept {
    return {XML_GetCurrentLineNumber(parser), XML_GetCurrentColumnNumber(parser) + 1};
  }

  [[noreturn]] void refuse(const std::string& message, CimXmlException::Kind kind) const {
    const Event::Place at = placeNow();
    throw CimXmlException(message, at.line, at.column, kind);
  }

  void start(const char* name, const char** attributes) {
    if (++depth > depthLimit) refuse("elements nest deeper than " + std::to_string(depthLimit), Kind::Structure);
    Event& event = add(Event::Kind::Start, name);
    event.element = elementOf(name);
    for (; *attributes != nullptr; attributes += 2) {
      const std::string_view key(attributes[0]);
      const std::string_view value(attributes[1]);
      const std::size_t begin = append(key);
      append(value);
      parts.push_back({begin, static_cast<QORuint32>(key.size()), static_cast<QORuint32>(value.size())});
    }
    event.partEnd = parts.size();
  }

  static void onStart(void* self, const char* name, const char** attributes) {
    Expat& expat = *static_cast<Expat*>(self);
    expat.guarded([&] { expat.start(name, attributes); });
  }
  static void onEnd(void* self, const char* /*name*/) {
    Expat& expat = *static_cast<Expat*>(self);
    --expat.depth;
    expat.guarded([&] {
      const Event& event = expat.add(Event::Kind::End, {});
      if (expat.depth == 0) expat.rootEnd = event.place;
    });
  }
  static void onText(void* self, const char* text, int length) {
    Expat& expat = *static_cast<Expat*>(self);
    expat.guarded([&] {
      const std::string_view piece(text, static_cast<std::size_t>(length));
      if (!expat.events.empty() && expat.events.back().kind == Event::Kind::Text) {
        expat.append(piece);
        expat.events.back().length += static_cast<QORuint32>(length);
      } else {
        expat.add(Event::Kind::Text, piece);
      }
      expat.noteInk(piece);
    });
  }
  static void onDoctype(void* self, const char*, const char*, const char*, int) {
    Expat& expat = *static_cast<Expat*>(self);
    expat.guarded([&] { expat.refuse("a DOCTYPE is not accepted", Kind::Structure); });
  }

  const std::size_t depthLimit;
  XML_Parser parser;
  std::vector<Event> events;
  std::vector<Part> parts;
  std::string buffer;
  std::size_t taken = 0;       // events that the caller has taken
  std::size_t depth = 0;       // of what the parser has seen
  Event::Place rootEnd{0, 0};  // of the end tag of the whole; line 0 before it
  std::size_t open = 0;        // elements that the caller has open
  std::size_t waiting = 0;     // bytes since the last event
  Event::Place place{1, 1};    // of what was peeked at last
  std::string piece;           // of the document
  std::exception_ptr failure;
};

XmlPull::XmlPull(Source source, const Limits& limits)
    : _source(std::move(source)), _limits(limits), _expat(std::make_unique<Expat>(limits.depth)) {}

XmlPull::XmlPull(std::string_view document, const Limits& limits)
    : XmlPull(
          [document](char* buffer, std::size_t capacity) mutable {
            const std::size_t count = std::min(capacity, document.size());
            std::copy_n(document.data(), count, buffer);
            document.remove_prefix(count);
            return count;
          },
          limits) {}

XmlPull::~XmlPull() = default;

void XmlPull::raise(const std::string& message, Kind kind) const {
  throw CimXmlException(message, _expat->place.line, _expat->place.column, kind);
}

void XmlPull::raiseParserFault() const {
  const XML_Error fault = XML_GetErrorCode(_expat->parser);
  if (fault == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  // Which fault the parser sees after the document element, and where, depends on the sizes of the pieces.
  if (const Event::Place end = _expat->rootEnd; end.line != 0) {
    throw CimXmlException(kGoesOn, end.line, end.column, Kind::Form);
  }
  if (fault == XML_ERROR_NO_ELEMENTS || fault == XML_ERROR_UNCLOSED_TOKEN || fault == XML_ERROR_PARTIAL_CHAR) {
    _expat->refuse("the document ends too early", Kind::Form);
  }
  _expat->refuse(std::string("the document is not well-formed XML: ") + XML_ErrorString(fault), Kind::Form);
}

// A fault waits until what stands before it has been taken, so that it does not
// depend on the sizes of the pieces what a caller sees.
void XmlPull::parse(const char* bytes, std::size_t count, bool isLast) {
  if (XML_Parse(_expat->parser, bytes, static_cast<int>(count), isLast ? XML_TRUE : XML_FALSE) == XML_STATUS_OK) return;
  if (_expat->failure) return;
  try {
    raiseParserFault();
  } catch (...) {
    _expat->failure = std::current_exception();
  }
}

void XmlPull::fill() {
  Expat& expat = *_expat;
  expat.forgetTaken();
  while (expat.events.empty()) {
    if (expat.failure) std::rethrow_exception(expat.failure);
    expat.piece.resize(kPiece);
    const std::size_t count = _source(expat.piece.data(), kPiece);
    parse(expat.piece.data(), count, count == 0);
    if (expat.failure) continue;
    if (count == 0) {
      expat.add(Event::Kind::EndOfDocument, {});
    } else if (expat.events.empty() && (expat.waiting += count) > _limits.tag) {
      raise("a tag is longer than " + std::to_string(_limits.tag) + " bytes");
    }
  }
  expat.waiting = 0;
}

const XmlPull::Event& XmlPull::ahead() {
  if (_expat->taken == _expat->events.size()) fill();
  const Event& event = _expat->events[_expat->taken];
  _expat->place = event.place;
  return event;
}

Element XmlPull::peek() {
  for (;;) {
    const Event& event = ahead();
    if (event.kind != Event::Kind::Text) return event.kind == Event::Kind::Start ? event.element : Element::None;
    if (event.ink.line != 0) {
      _expat->place = event.ink;
      raise("text is not allowed here");
    }
    ++_expat->taken;
  }
}

std::string_view XmlPull::aheadName() const noexcept {
  return _expat->taken < _expat->events.size() ? _expat->textOf(_expat->events[_expat->taken]) : std::string_view();
}

XmlAttributes XmlPull::open() {
  const Event& event = ahead();
  _attributes.clear();
  const char* const buffer = _expat->buffer.data();
  for (std::size_t i = event.parts; i < event.partEnd; ++i) {
    const Expat::Part& part = _expat->parts[i];
    _attributes.push_back({{buffer + part.begin, part.name}, {buffer + part.begin + part.name, part.value}});
  }
  ++_expat->taken;
  ++_expat->open;
  return XmlAttributes(_attributes);
}

void XmlPull::close() {
  if (peek() != Element::None) raise(std::string(aheadName()) + " is not allowed here");
  ++_expat->taken;
  --_expat->open;
}

std::string_view XmlPull::closeText() {
  const Event* event = &ahead();
  const Event::Place begin = event->place;
  std::string_view text;
  if (event->kind == Event::Kind::Text) {
    // A text at the end of a piece may continue in the next one.
    if (_expat->taken + 1 < _expat->events.size()) {
      text = _expat->textOf(*event);
      ++_expat->taken;
    } else {
      _text.clear();
      for (; event->kind == Event::Kind::Text; event = &ahead()) {
        _text.append(_expat->textOf(*event));
        if (_text.size() > _limits.text) raise("a text is longer than " + std::to_string(_limits.text) + " bytes");
        ++_expat->taken;
      }
      text = _text;
    }
  }
  if (ahead().kind != Event::Kind::End) raise(std::string(aheadName()) + " is not allowed within a text");
  ++_expat->taken;
  --_expat->open;
  // A fault in the text is reported at its beginning.
  _expat->place = begin;
  return text;
}

void XmlPull::skip() {
  const std::size_t outside = _expat->open;
  open();
  while (_expat->open > outside) {
    const Event::Kind kind = ahead().kind;
    if (kind == Event::Kind::Start) ++_expat->open;
    if (kind == Event::Kind::End) --_expat->open;
    ++_expat->taken;
  }
}

void XmlPull::finish() {
  if (ahead().kind != Event::Kind::EndOfDocument) raise(kGoesOn, Kind::Form);
}

}  // namespace cimxml
