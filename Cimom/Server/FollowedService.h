// Replies to changes once whoever follows the filters of subscriptions has seen to them.
// Tested by tests/unit/Server/FollowedServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_FOLLOWEDSERVICE_H
#define QORQL_SERVER_FOLLOWEDSERVICE_H

#include "Cimom/Server/HttpService.h"
#include "Cimom/Server/ServerEvents.h"

// Only the client that has changed something waits, after what it changed is done with: nobody else has to wait for
// that. Any number of them wait at once.
class FollowedService final : public HttpService {
 public:
  // BORROWS both.
  FollowedService(HttpService& service, ServerEvents& events) : _service(service), _events(events) {}

  HttpReply serve(const HttpRequest& request) override;

 private:
  HttpService& _service;
  ServerEvents& _events;
};

#endif
