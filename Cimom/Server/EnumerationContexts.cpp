// Names are random, so that nobody guesses another one's. What an enumeration holds is let go of without the lock.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/EnumerationContexts.h"

#include <sys/random.h>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ServerObjects.h"

using Clock = std::chrono::steady_clock;

struct EnumerationContexts::Context {
  std::string name;
  Kind kind;
  QORString nameSpace;
  std::string user;
  std::string client;
  std::weak_ptr<const EmbeddedObjectManager::State> model;
  std::chrono::milliseconds betweenPulls;
  Clock::time_point end{};  // unless it is in a turn
  bool isInTurn = true;
  std::unique_ptr<EnumerationItems> items{};
  QORuint64 heldBytes = 0;  // of the items
};

struct EnumerationContexts::State {
  explicit State(const ServerLimits& limits) : mostOfAClient(limits.enumerations), mostBytesOfAClient(limits.memory) {}

  using Dropped = std::vector<std::shared_ptr<Context>>;

  void sweep(const std::stop_token& stop);
  Clock::time_point earliestEnd() const;
  Dropped takeOver(Clock::time_point now);
  // Null when there is none for the caller. REQUIRES the lock.
  std::shared_ptr<Context> find(const ServerCall& call, const std::string& name) const;
  void remove(const Context& context);
  // THROWS CimStatusException 27 when that is too much. REQUIRES the lock, as does giveBack().
  void take(const std::string& client, QORuint64 bytes);
  void giveBack(const std::string& client, QORuint64 bytes, std::size_t enumerations) noexcept;

  // What a client has open, and is being sent.
  struct Use {
    std::size_t count = 0;
    QORuint64 heldBytes = 0;
  };

  const std::size_t mostOfAClient;
  const QORuint64 mostBytesOfAClient;
  mutable std::mutex mutex;  // guards what follows
  std::condition_variable_any changed;
  std::unordered_map<std::string, std::shared_ptr<Context>> contexts;
  std::unordered_map<std::string, Use> uses;  // of the clients that have any
  Clock::time_point wakesAt = Clock::time_point::max();
};

namespace {

std::string randomName() {
  std::array<unsigned char, 16> bytes{};
  for (std::size_t have = 0; have < bytes.size();) {
    const ssize_t got = getrandom(bytes.data() + have, bytes.size() - have, 0);
    if (got < 0 && errno != EINTR) throw CimStatusException(cimstatus::kFailed, "there are no random numbers");
    if (got > 0) have += static_cast<std::size_t>(got);
  }
  std::string name;
  for (const unsigned char byte : bytes) {
    name += "0123456789abcdef"[byte >> 4];
    name += "0123456789abcdef"[byte & 15];
  }
  return name;
}

[[noreturn]] void raiseUnknown() {
  throw CimStatusException(cimstatus::kInvalidEnumerationContext,
                           "there is no such enumeration: it has ended, was left for too long, or belongs to others");
}

// Whose limits a call counts for.
std::string clientOf(const ServerCall& call) { return call.client.address + '\n' + call.client.user; }

bool isOf(const std::weak_ptr<const EmbeddedObjectManager::State>& model, const ServerCall& call) {
  return model.lock() == call.manager->state();
}

}  // namespace

Clock::time_point EnumerationContexts::State::earliestEnd() const {
  Clock::time_point earliest = Clock::time_point::max();
  for (const auto& [name, context] : contexts) {
    if (!context->isInTurn) earliest = std::min(earliest, context->end);
  }
  return earliest;
}

void EnumerationContexts::State::remove(const Context& context) {
  const auto found = contexts.find(context.name);
  if (found == contexts.end()) return;
  giveBack(context.client, context.heldBytes, 1);
  contexts.erase(found);
}

void EnumerationContexts::State::take(const std::string& client, QORuint64 bytes) {
  Use& use = uses[client];
  if (use.heldBytes + bytes > mostBytesOfAClient) {
    giveBack(client, 0, 0);
    throw CimStatusException(cimstatus::kServerLimitsExceeded,
                             "what this client has open and is being sent would hold more than " +
                                 std::to_string(mostBytesOfAClient) + " bytes of memory");
  }
  use.heldBytes += bytes;
}

void EnumerationContexts::State::giveBack(const std::string& client, QORuint64 bytes,
                                          std::size_t enumerations) noexcept {
  const auto found = uses.find(client);
  if (found == uses.end()) return;
  Use& use = found->second;
  use.heldBytes -= bytes;
  use.count -= enumerations;
  if (use.count == 0 && use.heldBytes == 0) uses.erase(found);
}

EnumerationContexts::State::Dropped EnumerationContexts::State::takeOver(Clock::time_point now) {
  Dropped dropped;
  for (const auto& [name, context] : contexts) {
    if (!context->isInTurn && (context->end <= now || context->model.expired())) dropped.push_back(context);
  }
  for (const std::shared_ptr<Context>& context : dropped) remove(*context);
  return dropped;
}

void EnumerationContexts::State::sweep(const std::stop_token& stop) {
  std::unique_lock<std::mutex> lock(mutex);
  while (!stop.stop_requested()) {
    wakesAt = earliestEnd();
    const auto isSooner = [this] { return earliestEnd() < wakesAt; };
    if (wakesAt == Clock::time_point::max()) {
      changed.wait(lock, stop, isSooner);
    } else {
      changed.wait_until(lock, stop, wakesAt, isSooner);
    }
    Dropped dropped = takeOver(Clock::now());
    lock.unlock();
    dropped.clear();
    lock.lock();
  }
}

std::shared_ptr<EnumerationContexts::Context> EnumerationContexts::State::find(const ServerCall& call,
                                                                               const std::string& name) const {
  const auto found = contexts.find(name);
  if (found == contexts.end()) return nullptr;
  const Context& context = *found->second;
  const bool isOver = !context.isInTurn && context.end <= Clock::now();
  const bool isOwn =
      context.nameSpace.isEqualCaseInsensitive(call.request.nameSpace) && context.user == call.client.user;
  return isOver || !isOwn || !isOf(context.model, call) ? nullptr : found->second;
}

EnumerationContexts::EnumerationContexts(const ServerLimits& limits)
    : _state(std::make_shared<State>(limits)),
      _sweeper([state = _state](const std::stop_token& stop) { state->sweep(stop); }) {}

EnumerationContexts::~EnumerationContexts() = default;

EnumerationContexts::Turn EnumerationContexts::open(const ServerCall& call, Kind kind,
                                                    std::chrono::milliseconds betweenPulls) {
  const auto context = std::make_shared<Context>();
  *context = {randomName(),          kind,        call.request.nameSpace, call.client.user, clientOf(call),
              call.manager->state(), betweenPulls};
  State::Dropped dropped;
  const std::lock_guard<std::mutex> lock(_state->mutex);
  dropped = _state->takeOver(Clock::now());
  std::size_t& count = _state->uses[context->client].count;
  if (count >= _state->mostOfAClient) {
    throw CimStatusException(cimstatus::kServerLimitsExceeded,
                             "there are " + std::to_string(count) + " open enumerations of this client already");
  }
  _state->contexts.emplace(context->name, context);
  ++count;
  return {_state, context};
}

EnumerationContexts::Turn EnumerationContexts::take(const ServerCall& call, const std::string& name, Kind kind) {
  const std::lock_guard<std::mutex> lock(_state->mutex);
  std::shared_ptr<Context> context = _state->find(call, name);
  if (context == nullptr) raiseUnknown();
  if (context->kind != kind) {
    constexpr const char* kOperations[] = {"PullInstancesWithPath", "PullInstancePaths", "PullInstances"};
    throw CimStatusException(cimstatus::kInvalidParameter, std::string(kOperations[static_cast<int>(context->kind)]) +
                                                               " goes on with this enumeration");
  }
  if (std::exchange(context->isInTurn, true)) {
    throw CimStatusException(cimstatus::kFailed, "another pull of this enumeration is being answered");
  }
  return {_state, std::move(context)};
}

void EnumerationContexts::close(const ServerCall& call, const std::string& name) {
  std::shared_ptr<Context> context;
  const std::lock_guard<std::mutex> lock(_state->mutex);
  context = _state->find(call, name);
  if (context == nullptr) raiseUnknown();
  _state->remove(*context);
}

std::size_t EnumerationContexts::count() const {
  const std::lock_guard<std::mutex> lock(_state->mutex);
  return _state->contexts.size();
}

EnumerationContexts::Hold EnumerationContexts::hold(const ServerCall& call, QORuint64 bytes) {
  std::string client = clientOf(call);
  const std::lock_guard<std::mutex> lock(_state->mutex);
  _state->take(client, bytes);
  return {_state, std::move(client), bytes};
}

EnumerationContexts::Hold::Hold(std::shared_ptr<State> state, std::string client, QORuint64 bytes) noexcept
    : _state(std::move(state)), _client(std::move(client)), _bytes(bytes) {}

EnumerationContexts::Hold::Hold(Hold&& other) noexcept = default;

EnumerationContexts::Hold::~Hold() {
  if (_state == nullptr) return;
  const std::lock_guard<std::mutex> lock(_state->mutex);
  _state->giveBack(_client, _bytes, 0);
}

EnumerationContexts::Turn::Turn(std::shared_ptr<State> state, std::shared_ptr<Context> context) noexcept
    : _state(std::move(state)), _context(std::move(context)) {}

EnumerationContexts::Turn::Turn(Turn&& other) noexcept = default;

EnumerationContexts::Turn::~Turn() {
  if (_context == nullptr) return;
  const std::lock_guard<std::mutex> lock(_state->mutex);
  _state->remove(*_context);
}

EnumerationItems& EnumerationContexts::Turn::items() const noexcept { return *_context->items; }

void EnumerationContexts::Turn::setItems(std::unique_ptr<EnumerationItems> items) {
  const QORuint64 bytes = items->heldBytes();
  _context->items = std::move(items);
  const std::lock_guard<std::mutex> lock(_state->mutex);
  if (!_state->contexts.contains(_context->name)) return;
  _state->take(_context->client, bytes);
  _context->heldBytes = bytes;
}

std::string EnumerationContexts::Turn::end() {
  const std::shared_ptr<Context> context = std::exchange(_context, nullptr);
  const std::lock_guard<std::mutex> lock(_state->mutex);
  if (!context->items->hasNext()) {
    _state->remove(*context);
    return {};
  }
  context->isInTurn = false;
  context->end = Clock::now() + context->betweenPulls;
  if (context->end < _state->wakesAt) _state->changed.notify_one();
  return context->name;
}
