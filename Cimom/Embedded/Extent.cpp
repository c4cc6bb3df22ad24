// Keeping instances in creation order through removals and late insertions.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/Extent.h"

namespace embedded {

std::vector<Extent::Slot>::iterator Extent::lowerBound(QORuint64 sequence) noexcept {
  return std::lower_bound(_slots.begin(), _slots.end(), sequence,
                          [](const Slot& slot, QORuint64 wanted) { return slot.sequence < wanted; });
}

void Extent::insert(StoredInstance& instance) {
  if (_slots.empty() || _slots.back().sequence < instance.sequence) {
    _slots.push_back({instance.sequence, &instance});
    ++_size;
    return;
  }
  const auto place = lowerBound(instance.sequence);
  if (place == _slots.end() || place->sequence != instance.sequence) {
    _slots.insert(place, {instance.sequence, &instance});
  } else if (place->instance != nullptr) {
    return;
  } else {
    place->instance = &instance;
  }
  ++_size;
}

void Extent::remove(const StoredInstance& instance) noexcept {
  const auto place = lowerBound(instance.sequence);
  if (place == _slots.end() || place->instance != &instance) return;
  place->instance = nullptr;
  --_size;
  closeGaps();
}

void Extent::closeGaps() noexcept {
  constexpr std::size_t kToleratedGaps = 32;
  if (_slots.size() - _size <= std::max(_size, kToleratedGaps)) return;
  std::erase_if(_slots, [](const Slot& slot) { return slot.instance == nullptr; });
}

}  // namespace embedded
