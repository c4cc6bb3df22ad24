// The message of one call, as a server or a listener takes it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLREQUEST_H
#define QORQL_CIMXML_CIMXMLREQUEST_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/CimXml/CimXmlInstance.h"
#include "Cimom/Embedded/CimDeclarations.h"
#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

// A parameter of a call, as far as the document alone tells what it is.
struct CimXmlParameter {
  enum class Kind { Null, Text, Texts, ClassName, InstanceName, Instance, Class, Qualifier };

  std::string name;
  Kind kind = Kind::Null;
  QORString text;                      // Text, ClassName
  std::vector<QORString> texts;        // Texts
  QORSmrPtr<IQoriInstanceName> path;   // InstanceName, ClassName
  CimXmlInstance instance;             // Instance; its name where the document gives one
  CimClassDeclaration classes;         // Class
  CimQualifierDeclaration qualifiers;  // Qualifier
};

// One call. What a parameter is not THROWS CimStatusException, status 4 ("invalid
// parameter"), naming it. Not changed after it was read: threads may share it.
class CimXmlRequest {
 public:
  enum class Kind {
    Operation,  // an intrinsic one (IMETHODCALL)
    Method,     // of a class or an instance (METHODCALL)
    Export      // EXPMETHODCALL
  };

  Kind kind = Kind::Operation;
  std::string messageId;
  std::string operation;  // as the document spells it
  QORString nameSpace;    // "root/cimv2"; empty for an Export
  std::vector<CimXmlParameter> parameters;

  // Ignoring case; null when there is none, or it is NULL.
  const CimXmlParameter* find(std::string_view name) const;
  // The parameter of the name; nothing, or what is given, where it is left out.
  bool flag(std::string_view name, bool otherwise) const;
  std::optional<QORuint32> number(std::string_view name) const;
  std::optional<QORString> text(std::string_view name) const;
  std::optional<std::vector<QORString>> texts(std::string_view name) const;
  std::optional<QORString> className(std::string_view name) const;
  QORSmrPtr<IQoriInstanceName> instanceName(std::string_view name) const;  // null where it is left out
  const CimXmlInstance* instance(std::string_view name) const;             // null where it is left out
};

#endif
