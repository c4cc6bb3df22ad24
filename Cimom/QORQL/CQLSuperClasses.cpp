// Each thread has a memory of its own, so that none waits for another: a table
// with one place for each hash, where the newest answer replaces an older one.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLSuperClasses.h"

#include <array>
#include <new>
#include <utility>

#include "Cimom/QORQL/QORQL_TextHash.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

struct SuperClassAnswer {
  QORuint64 version = 0;
  QORString nameSpace;
  QORString className;
  QORString superClass;
};

constexpr std::size_t kAnswers = 256;
using Memory = std::array<SuperClassAnswer, kAnswers>;

constinit thread_local Memory* theMemory = nullptr;
constinit thread_local bool hasMemoryEnded = false;

// Frees the thread's memory at its end. What a later destructor of the thread asks
// is not remembered: nobody would free it.
struct MemoryHolder {
  MemoryHolder() = default;
  MemoryHolder(const MemoryHolder&) = delete;
  MemoryHolder& operator=(const MemoryHolder&) = delete;
  ~MemoryHolder() {
    hasMemoryEnded = true;
    delete std::exchange(theMemory, nullptr);
  }
};

// Null when there is no room for one: it saves time, and nothing else.
Memory* ownMemory() {
  if (theMemory == nullptr && !hasMemoryEnded) {
    theMemory = new (std::nothrow) Memory;
    static thread_local const MemoryHolder theMemoryHolder;
  }
  return theMemory;
}

std::size_t placeOf(const QORString& className) noexcept {
  return static_cast<std::size_t>(QORQL_hashText(className.view())) % kAnswers;
}

QORString superClassOf(const QORSmrPtr<IQoriRepository>& repository, const QORString& nameSpace,
                       const QORString& className) {
  const QORSmrPtr<IQoriClass> found =
      repository.IsNull() ? QORSmrPtr<IQoriClass>() : repository->getClass(nameSpace, className);
  return found.IsNull() ? QORString::emptyString() : found->getSuperClassName();
}

}  // namespace

// The version is older than what the repository answers from here on, or the same.
CQLSuperClasses::CQLSuperClasses(const QORString& nameSpace)
    : _nameSpace(nameSpace),
      _repository(QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository()),
      _version(_repository.IsNull() ? 0 : _repository->getVersion()) {}

const QORString& CQLSuperClasses::of(const QORString& className) {
  Memory* const memory = _version == 0 ? nullptr : ownMemory();
  if (memory == nullptr) return _found = superClassOf(_repository, _nameSpace, QORString(className));
  SuperClassAnswer& answer = (*memory)[placeOf(className)];
  const bool isKnown = answer.version == _version && answer.className == className && answer.nameSpace == _nameSpace;
  if (isKnown) return answer.superClass;
  // The name may be the one that this place gave before, or another that the repository's work replaces.
  QORString asked(className);
  QORString found(superClassOf(_repository, _nameSpace, asked));
  answer.version = _version;
  answer.nameSpace = _nameSpace;
  answer.className = std::move(asked);
  answer.superClass = std::move(found);
  return answer.superClass;
}
