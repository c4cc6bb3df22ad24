// The queues of indications as live instances.
// Tested by tests/unit/Server/IndicationServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_QUEUEPROVIDER_H
#define QORQL_SERVER_QUEUEPROVIDER_H

#include <functional>
#include <utility>
#include <vector>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Server/IndicationListener.h"
#include "Cimom/Server/Subscription.h"

// What is told of one queue.
struct QueueRow {
  ListenerDestination destination;
  ServerStore::Listener state;
  IndicationListener::Numbers numbers;
};

class QueueProvider final : public InstanceProvider {
 public:
  using Rows = std::function<std::vector<QueueRow>()>;

  explicit QueueProvider(Rows rows) : _rows(std::move(rows)) {}
  QORString getClassName() const override;
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const Rows _rows;
};

#endif
