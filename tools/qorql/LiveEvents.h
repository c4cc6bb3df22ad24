// The live changes that subscriptions of a server's clients ask for.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LIVEEVENTS_H
#define QORQL_TOOL_LIVEEVENTS_H

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "Cimom/Server/ServerEvents.h"
#include "Cimom/Server/ServerModel.h"
#include "LiveFilters.h"
#include "LiveWatch.h"

// Looks at the live classes again and again, on a thread of its own, while there
// are filters that ask for their changes. What changes after a client has its reply to
// a subscription is seen, also while another object manager takes the first one's place.
// BORROWS model and events.
class LiveEvents {
 public:
  LiveEvents(ServerModel& model, ServerEvents& events, const QORString& nameSpace, std::chrono::milliseconds interval);
  LiveEvents(const LiveEvents&) = delete;
  LiveEvents& operator=(const LiveEvents&) = delete;
  // Waits for the look that is under way.
  ~LiveEvents();

  // From the last look on. Any thread may call.
  void setInterval(std::chrono::milliseconds interval);

 private:
  using Clock = std::chrono::steady_clock;

  void run();
  void look(bool isDue);
  void see();
  void publish();
  // What is watched now, where filters or object manager have changed.
  void renew(const ServerModel::Manager& manager);
  void keep(const std::vector<QORSmrPtr<IQoriObject>>& indications);
  // Waits until the filters that there are now are watched, so that a client's reply comes after that.
  void follow();

  ServerModel& _model;
  ServerEvents& _events;
  const QORString _nameSpace;
  std::mutex _mutex;
  std::chrono::milliseconds _interval;
  std::condition_variable _changed;
  bool _isStopped = false;
  bool _isAsked = false;    // to see to the filters at once
  QORuint64 _followed = 0;  // the version of the filters that was seen to last
  std::condition_variable _looked;
  // Of the thread alone.
  LiveFilters _filters;
  ServerModel::Manager _manager;                     // of the watch, which borrows it
  LiveDemand _demand;                                // of the watch
  std::unique_ptr<LiveWatch> _watch;                 // null: nothing is asked for
  std::vector<QORSmrPtr<IQoriObject>> _unpublished;  // seen, and not in any queue yet
  std::thread _thread;
};

#endif
