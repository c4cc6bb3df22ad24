// The name of a stored instance: its path, and its keys on demand.
// Tested by tests/unit/Model/ModelInstanceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELINSTANCENAME_H
#define QORQL_MODEL_MODELINSTANCENAME_H

#include <memory>
#include <mutex>

#include "Cimom/Model/ModelShape.h"
#include "Cimom/Model/ModelSlot.h"
#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

// Immutable; threads may share one. Holds copies of the key values, not the
// instance. The list of keys is made when it is first asked for: most names are
// compared by their path alone.
class ModelInstanceName final : public IQoriInstanceName {
 public:
  // `slots`: the instance's values by position; REQUIRES a value in every key.
  ModelInstanceName(const QORSmrPtr<ModelShape>& shape, const ModelSlot* slots);
  ModelInstanceName(const ModelInstanceName&) = delete;
  ModelInstanceName& operator=(const ModelInstanceName&) = delete;
  ~ModelInstanceName() override;

  const QORString& getClassName() const noexcept override { return _shape.Get()->className; }
  const QORSmrPtr<IQoriNameSpacePath>& getNameSpacePath() const noexcept override {
    return _shape.Get()->nameSpacePath;
  }
  const QORSmrPtr<KeyList>& getKeys() const override;
  QORString toString() const override { return _path; }

 private:
  QORSmrPtr<KeyList> makeKeys() const;

  QORSmrPtr<ModelShape> _shape;
  std::unique_ptr<ModelSlot[]> _values;  // of the shape's keysByName
  QORString _path;
  mutable std::once_flag _keysMade;
  mutable QORSmrPtr<KeyList> _keys;
};

#endif
