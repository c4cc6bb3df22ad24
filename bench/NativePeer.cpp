// What a programmer would write by hand for each workload: positions known,
// values read in place, a hash table for the joins, an array of keys to sort.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <limits>
#include <utility>

#include "bench/Data.h"
#include "bench/MixedNative.h"
#include "bench/Peer.h"
#include "bench/World.h"
#include "bench/XmlTable.h"

namespace bench {

namespace {

using Objects = QORValSlist<QORSmrPtr<IQoriObject>>;

template <class Visit>
void forEach(const Objects& objects, const Visit& visit) {
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(objects);
  while (++each) visit(*each.key().Get());
}

std::string_view textOf(const IQoriObject& object, QORuint32 position) {
  return object.getScalarAt(position).text->view();
}
std::uint64_t numberOf(const IQoriObject& object, QORuint32 position) { return object.getScalarAt(position).u; }

// Texts to objects, by open addressing.
class ObjectsByText {
 public:
  ObjectsByText(const Objects& objects, QORuint32 position) {
    std::size_t slots = 16;
    while (slots < objects.entries() * 2) slots *= 2;
    _slots.resize(slots);
    forEach(objects, [&](const IQoriObject& object) { put(textOf(object, position), object); });
  }
  const IQoriObject* find(std::string_view text) const {
    const std::size_t hash = std::hash<std::string_view>{}(text);
    for (std::size_t at = hash & (_slots.size() - 1); _slots[at].object != nullptr;
         at = (at + 1) & (_slots.size() - 1)) {
      if (_slots[at].hash == hash && _slots[at].text == text) return _slots[at].object;
    }
    return nullptr;
  }

 private:
  struct Slot {
    std::size_t hash = 0;
    std::string_view text;
    const IQoriObject* object = nullptr;
  };
  void put(std::string_view text, const IQoriObject& object) {
    const std::size_t hash = std::hash<std::string_view>{}(text);
    std::size_t at = hash & (_slots.size() - 1);
    while (_slots[at].object != nullptr) at = (at + 1) & (_slots.size() - 1);
    _slots[at] = {hash, text, &object};
  }
  std::vector<Slot> _slots;
};

class NativePeer final : public Peer {
 public:
  const char* name() const override { return "C++"; }
  void attach(const World& /*world*/) override {}
  bool supports(const Workload& workload) const override { return !workload.isParse(); }

  Answer run(const Workload& workload, bool isThorough) override {
    Answer answer(isThorough);
    if (workload.field == Field::Mixed) {
      runMixedByHand(workload.task, answer);
      return answer;
    }
    const CIMApi::Instances disks = instancesOf(kDiskClass);
    if (workload.isXml()) {
      return answerOfXml(workload, isThorough, [&](std::ostream& out) { writeXml(*disks, out); });
    }
    runOn(workload.task, *disks, answer);
    return answer;
  }

 private:
  static void runOn(Task task, const Objects& disks, Answer& answer) {
    switch (task) {
      case Task::Scan:
        return scan(disks, answer);
      case Task::Filter:
        return filter(disks, answer);
      case Task::Substring:
        return search(disks, answer);
      case Task::Sort:
        return sort(disks, answer);
      case Task::Aggregates:
        return aggregate(disks, answer);
      case Task::Join:
        return join(disks, answer);
      case Task::InequalityJoin:
        return joinByOrder(disks, answer);
      case Task::LeftJoin:
        return leftJoin(disks, {}, answer);
      case Task::LeftJoinExtraRows:
        return leftJoin(disks, "pool000000", answer);
      default:
        return;
    }
  }

  static void scan(const Objects& disks, Answer& answer) {
    forEach(disks, [&](const IQoriObject& disk) {
      answer.text(textOf(disk, kDeviceId));
      answer.text(textOf(disk, kDiskName));
      answer.number(numberOf(disk, kSize));
      answer.endRow();
    });
  }

  static void filter(const Objects& disks, Answer& answer) {
    forEach(disks, [&](const IQoriObject& disk) {
      const std::uint64_t size = numberOf(disk, kSize);
      if (size <= kMiddleSize || numberOf(disk, kStatus) != 2) return;
      answer.text(textOf(disk, kDeviceId));
      answer.number(size);
      answer.endRow();
    });
  }

  static void search(const Objects& disks, Answer& answer) {
    forEach(disks, [&](const IQoriObject& disk) {
      const std::string_view name = textOf(disk, kDiskName);
      if (name.find(kNeedle) == std::string_view::npos) return;
      answer.text(textOf(disk, kDeviceId));
      answer.text(name);
      answer.endRow();
    });
  }

  static void sort(const Objects& disks, Answer& answer) {
    std::vector<std::pair<std::uint64_t, const IQoriObject*>> keys;
    keys.reserve(disks.entries());
    forEach(disks, [&](const IQoriObject& disk) { keys.emplace_back(numberOf(disk, kSize), &disk); });
    std::sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [size, disk] : keys) {
      answer.text(textOf(*disk, kDeviceId));
      answer.number(size);
      answer.sortKey(size);
      answer.endRow();
    }
  }

  static void aggregate(const Objects& disks, Answer& answer) {
    std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t most = 0;
    std::uint64_t total = 0;
    std::uint64_t count = 0;
    double load = 0;
    forEach(disks, [&](const IQoriObject& disk) {
      const std::uint64_t size = numberOf(disk, kSize);
      least = std::min(least, size);
      most = std::max(most, size);
      total += size;
      load += disk.getScalarAt(kLoad).r;
      ++count;
    });
    for (const std::uint64_t number : {count, least, most, total}) answer.number(number);
    answer.real(load / static_cast<double>(5 * count));
    answer.endRow();
  }

  static void join(const Objects& disks, Answer& answer) {
    const CIMApi::Instances pools = instancesOf(kPoolClass);
    const ObjectsByText poolOf(*pools, kPoolId);
    forEach(disks, [&](const IQoriObject& disk) {
      const QoriScalar poolId = disk.getScalarAt(kDiskPoolId);
      const IQoriObject* const pool = poolId.isNull() ? nullptr : poolOf.find(poolId.text->view());
      if (pool == nullptr) return;
      answer.text(textOf(disk, kDeviceId));
      answer.text(textOf(*pool, kPoolName));
      answer.number(numberOf(disk, kSize));
      answer.endRow();
    });
  }

  // With a pool given, disks of every other pool come once more without it.
  static void leftJoin(const Objects& disks, std::string_view firstPool, Answer& answer) {
    const CIMApi::Instances pools = instancesOf(kPoolClass);
    const ObjectsByText poolOf(*pools, kPoolId);
    forEach(disks, [&](const IQoriObject& disk) {
      const QoriScalar poolId = disk.getScalarAt(kDiskPoolId);
      const IQoriObject* const pool = poolId.isNull() ? nullptr : poolOf.find(poolId.text->view());
      const std::string_view deviceId = textOf(disk, kDeviceId);
      answer.text(deviceId);
      pool == nullptr ? answer.null() : answer.text(textOf(*pool, kPoolName));
      answer.endRow();
      if (pool == nullptr || firstPool.empty() || poolId.text->view() == firstPool) return;
      answer.text(deviceId);
      answer.null();
      answer.endRow();
    });
  }

  static void joinByOrder(const Objects& disks, Answer& answer) {
    const CIMApi::Instances quotas = instancesOf(kQuotaClass);
    std::vector<std::pair<std::uint64_t, std::string_view>> inner;
    forEach(*quotas,
            [&](const IQoriObject& quota) { inner.emplace_back(numberOf(quota, kCapacity), textOf(quota, kPoolId)); });
    forEach(disks, [&](const IQoriObject& disk) {
      const std::uint64_t size = numberOf(disk, kSize);
      const std::string_view deviceId = textOf(disk, kDeviceId);
      for (const auto& [capacity, quotaId] : inner) {
        if (size <= capacity) continue;
        answer.text(deviceId);
        answer.text(quotaId);
        answer.endRow();
      }
    });
  }

  static void writeXml(const Objects& disks, std::ostream& out) {
    XmlTable table(out);
    forEach(disks, [&](const IQoriObject& disk) {
      table.beginRow();
      table.text(textOf(disk, kDeviceId));
      table.text(textOf(disk, kDiskName));
      table.number(numberOf(disk, kSize));
      table.endRow();
    });
    table.end();
  }
};

}  // namespace

std::unique_ptr<Peer> makeNativePeer() { return std::make_unique<NativePeer>(); }

}  // namespace bench
