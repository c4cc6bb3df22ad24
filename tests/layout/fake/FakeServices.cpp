// The services of the platform interface, served by the fake object manager.
// SPDX-License-Identifier: Apache-2.0
#include <ostream>

#include "cimom/CIMApi.h"
#include "cimom/CIMUtil.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/QoriProviderPluginManager.h"
#include "cimom/ZEMOConfigManager.h"
#include "tests/layout/fake/FakeObjectManager.h"

namespace {

FakeObjectManager& fake() { return FakeObjectManager::instance(); }

class FakeRepository : public IQoriRepository {
 public:
  QORSmrPtr<IQoriClass> getClass(const QORString&, const QORString& className) const override {
    return fake().findClass(className.c_str());
  }
};

FakeCall makeCall(const char* operation, const QORString& nameSpace, const QORString& className,
                  const CIMApi::PropertyNames& properties, int timeout) {
  FakeCall call;
  call.operation = operation;
  call.nameSpace = nameSpace.c_str();
  call.className = className.c_str();
  call.wantsAll = properties.IsNull();
  call.timeout = timeout;
  if (!call.wantsAll) {
    for (QORuint32 i = 0; i < properties->entries(); ++i) call.properties.emplace_back(properties->at(i).c_str());
  }
  return call;
}

}  // namespace

QORuint32 QORLog::CIMOMLOG = 77;

void QORLog::log(const QORString& who, const QORString& message, QoriTraceLog::Severity severity,
                 QoriTraceLog::Verbosity verbosity, QORuint32 number, QORuint32 channel) noexcept {
  fake().log.push_back({who.c_str(), message.c_str(), severity, verbosity, number, channel});
}

const int CIMApi::DefaultTimeout = 4242;

CIMApi::CIMApi() = default;
CIMApi::~CIMApi() = default;

CIMApi::Instances CIMApi::enumerateInstances(const QORString& nameSpace, const QORString& className,
                                             const PropertyNames& properties, int timeout, const char*, const char*,
                                             const char*, const QORSmrPtr<QoriTransactionInfo>& transaction) {
  FakeCall call = makeCall("enumerateInstances", nameSpace, className, properties, timeout);
  if (!transaction.IsNull()) {
    call.queryText = transaction->getQueryString().c_str();
    call.queryLanguage = transaction->getQueryLanguage().c_str();
  }
  fake().calls.push_back(call);
  if (!fake().failEnumerationMessage.empty()) {
    throw CQoriProviderException("fake", QORString(fake().failEnumerationMessage.c_str()), 1);
  }
  return fake().failEnumeration ? Instances() : fake().instancesOf(className.c_str());
}

CIMApi::Instances CIMApi::associators(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& source,
                                      const QORString& associationClass, const QORString& resultClass,
                                      const PropertyNames& properties, int timeout, const QORString&, const QORString&,
                                      const QORString&) {
  FakeCall call = makeCall("associators", nameSpace, resultClass, properties, timeout);
  call.association = associationClass.c_str();
  call.source = source->toString().c_str();
  fake().calls.push_back(call);
  return fake().associatesOf(call.source);
}

QORSmrPtr<IQoriObject> CIMApi::getInstance(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& name,
                                           const PropertyNames& properties, int timeout, const char*, const char*,
                                           const char*) {
  FakeCall call = makeCall("getInstance", nameSpace, name->getClassName(), properties, timeout);
  call.source = name->toString().c_str();
  fake().calls.push_back(call);
  return fake().findInstance(call.source);
}

QoriProviderPluginManager* QoriProviderPluginManager::getQoriProviderPluginManager() {
  static QoriProviderPluginManager only;
  return &only;
}

QORSmrPtr<IQoriRepository> QoriProviderPluginManager::getRepository() const { return new FakeRepository; }

QORSmrPtr<QORValSlist<QORString>> QoriProviderPluginManager::getNamespaceList() const {
  const QORSmrPtr<QORValSlist<QORString>> names(new QORValSlist<QORString>);
  names->append("root/fake");
  return names;
}

ZEMOConfigManager* ZEMOConfigManager::getInstance() {
  static ZEMOConfigManager only;
  return &only;
}

void ZEMOConfigManager::getString(const QORString& section, const QORString& key, QORString& value) const {
  fake().configurationReads.push_back((section + "." + key).c_str());
  value = QORString::emptyString();
}

QORString CIMUtil::CreateCIMErrorMsg(int, const QORString& message) { return message; }

// A foreign look, so that one sees in the stream what went through here.
QORString CIMUtil::xmlEncode(const QORString& text) {
  fake().encodedTexts.emplace_back(text.c_str());
  return "{" + text + "}";
}

void CIMUtil::StreamInstancePath(std::ostream& out, const IQoriInstanceName& name, const QORString& hostAddress,
                                 const QORString& hostPort, bool withHost, bool localOnly) {
  out << "[" << name.toString() << "|" << hostAddress << "|" << hostPort << "|" << withHost << localOnly << "]";
}
