// Epochs: a number grows with every collection; a reader notes the number that
// it found when it began. What was replaced in an epoch may be freed once every reader
// began in a later one.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLReadSection.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace {

constexpr QORuint64 kIdle = ~QORuint64{0};

// A thread's mark; marks are never freed, a thread that ends gives its mark back.
struct alignas(64) Mark {
  std::atomic<QORuint64> epoch{kIdle};
  std::atomic<bool> isTaken{true};
  Mark* next = nullptr;
  unsigned nesting = 0;  // of the owning thread's sections
};

std::atomic<QORuint64> theEpoch{1};
std::atomic<Mark*> theMarks{nullptr};

Mark* takeMark() {
  for (Mark* mark = theMarks.load(std::memory_order_acquire); mark != nullptr; mark = mark->next) {
    bool isTaken = false;
    if (mark->isTaken.compare_exchange_strong(isTaken, true, std::memory_order_acq_rel)) return mark;
  }
  Mark* const mark = new Mark;
  mark->next = theMarks.load(std::memory_order_relaxed);
  while (!theMarks.compare_exchange_weak(mark->next, mark, std::memory_order_seq_cst)) {
  }
  return mark;
}

constinit thread_local Mark* theMark = nullptr;
constinit thread_local bool hasMarkEnded = false;

void giveMarkBack() noexcept { std::exchange(theMark, nullptr)->isTaken.store(false, std::memory_order_release); }

// Gives the thread's mark back at its end. A section that is still there, or that
// a later destructor of the thread makes, does so itself.
struct MarkHolder {
  MarkHolder() = default;
  MarkHolder(const MarkHolder&) = delete;
  MarkHolder& operator=(const MarkHolder&) = delete;
  ~MarkHolder() {
    hasMarkEnded = true;
    if (theMark != nullptr && theMark->nesting == 0) giveMarkBack();
  }
};

Mark& ownMark() {
  if (theMark == nullptr) {
    theMark = takeMark();
    static thread_local const MarkHolder theMarkHolder;
  }
  return *theMark;
}

// The epoch in which the oldest section began; the current one when there is none.
QORuint64 oldestReader() noexcept {
  QORuint64 oldest = theEpoch.load(std::memory_order_seq_cst);
  for (const Mark* mark = theMarks.load(std::memory_order_seq_cst); mark != nullptr; mark = mark->next) {
    oldest = std::min(oldest, mark->epoch.load(std::memory_order_seq_cst));
  }
  return oldest;
}

}  // namespace

// A reader that sees an epoch also sees all that was published before it began: what
// makes a mark known, and both looks here, are in the one order of all threads.
CQLReadSection::CQLReadSection() {
  Mark& mark = ownMark();
  if (mark.nesting++ == 0) mark.epoch.store(theEpoch.load(std::memory_order_seq_cst), std::memory_order_seq_cst);
}

CQLReadSection::~CQLReadSection() {
  Mark& mark = *theMark;
  if (--mark.nesting != 0) return;
  mark.epoch.store(kIdle, std::memory_order_release);
  if (hasMarkEnded) [[unlikely]]
    giveMarkBack();
}

CQLRetired::~CQLRetired() {
  for (const Waiting& waiting : _waiting) waiting.free(waiting.memory);
}

// While one reader stays, nothing is freed: room for exactly what comes would be made again for each change.
void CQLRetired::reserve(std::size_t more) {
  const std::size_t needed = _waiting.size() + more;
  if (needed > _waiting.capacity()) _waiting.reserve(std::max(needed, 2 * _waiting.capacity()));
}

void CQLRetired::add(const void* memory, Free free) {
  _waiting.push_back({memory, free, theEpoch.load(std::memory_order_seq_cst)});
}

void CQLRetired::collect() noexcept {
  if (_waiting.size() < _collectAt) return;
  // Sections that begin from here on note a greater number than that of anything waiting.
  theEpoch.fetch_add(1, std::memory_order_seq_cst);
  const QORuint64 oldest = oldestReader();
  std::size_t freed = 0;
  for (; freed < _waiting.size() && _waiting[freed].epoch < oldest; ++freed)
    _waiting[freed].free(_waiting[freed].memory);
  _waiting.erase(_waiting.begin(), _waiting.begin() + static_cast<std::ptrdiff_t>(freed));
  // What readers still use is not examined again for each addition.
  _collectAt = std::max<std::size_t>(64, _waiting.size() * 2);
}
