// A batch is known again by its length and its ends: servers enumerate in an order.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteBatches.h"

#include <string_view>
#include <utility>

namespace {

constexpr int kMostEmpty = 1000;
constexpr int kMostRepeated = 10;

}  // namespace

// Empty where an end of the batch has no name.
std::string RemoteBatches::takeMark() {
  const QORSmrPtr<IQoriInstanceName> first = std::exchange(_first, {});
  const QORSmrPtr<IQoriInstanceName> last = std::exchange(_last, {});
  const std::uint64_t instances = std::exchange(_instances, 0);
  if (first.IsNull() || last.IsNull()) return {};
  return std::to_string(instances) + '\n' + std::string(first->toString().view()) + '\n' +
         std::string(last->toString().view());
}

void RemoteBatches::note(std::uint64_t bytes) {
  _bytes += bytes;
  const bool isEmpty = _instances == 0;
  const std::string mark = takeMark();
  const bool isRepeated = !mark.empty() && !_marks.insert(mark).second;
  _empty = isEmpty ? _empty + 1 : 0;
  _repeated = isRepeated ? _repeated + 1 : 0;
  if (_empty == kMostEmpty) throw RemoteEndlessBatches("the server sends empty replies without end");
  if (_repeated == kMostRepeated) throw RemoteEndlessBatches("the server sends the same instances again and again");
  if (_bytes > _mostBytes) {
    throw RemoteEndlessBatches("the server has sent more than " + std::to_string(_mostBytes) +
                               " bytes, and there is no end of them");
  }
}
