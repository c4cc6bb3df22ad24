// Waits between the change and its reply.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/FollowedService.h"

namespace {

// What is deleted is not missed.
bool mayAskForMore(const ServerNote& note) {
  return note.status == 0 && (note.operation == "CreateInstance" || note.operation == "ModifyInstance");
}

}  // namespace

HttpReply FollowedService::serve(const HttpRequest& request) {
  HttpReply reply = _service.serve(request);
  if (mayAskForMore(reply.note)) _events.waitForWatcher();
  return reply;
}
