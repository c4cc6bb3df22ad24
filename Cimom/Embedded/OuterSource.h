// Classes and instances that the object manager asks others for.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_OUTERSOURCE_H
#define QORQL_EMBEDDED_OUTERSOURCE_H

#include <memory>
#include <string>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "cimom/CIMApi.h"

// The object manager asks when it does not know a class, and for the instances
// of every class besides its own. All operations THROW CQoriProviderException
// when nobody can be asked. They are called without the object manager's lock,
// by any thread, one at a time.
class OuterSource {
 public:
  virtual ~OuterSource() = default;

  // What those that are asked are called, in the order in which they are asked. A path may name one of them, as in
  // "//name/root/cimv2:...", which is asked alone then.
  virtual std::vector<std::string> serverNames() const { return {}; }
  // The namespaces that the source tells to have, interop namespaces excepted.
  virtual std::vector<QORString> nameSpaces() { return {}; }
  // One more source that asks the same servers, at the same time as this one; null where there is none.
  virtual std::shared_ptr<OuterSource> another() const { return nullptr; }
  // Whether instances of the class may be there, as far as that is known without asking. Any thread, at any time.
  virtual bool mayHave(const QORString& /*nameSpace*/, const QORString& /*className*/) const { return true; }
  // Forgets what was found before, classes excepted: from now on is asked anew.
  virtual void beginStatement() {}
  // Forgets which classes and namespaces there are. What has been declared of classes stays.
  virtual void forgetLists() {}
  // Declares the class and its superclasses in the sink, unless they are there.
  // Returns whether the class is there afterwards. What was declared stays.
  virtual bool provideClass(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className) = 0;
  // Declares the qualifiers that the source knows, as far as it tells them.
  virtual void provideQualifiers(CimDeclarationSink& sink, const QORString& nameSpace) = 0;
  // The classes of a namespace, in the source's order.
  virtual std::vector<QORString> classNames(const QORString& nameSpace) = 0;

  // What a call wants; REQUIRES a class that the sink knows.
  struct Request {
    QORString nameSpace;
    QORString className;
    CIMApi::PropertyNames names;  // null: all properties
  };
  using Objects = std::vector<QORSmrPtr<IQoriObject>>;
  // The instances of the class and of those derived from it, complete in shape:
  // what was not asked for is NULL, keys have their values. Their classes are
  // declared in the sink. None where the source does not have the class.
  virtual Objects instances(CimDeclarationSink& sink, const Request& request) = 0;
  // The instance of that name, in the same shape; null when there is none. A name that several servers know, and that
  // names none of them, is refused.
  virtual QORSmrPtr<IQoriObject> instance(CimDeclarationSink& sink, const Request& request,
                                          const IQoriInstanceName& name) = 0;

  struct Associations {
    Objects objects;
    bool isComplete = true;  // there are none but these
  };
  // The instances of an association, as instances() gives them. Where they are not complete, references() tells the
  // others for each source.
  virtual Associations associations(CimDeclarationSink& sink, const Request& request) = 0;
  // The instances of an association that refer to the source, and that associations() left out. With an empty class
  // name, those of all associations.
  virtual Objects references(CimDeclarationSink& sink, const Request& request, const IQoriInstanceName& source) = 0;
};

#endif
