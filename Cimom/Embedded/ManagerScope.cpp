// The scopes of a thread are a chain of its variables.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/ManagerScope.h"

namespace {

thread_local const ManagerScope* innermostScope = nullptr;

}  // namespace

ManagerScope::ManagerScope(const EmbeddedObjectManager& manager) noexcept
    : _state(manager.state()), _outer(innermostScope) {
  innermostScope = this;
}

ManagerScope::~ManagerScope() { innermostScope = _outer; }

const ManagerScope* ManagerScope::innermost() noexcept { return innermostScope; }
