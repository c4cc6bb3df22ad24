// The grammar of MOF: from tokens to declarations.
// Tested by tests/unit/Mof/MofSyntaxTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFPARSER_H
#define QORQL_MOF_MOFPARSER_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Mof/MofReport.h"
#include "Cimom/Mof/MofRowReader.h"
#include "Cimom/Mof/MofScanner.h"
#include "Cimom/Mof/MofSyntax.h"

// Reads one text into a document. A syntax fault refuses the declaration it is
// in; reading continues after the next `;` outside braces, or at the
// next declaration that starts a line. A lenient load's report makes the parser
// read the Windows forms as well: pragmas of any look, flavors Amended and
// ToInstance, and backslashes in the path of a namespace. Recursion follows the
// nesting of instance values alone, and that is bounded. Belongs to one load;
// source, document and report outlive it.
class MofParser {
 public:
  // What is the same for a text and the texts it includes: an include reads as
  // if it stood in the place of its pragma.
  struct Context {
    QORString nameSpace;  // empty in a lenient load: the pragma is at fault, what follows belongs nowhere
    QORuint32 scope = 0;  // of aliases
    // Reads the file that an include pragma names; faults go to the report.
    std::function<void(const std::string& path, const MofLocation& at)> include;
    // The file that is being read has named a namespace, and has used the one that it came into before that.
    bool hasNamed = false;
    bool hasUsed = false;
    bool makesRows = false;  // plain instances become rows
    void use() noexcept { hasUsed = hasUsed || !hasNamed; }
  };

  MofParser(const MofSource& source, MofDocument& document, MofReport& report, Context& context);

  // Reads the whole text; faults go to the report.
  void readDeclarations();
  // The instance whose word "instance" stands at `offset`, in a text that has been read without fault there. THROWS
  // MofFault.
  std::unique_ptr<MofInstanceSyntax> readInstanceAt(std::size_t offset);
  // What the text of an embedded object is: one of the two.
  struct EmbeddedObject {
    std::unique_ptr<MofInstanceSyntax> instance;
    std::unique_ptr<MofClassSyntax> definition;
  };
  // Reads a text that is one instance or class, the value of an embedded object
  // at nesting level `depth`. THROWS MofFault.
  EmbeddedObject readEmbeddedObject(QORuint32 depth);

 private:
  using Kind = MofToken::Kind;

  // Ends what is said of a form that strict loads refuse.
  static constexpr const char* kLenientReads = "; a lenient load (--lenient) reads it";

  // Tokens.
  void step() noexcept;
  // Moves to the next token. THROWS MofFault when there is none.
  void advance();
  bool isSymbol(char symbol) const noexcept { return _token.kind == Kind::Symbol && _token.symbol == symbol; }
  bool isWord(const char* word) const noexcept;
  bool takeSymbol(char symbol);
  bool takeWord(const char* word);
  void expectSymbol(char symbol);
  void expectWord(const char* word);
  // The `;` of a declaration; what follows it does not belong to the declaration.
  void endDeclaration();
  MofName expectName(const char* what);
  std::string_view textOf(const MofToken& token) const noexcept;
  // Of a literal, without its quotes.
  std::string_view insideOf(const MofToken& token) const noexcept;
  // The current token; at the end of the text, the place after the last one.
  MofLocation here() const noexcept { return {&_source, _token.kind == Kind::End ? _lastEnd : _token.offset}; }
  // Refuses the current token.
  [[noreturn]] void fail(const std::string& expected);
  std::string describeToken() const;

  // Recovery.
  void refuseDeclaration(const MofFault& fault);
  void recover();
  bool startsLine() const noexcept;

  // Declarations.
  void readDeclaration();
  bool isPlaced() noexcept;
  bool readRow();
  void readPragma();
  bool passOverPragma();
  std::string readNameSpacePath();
  void enterNameSpace(const std::string& path, const MofLocation& at);
  void readQualifierDeclaration();
  std::unique_ptr<MofClassSyntax> readClass(std::vector<MofQualifierSyntax> qualifiers);
  void readFeature(MofClassSyntax& owner);
  void readFeatureName(MofFeatureSyntax& feature, const char* what);
  void readMethod(MofMethodSyntax& method);
  MofFeatureSyntax readParameter();
  std::vector<MofQualifierSyntax> readQualifiers();
  MofQualifierSyntax readQualifier();
  bool readArraySize(QORsint32& size);
  void readScopes(std::vector<QORString>& scopes);
  void readFlavors(std::vector<MofFlavor>& flavors);
  bool takeFlavor(std::vector<MofFlavor>& flavors);
  bool isIdleFlavor() const noexcept;
  void refuseFlavor();

  // Instances and values.
  std::unique_ptr<MofInstanceSyntax> readInstance(QORuint32 depth);
  MofPropertySyntax readInstanceProperty(QORuint32 depth);
  MofValueSyntax readInitializer(QORuint32 depth);
  // Texts are made in memory of the slabs, if any.
  MofValueSyntax readArray(QORuint32 depth, QORSlabs* slabs = nullptr);
  MofValueSyntax readValue(QORuint32 depth, QORSlabs* slabs = nullptr);
  MofValueSyntax readWordValue(QORuint32 depth);
  // BORROWS: until the next one is read.
  std::string_view readString();

  const MofSource& _source;
  MofDocument& _document;
  MofReport& _report;
  Context& _context;
  MofScanner _scanner;
  MofRowReader _rows;
  MofToken _token;
  std::size_t _lastEnd = 0;                      // of the token before
  int _braces = 0;                               // those open in the current declaration
  std::size_t _pragma = std::string_view::npos;  // where the pragma that is being read starts
  bool _hasLostNameSpace = false;                // it was to name the namespace of a lenient load
  // A string over several lines in the current statement. After a fault it is
  // taken for one whose closing quote is missing.
  MofToken _longString;
  std::string _string;  // the one read last; its room serves the next one
  // Elements and qualifiers of the lists that are being read.
  std::vector<MofValueSyntax> _elements;
  std::vector<MofQualifierSyntax> _qualifiers;
  // The declaration being read, as far as it is known.
  QORString _className;
  QORString _alias;
};

#endif
