// The enumerations that clients have opened and not yet pulled to their ends.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_ENUMERATIONCONTEXTS_H
#define QORQL_SERVER_ENUMERATIONCONTEXTS_H

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "Cimom/Server/EnumerationItems.h"
#include "Cimom/Server/ServerLimits.h"
#include "Cimom/Server/ServerOperations.h"

// An enumeration belongs to the namespace and the user that opened it, and to the object manager as it was then: when
// another one has taken its place, it has ended. A thread of its own drops those whose time is over. Any thread may
// call.
class EnumerationContexts {
  struct Context;
  struct State;

 public:
  // Which operation goes on with it.
  enum class Kind { InstancesWithPath, Paths, Instances };

  // One reply's hold of an enumeration: no other one can go on with it meanwhile. Unless end() is called, the
  // enumeration ends with it, since nobody knows what the client has got.
  class Turn {
   public:
    Turn(Turn&& other) noexcept;
    Turn& operator=(Turn&&) = delete;
    ~Turn();

    // REQUIRES setItems() before.
    EnumerationItems& items() const noexcept;
    // THROWS CimStatusException 27 when what the client has open or is being sent would be too much; this one ends
    // then.
    void setItems(std::unique_ptr<EnumerationItems> items);
    // What the client goes on with; empty when that was all.
    std::string end();

   private:
    friend class EnumerationContexts;
    Turn(std::shared_ptr<State> state, std::shared_ptr<Context> context) noexcept;

    std::shared_ptr<State> _state;
    std::shared_ptr<Context> _context;
  };

  // What a reply holds that no enumeration goes on with, as long as it is there.
  class Hold {
   public:
    Hold(Hold&& other) noexcept;
    Hold& operator=(Hold&&) = delete;
    ~Hold();

   private:
    friend class EnumerationContexts;
    Hold(std::shared_ptr<State> state, std::string client, QORuint64 bytes) noexcept;

    std::shared_ptr<State> _state;  // null: it was moved from
    std::string _client;
    QORuint64 _bytes;
  };

  explicit EnumerationContexts(const ServerLimits& limits);
  EnumerationContexts(const EnumerationContexts&) = delete;
  EnumerationContexts& operator=(const EnumerationContexts&) = delete;
  ~EnumerationContexts();

  // A new enumeration, in its first turn, which waits so long for each pull. THROWS CimStatusException 27 when the
  // client has too many.
  Turn open(const ServerCall& call, Kind kind, std::chrono::milliseconds betweenPulls);
  // THROWS CimStatusException: 21 when there is none of that name for the caller; 4 when another operation goes on with
  // it; 1 while another reply does.
  Turn take(const ServerCall& call, const std::string& name, Kind kind);
  // Ends it; a reply that goes on with it is sent as it was asked for. THROWS CimStatusException 21.
  void close(const ServerCall& call, const std::string& name);

  // Counts the bytes with those of the client's enumerations. THROWS CimStatusException 27 when they are too many.
  Hold hold(const ServerCall& call, QORuint64 bytes);

  // How many there are, those in a turn too.
  std::size_t count() const;

 private:
  const std::shared_ptr<State> _state;
  std::jthread _sweeper;
};

#endif
