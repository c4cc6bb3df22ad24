// The operations of CIMApi as this program has them. The library's own are
// found by their linker names.
// SPDX-License-Identifier: Apache-2.0
#include "ClientInterposer.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <utility>

namespace {

constexpr char kEnumerate[] =
    "_ZN6CIMApi18enumerateInstancesERK9QORStringS2_RK9QORSmrPtrI11QORValSlistIS0_EEiPKcSA_SA_RKS3_I19QoriTransactionInf"
    "oE";
constexpr char kAssociators[] =
    "_ZN6CIMApi11associatorsERK9QORStringRK9QORSmrPtrI17IQoriInstanceNameES2_S2_RKS3_I11QORValSlistIS0_EEiS2_S2_S2_";
constexpr char kGetInstance[] =
    "_ZN6CIMApi11getInstanceERK9QORStringRK9QORSmrPtrI17IQoriInstanceNameERKS3_I11QORValSlistIS0_EEiPKcSE_SE_";

// A member function is called like a function whose first argument is the object.
using Enumerate = CIMApi::Instances (*)(CIMApi*, const QORString&, const QORString&, const CIMApi::PropertyNames&, int,
                                        const char*, const char*, const char*, const QORSmrPtr<QoriTransactionInfo>&);
using Associators = CIMApi::Instances (*)(CIMApi*, const QORString&, const QORSmrPtr<IQoriInstanceName>&,
                                          const QORString&, const QORString&, const CIMApi::PropertyNames&, int,
                                          const QORString&, const QORString&, const QORString&);
using GetInstance = QORSmrPtr<IQoriObject> (*)(CIMApi*, const QORString&, const QORSmrPtr<IQoriInstanceName>&,
                                               const CIMApi::PropertyNames&, int, const char*, const char*,
                                               const char*);

template <class Function>
Function nextOf(const char* symbol) {
  void* const address = dlsym(RTLD_NEXT, symbol);
  if (address == nullptr) {
    std::fprintf(stderr, "the client interface has no %s\n", symbol);
    std::abort();
  }
  return reinterpret_cast<Function>(address);
}

struct State {
  bool isRecording = false;
  std::vector<std::string> calls;
  ClientInterposer::EnumerationFilter filter;
};

State& state() {
  static State theState;
  return theState;
}

std::string upper(const QORString& text) { return std::string(QORString::toUpperCase(text).view()); }

std::string listOf(const CIMApi::PropertyNames& properties) {
  if (properties.IsNull()) return "(all)";
  std::map<std::string, std::string> sorted;  // capitals to spelling
  QORValSlistIterator<QORString> names(*properties);
  while (++names) sorted.emplace(upper(names.key()), names.key().view());
  std::string text;
  for (const auto& [capitals, spelling] : sorted) text += (text.empty() ? "" : ", ") + spelling;
  return "(" + text + ")";
}

std::string pathOf(const QORSmrPtr<IQoriInstanceName>& name) {
  return name.IsNull() ? "null" : std::string(name->toString().view());
}

void note(std::string line) {
  if (state().isRecording) state().calls.push_back(std::move(line));
}

}  // namespace

std::vector<std::string> ClientInterposer::takeCalls() { return std::exchange(state().calls, {}); }
void ClientInterposer::setEnumerationFilter(EnumerationFilter filter) { state().filter = std::move(filter); }
void ClientInterposer::setRecording(bool isOn) { state().isRecording = isOn; }

CIMApi::Instances CIMApi::enumerateInstances(const QORString& nameSpace, const QORString& className,
                                             const PropertyNames& properties, int timeout, const char* user,
                                             const char* password, const char* host,
                                             const QORSmrPtr<QoriTransactionInfo>& transaction) {
  static const Enumerate next = nextOf<Enumerate>(kEnumerate);
  note("enumerate " + upper(className) + " " + listOf(properties));
  const Instances found = next(this, nameSpace, className, properties, timeout, user, password, host, transaction);
  return state().filter ? state().filter(className, found) : found;
}

CIMApi::Instances CIMApi::associators(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& source,
                                      const QORString& associationClass, const QORString& resultClass,
                                      const PropertyNames& properties, int timeout, const QORString& role,
                                      const QORString& resultRole, const QORString& host) {
  static const Associators next = nextOf<Associators>(kAssociators);
  note("associators " + pathOf(source) + " " + upper(associationClass) + " " + upper(resultClass) + " " +
       listOf(properties));
  return next(this, nameSpace, source, associationClass, resultClass, properties, timeout, role, resultRole, host);
}

QORSmrPtr<IQoriObject> CIMApi::getInstance(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& name,
                                           const PropertyNames& properties, int timeout, const char* user,
                                           const char* password, const char* host) {
  static const GetInstance next = nextOf<GetInstance>(kGetInstance);
  note("get " + pathOf(name) + " " + listOf(properties));
  return next(this, nameSpace, name, properties, timeout, user, password, host);
}
