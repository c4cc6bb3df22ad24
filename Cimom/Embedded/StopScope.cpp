// The scopes of a thread are a chain of its variables.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/StopScope.h"

#include "Cimom/Embedded/RepositoryError.h"
#include "cimom/CQoriProviderException.h"

namespace {

thread_local const StopScope* innermostStop = nullptr;

}  // namespace

StopScope::StopScope(Request isStopRequested) noexcept : _isStopRequested(isStopRequested), _outer(innermostStop) {
  innermostStop = this;
}

StopScope::~StopScope() { innermostStop = _outer; }

void StopScope::requireGoing() {
  if (innermostStop == nullptr || !innermostStop->_isStopRequested()) return;
  throw CQoriProviderException("StopScope", "the call was stopped",
                               static_cast<QORuint32>(embedded::CimStatus::Failed));
}
