// The operations of the platform as this program has them. The library's own
// are found behind them by their linker names.
// SPDX-License-Identifier: Apache-2.0
#include "FaultyPlatform.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "FaultPlan.h"
#include "FaultyModel.h"
#include "cimom/CIMUtil.h"
#include "cimom/QoriProviderPluginManager.h"
#include "cimom/ZEMOConfigManager.h"

namespace {

constexpr char kEnumerate[] =
    "_ZN6CIMApi18enumerateInstancesERK9QORStringS2_RK9QORSmrPtrI11QORValSlistIS0_EEiPKcSA_SA_RKS3_I19QoriTransactionInf"
    "oE";
constexpr char kAssociators[] =
    "_ZN6CIMApi11associatorsERK9QORStringRK9QORSmrPtrI17IQoriInstanceNameES2_S2_RKS3_I11QORValSlistIS0_EEiS2_S2_S2_";
constexpr char kGetInstance[] =
    "_ZN6CIMApi11getInstanceERK9QORStringRK9QORSmrPtrI17IQoriInstanceNameERKS3_I11QORValSlistIS0_EEiPKcSE_SE_";
constexpr char kGetRepository[] = "_ZNK25QoriProviderPluginManager13getRepositoryEv";
constexpr char kGetString[] = "_ZNK17ZEMOConfigManager9getStringERK9QORStringS2_RS0_";
constexpr char kXmlEncode[] = "_ZN7CIMUtil9xmlEncodeERK9QORString";
constexpr char kStreamPath[] = "_ZN7CIMUtil18StreamInstancePathERSoRK17IQoriInstanceNameRK9QORStringS6_bb";

// A member function is called like a function whose first argument is the object.
using Enumerate = CIMApi::Instances (*)(CIMApi*, const QORString&, const QORString&, const CIMApi::PropertyNames&, int,
                                        const char*, const char*, const char*, const QORSmrPtr<QoriTransactionInfo>&);
using Associators = CIMApi::Instances (*)(CIMApi*, const QORString&, const QORSmrPtr<IQoriInstanceName>&,
                                          const QORString&, const QORString&, const CIMApi::PropertyNames&, int,
                                          const QORString&, const QORString&, const QORString&);
using GetInstance = QORSmrPtr<IQoriObject> (*)(CIMApi*, const QORString&, const QORSmrPtr<IQoriInstanceName>&,
                                               const CIMApi::PropertyNames&, int, const char*, const char*,
                                               const char*);
using GetRepository = QORSmrPtr<IQoriRepository> (*)(const QoriProviderPluginManager*);
using GetString = void (*)(const ZEMOConfigManager*, const QORString&, const QORString&, QORString&);
using XmlEncode = QORString (*)(const QORString&);
using StreamPath = void (*)(std::ostream&, const IQoriInstanceName&, const QORString&, const QORString&, bool, bool);

template <class Function>
Function nextOf(const char* symbol) {
  void* const address = dlsym(RTLD_NEXT, symbol);
  if (address == nullptr) {
    std::fprintf(stderr, "the platform has no %s\n", symbol);
    std::abort();
  }
  return reinterpret_cast<Function>(address);
}

struct State {
  FaultyPlatform::Objects objects = FaultyPlatform::Objects::kAsTheyAre;
  FaultyPlatform::Filter enumerations;
  FaultyPlatform::Filter associators;
  FaultyPlatform::InstanceFilter instances;
};
State& state() {
  static State theState;
  return theState;
}

CIMApi::Instances answer(const FaultyPlatform::Filter& filter, const CIMApi::Instances& found) {
  if (filter) return filter(found);
  if (found.IsNull() || state().objects == FaultyPlatform::Objects::kAsTheyAre) return found;
  const CIMApi::Instances proxies(new QORValSlist<QORSmrPtr<IQoriObject>>);
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*found);
  while (++each) proxies->append(FaultyPlatform::proxyOf(each.key()));
  return proxies;
}

// The embedded object manager finds classes for itself too: only what the engine asks for goes wrong.
bool isProxied() { return state().objects != FaultyPlatform::Objects::kAsTheyAre; }

}  // namespace

void FaultyPlatform::setObjects(Objects objects) { state().objects = objects; }
void FaultyPlatform::setEnumerations(Filter filter) { state().enumerations = std::move(filter); }
void FaultyPlatform::setAssociators(Filter filter) { state().associators = std::move(filter); }
void FaultyPlatform::setInstances(InstanceFilter filter) { state().instances = std::move(filter); }

QORSmrPtr<IQoriObject> FaultyPlatform::proxyOf(const QORSmrPtr<IQoriObject>& object) {
  return faulty::wrap(object, state().objects == Objects::kWithLayout);
}

CIMApi::Instances CIMApi::enumerateInstances(const QORString& nameSpace, const QORString& className,
                                             const PropertyNames& properties, int timeout, const char* user,
                                             const char* password, const char* host,
                                             const QORSmrPtr<QoriTransactionInfo>& transaction) {
  static const Enumerate next = nextOf<Enumerate>(kEnumerate);
  if (FaultPlan::strikes()) return {};
  return answer(state().enumerations,
                next(this, nameSpace, className, properties, timeout, user, password, host, transaction));
}

CIMApi::Instances CIMApi::associators(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& source,
                                      const QORString& associationClass, const QORString& resultClass,
                                      const PropertyNames& properties, int timeout, const QORString& role,
                                      const QORString& resultRole, const QORString& host) {
  static const Associators next = nextOf<Associators>(kAssociators);
  if (FaultPlan::strikes()) return {};
  return answer(state().associators, next(this, nameSpace, source, associationClass, resultClass, properties, timeout,
                                          role, resultRole, host));
}

QORSmrPtr<IQoriObject> CIMApi::getInstance(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& name,
                                           const PropertyNames& properties, int timeout, const char* user,
                                           const char* password, const char* host) {
  static const GetInstance next = nextOf<GetInstance>(kGetInstance);
  if (FaultPlan::strikes()) return {};
  const QORSmrPtr<IQoriObject> found(next(this, nameSpace, name, properties, timeout, user, password, host));
  if (state().instances) return state().instances(found);
  return isProxied() ? FaultyPlatform::proxyOf(found) : found;
}

QORSmrPtr<IQoriRepository> QoriProviderPluginManager::getRepository() const {
  static const GetRepository next = nextOf<GetRepository>(kGetRepository);
  if (!isProxied()) return next(this);
  return FaultPlan::strikes() ? QORSmrPtr<IQoriRepository>() : faulty::wrap(next(this));
}

void ZEMOConfigManager::getString(const QORString& section, const QORString& key, QORString& value) const {
  static const GetString next = nextOf<GetString>(kGetString);
  if (!FaultPlan::strikes()) next(this, section, key, value);
}

QORString CIMUtil::xmlEncode(const QORString& text) {
  static const XmlEncode next = nextOf<XmlEncode>(kXmlEncode);
  return FaultPlan::strikes() ? QORString() : next(text);
}

void CIMUtil::StreamInstancePath(std::ostream& out, const IQoriInstanceName& name, const QORString& hostAddress,
                                 const QORString& hostPort, bool withHost, bool localOnly) {
  static const StreamPath next = nextOf<StreamPath>(kStreamPath);
  if (!FaultPlan::strikes()) next(out, name, hostAddress, hostPort, withHost, localOnly);
}
