// Whether objects are of a class or of a subclass of it, remembered by their layouts.
// Tested by tests/unit/QORQL/LazyFilterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CLASSTEST_H
#define QORQL_CLASSTEST_H

#include <vector>

#include "Cimom/QORQL/QORQL_Values.h"
#include "cimom/IQoriObject.h"
#include "cimom/IQoriRepository.h"
#include "cmpbase.h"

// Objects of one layout are of one class, so that the class repository is asked once for all of
// them, as long as it tells the same version of its classes; without a version it is asked each time.
// One condition on one thread.
class QORQL_ClassTest {
 public:
  QORQL_ClassTest(QORString nameSpace, QORString className);

  // Null for an object without a class. THROWS what the repository throws.
  QoriTruth test(const IQoriObject& object);
  // Forgets what holds no longer; to be called before a run of rows is looked up.
  void beginRun();
  // What is remembered of an object's layout; Undecided where nothing is.
  QORQL_ViewTruth remembered(const IQoriObject& object) const noexcept;
  // The same of many layouts; Null for null. Takes time for each layout that is remembered.
  void look(const IQoriLayout* const* layouts, std::size_t count, QORQL_ViewTruth* truths) const noexcept;
  std::size_t rememberedCount() const noexcept { return _answers.size(); }
  bool remembersAll(const std::vector<const IQoriLayout*>& layouts) const noexcept;
  // Puts out the places of those layouts that are of the class, and returns how many there are. REQUIRES that all of
  // them are remembered or null.
  std::size_t select(const IQoriLayout* const* layouts, std::size_t count, QORuint32* places) const noexcept;

 private:
  struct Answer {
    const IQoriLayout* layout;
    QORQL_ViewTruth truth;
  };
  void remember(const IQoriLayout& layout, bool isOfIt);
  QORuint64 currentVersion() const { return _repository.IsNull() ? 0 : _repository->getVersion(); }

  QORString _nameSpace;
  QORString _className;
  QORSmrPtr<IQoriRepository> _repository;
  QORuint64 _version = 0;  // that the answers hold for
  std::vector<Answer> _answers;
  std::vector<const IQoriLayout*> _members;  // those of which the answer is that they are of the class
};

#endif
