// Fills the instances.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/QueueProvider.h"

#include "Cimom/Server/IndicationClasses.h"
#include "cimom/CQoriValue.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;

Value count(std::uint64_t number) { return new CQoriValue(static_cast<unsigned long>(number), CQoriType::uint64); }

Value textOrNull(const std::string& value) { return value.empty() ? Value() : Value(new CQoriValue(QORString(value))); }

// BORROWS nothing: made anew for each instance.
Value valueOf(const QueueRow& row, const QORString& property) {
  const auto is = [&](const char* name) { return property.isEqualCaseInsensitive(name); };
  if (is("Handler")) return textOrNull(row.destination.path);
  if (is("Destination")) return textOrNull(urlWithoutPassword(row.destination.url));
  if (is("SequenceContext")) return textOrNull(row.state.context);
  if (is("NextSequenceNumber")) return new CQoriValue(static_cast<long>(row.state.next), CQoriType::sint64);
  if (is("Queued")) return count(static_cast<std::uint64_t>(row.state.queued));
  if (is("Dropped")) return count(static_cast<std::uint64_t>(row.state.dropped));
  if (is("Delivered")) return count(row.numbers.delivered);
  if (is("FailedAttempts")) return count(row.numbers.failedAttempts);
  if (is("LastError")) return textOrNull(row.numbers.lastError);
  return {};
}

}  // namespace

QORString QueueProvider::getClassName() const { return kQueueClass; }

void QueueProvider::enumerate(const Request& request, const Emit& emit) {
  for (const QueueRow& row : _rows()) {
    std::vector<Value> values;
    for (const QORString& property : request.propertyNames) values.push_back(valueOf(row, property));
    emit(std::move(values));
  }
}
