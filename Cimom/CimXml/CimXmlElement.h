// The elements of CIM-XML by number.
// Tested by tests/unit/CimXml/CimXmlReplyTest.cpp, tests/unit/CimXml/CimXmlWriterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLELEMENT_H
#define QORQL_CIMXML_CIMXMLELEMENT_H

#include <string_view>

#include "cmpbase.h"

namespace cimxml {

enum class Element : QORuint8 {
  None,     // no element: the end of the one around it
  Unknown,  // an element that CIM-XML does not have
  Cim,
  Class,
  ClassName,
  ClassPath,
  Correlator,
  Error,
  ExpMethodCall,
  ExpMethodResponse,
  ExpParamValue,
  Host,
  IMethodCall,
  IMethodResponse,
  IParamValue,
  IReturnValue,
  Instance,
  InstanceName,
  InstancePath,
  KeyBinding,
  KeyValue,
  LocalClassPath,
  LocalInstancePath,
  LocalNameSpacePath,
  Message,
  Method,
  MethodCall,
  MethodResponse,
  MultiExpReq,
  MultiReq,
  NameSpace,
  NameSpacePath,
  ObjectPath,
  Parameter,
  ParameterArray,
  ParameterRefArray,
  ParameterReference,
  ParamValue,
  Property,
  PropertyArray,
  PropertyReference,
  Qualifier,
  QualifierDeclaration,
  Scope,
  SimpleExpReq,
  SimpleExpRsp,
  SimpleReq,
  SimpleRsp,
  Value,
  ValueArray,
  ValueInstanceWithPath,
  ValueNamedInstance,
  ValueNamedObject,
  ValueNull,
  ValueObject,
  ValueObjectWithLocalPath,
  ValueObjectWithPath,
  ValueRefArray,
  ValueReference,
};

// Names are exact: CIM-XML writes them in upper case.
Element elementOf(std::string_view name) noexcept;
// As a document writes it; "an unknown element" for Unknown, "nothing" for None.
std::string_view elementName(Element element) noexcept;

}  // namespace cimxml

#endif
