// The version is read before the question, so that an answer is never newer than the version that it is kept for.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_ClassTest.h"

#include <algorithm>
#include <utility>

#include "Cimom/QORQL/CQLQueryValidator.h"
#include "cimom/QoriProviderPluginManager.h"

QORQL_ClassTest::QORQL_ClassTest(QORString nameSpace, QORString className)
    : _nameSpace(std::move(nameSpace)),
      _className(std::move(className)),
      _repository(QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository()) {}

QoriTruth QORQL_ClassTest::test(const IQoriObject& object) {
  const QORString className(object.getClassName());
  if (className.isEmpty()) return QoriTruth::Null;
  beginRun();
  const QORQL_ViewTruth known = remembered(object);
  if (known != QORQL_ViewTruth::Undecided) return static_cast<QoriTruth>(known);
  const bool isOfIt = CQLQueryValidator::isSubClass(_nameSpace, className, _className);
  const IQoriLayout* const layout = object.getLayout();
  if (_version != 0 && layout != nullptr) remember(*layout, isOfIt);
  return qori::truth(isOfIt);
}

void QORQL_ClassTest::beginRun() {
  const QORuint64 version = currentVersion();
  if (version != _version) {
    _answers.clear();
    _members.clear();
  }
  _version = version;
}

void QORQL_ClassTest::remember(const IQoriLayout& layout, bool isOfIt) {
  _answers.push_back({&layout, QORQL_viewTruth(isOfIt)});
  if (isOfIt) _members.push_back(&layout);
}

// Adds up over the few answers, of which one at most counts: a branch on which of them it is could not be predicted.
QORQL_ViewTruth QORQL_ClassTest::remembered(const IQoriObject& object) const noexcept {
  const IQoriLayout* const layout = object.getLayout();
  const int undecided = static_cast<int>(QORQL_ViewTruth::Undecided);
  int truth = undecided;
  for (const Answer& answer : _answers) {
    truth += static_cast<int>(answer.layout == layout) * (static_cast<int>(answer.truth) - undecided);
  }
  return static_cast<QORQL_ViewTruth>(truth);
}

// Without a branch on the answer, as above.
void QORQL_ClassTest::look(const IQoriLayout* const* layouts, std::size_t count,
                           QORQL_ViewTruth* truths) const noexcept {
  const QORuint8 undecided = static_cast<QORuint8>(QORQL_ViewTruth::Undecided);
  const QORuint8 null = static_cast<QORuint8>(QORQL_ViewTruth::Null);
  for (std::size_t i = 0; i < count; ++i) {
    truths[i] = static_cast<QORQL_ViewTruth>(layouts[i] == nullptr ? null : undecided);
  }
  for (const Answer& answer : _answers) {
    const unsigned change = static_cast<QORuint8>(answer.truth) ^ undecided;
    for (std::size_t i = 0; i < count; ++i) {
      const unsigned mask = 0U - static_cast<unsigned>(layouts[i] == answer.layout);
      truths[i] = static_cast<QORQL_ViewTruth>(static_cast<unsigned>(truths[i]) ^ (change & mask));
    }
  }
}

bool QORQL_ClassTest::remembersAll(const std::vector<const IQoriLayout*>& layouts) const noexcept {
  return std::all_of(layouts.begin(), layouts.end(), [this](const IQoriLayout* layout) {
    return std::any_of(_answers.begin(), _answers.end(),
                       [layout](const Answer& each) { return each.layout == layout; });
  });
}

// Without a branch on the answer, as above; most often one layout alone is of the class.
std::size_t QORQL_ClassTest::select(const IQoriLayout* const* layouts, std::size_t count,
                                    QORuint32* places) const noexcept {
  if (_members.empty()) return 0;
  const IQoriLayout* const first = _members.front();
  const std::size_t others = _members.size() - 1;
  std::size_t selected = 0;
  for (std::size_t i = 0; i < count; ++i) {
    places[selected] = static_cast<QORuint32>(i);
    std::size_t holds = layouts[i] == first ? 1 : 0;
    for (std::size_t other = 1; other <= others; ++other) holds += layouts[i] == _members[other] ? 1 : 0;
    selected += holds;
  }
  return selected;
}
