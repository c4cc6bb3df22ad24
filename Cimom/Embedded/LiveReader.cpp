// A provider is not trusted with more than its class: the number of values is
// checked, values are brought to the declared types, and paths stay unique.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/LiveReader.h"

#include <algorithm>
#include <new>
#include <string>
#include <unordered_set>
#include <utility>

#include "Cimom/Embedded/DeclarationHelpers.h"
#include "Cimom/Embedded/RepositoryError.h"
#include "Cimom/Embedded/StopScope.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriValue.h"

namespace embedded {

namespace {

constexpr QORuint32 kCimFailed = static_cast<QORuint32>(CimStatus::Failed);

// Collects the instances of one provider call.
class Collector {
 public:
  Collector(const ObjectStore& store, const CQoriClass& model, const LiveRequest& request)
      : _store(store), _model(model) {
    std::vector<bool> isWanted(model.properties().size(), request.names.IsNull());
    for (const QORuint32 key : model.keyPositions()) isWanted[key] = true;
    if (!request.names.IsNull()) {
      QORValSlistIterator<QORString> names(*request.names);
      while (++names) {
        const QORsint32 position = model.position(names.key());
        if (position >= 0) isWanted[static_cast<std::size_t>(position)] = true;
      }
    }
    for (QORuint32 i = 0; i < isWanted.size(); ++i) {
      if (isWanted[i]) _positions.push_back(i);
    }
  }

  std::vector<QORString> propertyNames() const {
    std::vector<QORString> names;
    names.reserve(_positions.size());
    for (const QORuint32 position : _positions) names.push_back(_model.shape()->layout->getName(position));
    return names;
  }

  void take(const std::vector<QORSmrPtr<IQoriValue>>& given) {
    StopScope::requireGoing();
    if (given.size() != _positions.size()) {
      throw CQoriProviderException(_model.getClassName(),
                                   joined({"the provider gave ", std::to_string(given.size()), " values for ",
                                           std::to_string(_positions.size()), " properties"}),
                                   kCimFailed);
    }
    std::vector<QORSmrPtr<IQoriValue>> values(_model.properties().size());
    for (std::size_t i = 0; i < given.size(); ++i) values[_positions[i]] = declaredValue(_positions[i], given[i]);
    for (const QORuint32 key : _model.keyPositions()) {
      if (values[key].IsNull()) return leaveOut([&] { return faultOfKey(key, given); });
    }
    canonicaliseReferences(values);
    keep(ModelInstance::create(_model.shape(), values));
  }

  // Logs what was left out, in one line.
  void report() const {
    if (_leftOut == 0) return;
    const std::string count = _leftOut == 1 ? "an instance is left out: "
                                            : std::to_string(_leftOut) + " instances are left out, the first since ";
    QORLog::log("Providers", joined({_model.getClassName().view(), ": ", count, _reason}), QoriTraceLog::kWarning,
                QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
  }

  std::vector<QORSmrPtr<IQoriObject>> takeObjects() && { return std::move(_objects); }

 private:
  template <class Reason>
  void leaveOut(Reason reason) {
    if (_leftOut++ == 0) _reason = reason();
  }

  std::string faultOfKey(QORuint32 key, const std::vector<QORSmrPtr<IQoriValue>>& given) const {
    const std::string name(_model.shape()->layout->getName(key).view());
    const auto place = std::find(_positions.begin(), _positions.end(), key) - _positions.begin();
    const QORSmrPtr<IQoriValue>& value = given[static_cast<std::size_t>(place)];
    if (value.IsNull()) return "its key " + name + " has no value";
    return "its key " + name + " is a " + std::string(_model.type(key)->getName().view()) +
           ", and the provider gave a " + std::string(value->getType()->getName().view()) + ", " +
           std::string(value->toString().view());
  }

  // A value that the declared type cannot hold is null.
  QORSmrPtr<IQoriValue> declaredValue(QORuint32 position, const QORSmrPtr<IQoriValue>& given) const {
    const QORSmrPtr<IQoriType>& type = _model.type(position);
    if (given.IsNull() || sameType(*given->getType(), *type)) return given;
    try {
      return QORSmrPtr<IQoriValue>(new CQoriValue(*given, type));
    } catch (const QoriBaseException&) {
      return {};
    }
  }

  void canonicaliseReferences(std::vector<QORSmrPtr<IQoriValue>>& values) const {
    if (_model.referencePositions().empty()) return;
    const std::shared_lock<std::shared_mutex> lock(_store.mutex());
    for (const QORuint32 position : _model.referencePositions()) {
      values[position] = _store.providedReference(_model.shape()->nameSpace, values[position]);
    }
  }

  void keep(const QORSmrPtr<IQoriObject>& object) {
    const QORSmrPtr<IQoriInstanceName> name = object->getInstanceName();
    if (name.IsNull()) return;
    const QORString path = name->toString();
    if (!_paths.emplace(path.view()).second) {
      return leaveOut([&] { return "its path occurs twice, " + std::string(path.view()); });
    }
    const std::shared_lock<std::shared_mutex> lock = _store.lockInstances();
    const NameSpace* const space = _store.findNameSpace(_model.shape()->nameSpace, View::Committed);
    const StoredInstance* const stored = space->instances.find(path.view());
    if (stored == nullptr || stored->isPending) _objects.push_back(object);
  }

  const ObjectStore& _store;
  const CQoriClass& _model;
  std::vector<QORuint32> _positions;  // of the properties that the provider fills
  std::vector<QORSmrPtr<IQoriObject>> _objects;
  std::unordered_set<std::string> _paths;
  std::size_t _leftOut = 0;
  std::string _reason;  // why the first was left out
};

void callProvider(InstanceProvider& provider, const InstanceProvider::Request& request, Collector& collector,
                  const LiveRequest& wanted) {
  try {
    provider.enumerate(request, [&collector](std::vector<QORSmrPtr<IQoriValue>>&& values) { collector.take(values); });
  } catch (const CQoriProviderException& failure) {
    // Where one class of several has no source on this machine, the others are still read.
    if (!wanted.isOneOfMany || failure.getCode() != InstanceProvider::kNoSource) throw;
    if (wanted.absences == nullptr) return tellOfAbsence(failure);
    wanted.absences->push_back(failure);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    throw CQoriProviderException(request.className, error.what(), kCimFailed);
  } catch (...) {
    throw CQoriProviderException(request.className, "the provider failed without a message", kCimFailed);
  }
}

}  // namespace

CIMApi::PropertyNames referenceNames(const CQoriClass& model) {
  CIMApi::PropertyNames names(new QORValSlist<QORString>);
  for (const QORuint32 position : model.referencePositions()) names->append(model.shape()->layout->getName(position));
  return names;
}

void tellOfAbsence(const CQoriProviderException& absence) {
  QORLog::log("Providers", absence.getMessage(), QoriTraceLog::kWarning, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}

std::vector<QORSmrPtr<IQoriObject>> readLive(const ObjectStore& store, const LiveSource& source,
                                             const LiveRequest& request) {
  const CQoriClass& model = source.entry->model();
  Collector collector(store, model, request);
  callProvider(
      *source.provider,
      {model.shape()->nameSpace, model.getClassName(), collector.propertyNames(), request.transaction, request.only},
      collector, request);
  collector.report();
  return std::move(collector).takeObjects();
}

}  // namespace embedded
