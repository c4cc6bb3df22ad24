// The reply to one operation, read while it arrives.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLREPLY_H
#define QORQL_CIMXML_CIMXMLREPLY_H

#include <optional>
#include <string>
#include <string_view>

#include "Cimom/CimXml/CimXmlClassReader.h"
#include "Cimom/CimXml/CimXmlInstanceReader.h"
#include "Cimom/CimXml/CimXmlObjects.h"
#include "Cimom/CimXml/XmlPull.h"
#include "cmpbase.h"

// Holds only the item that was read last. What cannot be read THROWS
// CimXmlException with the place, a status that the server answers
// CimStatusException; the source's exceptions pass through. One thread at a time.
class CimXmlReply {
 public:
  enum class Item {
    Instance,   // instance(), with its name where the reply gives one
    Name,       // name(): of an instance or a class
    Class,      // classDeclaration()
    Qualifier,  // qualifierDeclaration()
    Output,     // an output parameter: outputName(), outputText()
    End
  };

  // `operation` and `messageId` are the call's; a reply to another one is a
  // fault. `nameSpace`: of names that have none of their own.
  CimXmlReply(cimxml::XmlPull::Source source, std::string_view operation, std::string_view messageId,
              const QORString& nameSpace);
  CimXmlReply(const CimXmlReply&) = delete;
  CimXmlReply& operator=(const CimXmlReply&) = delete;
  ~CimXmlReply();

  // Embedded classes are refused unless this makes objects of them.
  using MakeClassObject = std::function<QORSmrPtr<IQoriObject>(const CimClassDeclaration& declaration)>;
  void setMakeClassObject(MakeClassObject make) { _makeClassObject = std::move(make); }

  // Reads the next item; End once the whole message was read and is sound.
  Item next();

  // What next() read last, until it is called again.
  const CimXmlInstance& instance() const noexcept { return _instance; }
  // The same, to be changed or completed before an object is made of it.
  CimXmlInstance& takeInstance() noexcept { return _instance; }
  const QORSmrPtr<IQoriInstanceName>& name() const noexcept { return _name; }
  const CimClassDeclaration& classDeclaration() const noexcept { return _class; }
  const CimQualifierDeclaration& qualifierDeclaration() const noexcept { return _qualifier; }
  const std::string& outputName() const noexcept { return _outputName; }
  const std::string& outputText() const noexcept { return _outputText; }

  // The instance as an object with the properties that came.
  QORSmrPtr<IQoriObject> makeObject() { return _objects.make(_instance); }

 private:
  enum class State { Start, Values, Outputs, Done };

  void begin();
  void enter(cimxml::Element element);
  void requireVersion(std::string_view version, char major, const char* what) const;
  bool enterResponse();
  [[noreturn]] void raiseStatus();
  Item readValue();
  Item readOutput();
  Item finish();

  cimxml::XmlPull _xml;
  const std::string _operation;
  const std::string _messageId;
  CimXmlObjects _objects;
  CimXmlInstanceReader _instances;
  CimXmlClassReader _classes;
  MakeClassObject _makeClassObject;
  State _state = State::Start;
  CimXmlInstance _instance;
  QORSmrPtr<IQoriInstanceName> _name;
  CimClassDeclaration _class;
  CimQualifierDeclaration _qualifier;
  std::string _outputName;
  std::string _outputText;
};

#endif
