// The engine beside models of its grammar, on texts by chance: grammar_models MODEL [--count N] [--seed S], where MODEL
// is scanner, parser or names. Prints how many texts came to what, and fails where the two differ.
// SPDX-License-Identifier: Apache-2.0
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "EngineOutline.h"
#include "GrammarText.h"
#include "NameModel.h"
#include "ScannerModel.h"
#include "cimom/CQoriType.h"

namespace {

constexpr unsigned kMaximumFaults = 10;

// Takes what goes to standard output, from everybody, while it lives.
class OutputCapture {
 public:
  OutputCapture() : _file(memfd_create("output", 0)), _before(dup(STDOUT_FILENO)) {
    flush();
    if (_file < 0 || _before < 0 || dup2(_file, STDOUT_FILENO) < 0) throw std::runtime_error("no place for output");
  }
  OutputCapture(const OutputCapture&) = delete;
  OutputCapture& operator=(const OutputCapture&) = delete;
  ~OutputCapture() {
    flush();
    dup2(_before, STDOUT_FILENO);
    close(_before);
    close(_file);
  }

  std::string text() const {
    flush();
    std::string text(static_cast<std::size_t>(lseek(_file, 0, SEEK_END)), '\0');
    const ssize_t length = pread(_file, text.data(), text.size(), 0);
    return text.substr(0, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
  }

 private:
  static void flush() {
    std::cout.flush();
    std::fflush(stdout);
  }

  int _file;
  int _before;
};

struct Answer {
  std::string text;    // to compare
  std::string output;  // what was written to standard output meanwhile; to compare
};

Answer capture(const std::function<std::string()>& run) {
  const OutputCapture captured;
  std::string text = run();
  return {std::move(text), captured.text()};
}

std::string shown(const std::vector<ModelToken>& tokens) {
  std::string text;
  for (const ModelToken& token : tokens) {
    text += std::to_string(token.type) + " line " + std::to_string(token.line) + ": " + token.text + "\n";
  }
  return text;
}

std::string tokensOfEngine(const std::string& text) {
  const QORString query(text.data(), text.size());
  QORQL_Lexer lexer(query, false);
  std::vector<ModelToken> tokens;
  for (;; lexer.next(false)) {
    const QORQL_Token& token = lexer.getCurrent();
    tokens.push_back({token.getType(), std::string(token.getValue().view()), lexer.getCurrentLineNr(), 0});
    if (token.getType() == TokenEOF) return shown(tokens);
  }
}

// A schema in a namespace of the embedded object manager, and as the models know it.
struct Place {
  std::string nameSpace;
  Vocabulary vocabulary;
  ModelSchema schema;
};

// Declares classes, and keeps what the models need to know of them.
class PlaceMaker {
 public:
  PlaceMaker(EmbeddedObjectManager& manager, Place& place) : _sink(manager.sink()), _place(place) {
    _sink.begin();
    _sink.createNamespace(QORString(place.nameSpace));
  }

  void declare(const std::string& name, const std::string& superClass, const std::vector<std::string>& properties) {
    std::set<std::string>& known = _place.schema[name];
    if (!superClass.empty()) known = _place.schema.at(superClass);
    CimClassDeclaration declaration;
    declaration.name = QORString(name);
    declaration.superClass = QORString(superClass);
    for (const std::string& property : properties) {
      if (!known.insert(toUpper(property)).second) continue;
      CimPropertyDeclaration declared;
      declared.name = QORString(property);
      declared.type = CQoriType::string;
      declaration.properties.push_back(declared);
    }
    _sink.declareClass(QORString(_place.nameSpace), declaration);
  }
  void finish() { _sink.commit(); }

 private:
  CimDeclarationSink& _sink;
  Place& _place;
};

Place plainPlace(EmbeddedObjectManager& manager) {
  Place place{"root/plain", {{"A", "B", "Tie"}, {"x", "y", "z", "Emb"}, {"P", "q", "R"}}, {}};
  PlaceMaker maker(manager, place);
  maker.declare("A", "", {"x", "y", "Emb"});
  maker.declare("B", "", {"z"});
  maker.declare("TIE", "", {"t"});
  maker.finish();
  return place;
}

// Names of classes, properties and aliases come from one small pool, so that they meet.
Place placeByChance(EmbeddedObjectManager& manager, GrammarText& chance, unsigned number) {
  const std::vector<std::string> classes = {"A", "B", "C", "D", "Gone"};
  const std::vector<std::string> properties = {"u", "v", "w", "b", "p", "Emb"};
  Place place{"root/n" + std::to_string(number), {classes, properties, {"P", "q", "u", "C", "B"}}, {}};
  PlaceMaker maker(manager, place);
  for (unsigned i = 0; i + 1 < classes.size(); ++i) {
    std::vector<std::string> own;
    for (const std::string& property : properties) {
      if (chance.chance(35)) own.push_back(property);
    }
    maker.declare(classes[i], i > 0 && chance.chance(40) ? classes[chance.below(i)] : "", own);
  }
  maker.finish();
  return place;
}

class Comparer {
 public:
  void compare(const std::string& text, const Answer& expected, const Answer& got) {
    ++_outcomes[kindOf(expected.text)];
    if (expected.text == got.text && expected.output == got.output) return;
    ++_faults;
    std::cout << "The text\n"
              << text << "\nis by the model\n"
              << expected.text << "\n"
              << expected.output << "\nand by the engine\n"
              << got.text << "\n"
              << got.output << "\n\n";
  }
  bool goesOn() const { return _faults < kMaximumFaults; }
  // Whether nothing differs, and enough of the texts were no faults.
  bool finish(unsigned long count) {
    for (const auto& [outcome, number] : _outcomes) std::cout << number << "\t" << outcome << "\n";
    std::cout << _faults << " of " << count << " texts differ\n";
    return _faults == 0 && _outcomes["accepted"] > count / 8;
  }

 private:
  // A fault without what it quotes.
  static std::string kindOf(const std::string& text) {
    if (text.compare(0, 6, "parse ") != 0 && text.compare(0, 8, "runtime ") != 0) return "accepted";
    const std::size_t message = text.find(": ");
    return text.substr(0, text.find(' ', 6)) + text.substr(message, text.find('\'', message + 3) - message);
  }

  std::map<std::string, unsigned long> _outcomes;
  unsigned _faults = 0;
};

bool compareScanners(unsigned long count, std::uint32_t seed) {
  GrammarText texts(seed, {});
  Comparer comparer;
  for (unsigned long i = 0; i < count && comparer.goesOn(); ++i) {
    const std::string text = texts.soup();
    const ModelScan expected = scanByModel(text);
    comparer.compare(text, {shown(expected.tokens), expected.output}, capture([&] { return tokensOfEngine(text); }));
  }
  return comparer.finish(count);
}

void compareStatement(const std::string& text, const Place& place, Comparer& comparer) {
  Answer expected;
  expected.text = outlineByModel(text, place.schema, expected.output);
  comparer.compare(text, expected, capture([&] { return outlineByEngine(text, place.nameSpace); }));
}

bool compareParsers(unsigned long count, std::uint32_t seed) {
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  const Place place = plainPlace(manager);
  GrammarText texts(seed, place.vocabulary);
  Comparer comparer;
  for (unsigned long i = 0; i < count && comparer.goesOn(); ++i) {
    compareStatement(texts.statement(30), place, comparer);
  }
  return comparer.finish(count);
}

bool compareResolutions(unsigned long count, std::uint32_t seed) {
  constexpr unsigned long kOfEachSchema = 50;
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  GrammarText texts(seed, {});
  Comparer comparer;
  Place place;
  for (unsigned long i = 0; i < count && comparer.goesOn(); ++i) {
    if (i % kOfEachSchema == 0) {
      place = placeByChance(manager, texts, static_cast<unsigned>(i / kOfEachSchema));
      texts.setVocabulary(place.vocabulary);
    }
    compareStatement(texts.statement(0), place, comparer);
  }
  return comparer.finish(count);
}

unsigned long option(const std::vector<std::string>& arguments, const std::string& name, unsigned long otherwise) {
  for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
    if (arguments[i] == name) return std::stoul(arguments[i + 1]);
  }
  return otherwise;
}

int run(const std::vector<std::string>& arguments) {
  static const std::map<std::string, bool (*)(unsigned long, std::uint32_t)> models = {
      {"scanner", compareScanners}, {"parser", compareParsers}, {"names", compareResolutions}};
  const auto model = arguments.empty() ? models.end() : models.find(arguments[0]);
  if (model == models.end())
    throw std::invalid_argument("usage: grammar_models scanner|parser|names [--count N] [--seed S]");
  return model->second(option(arguments, "--count", 5000), static_cast<std::uint32_t>(option(arguments, "--seed", 1)))
             ? 0
             : 1;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return run({arguments + 1, arguments + count});
  } catch (const QoriBaseException& error) {
    std::cerr << error.getMessage() << "\n";
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
  }
  return 2;
}
