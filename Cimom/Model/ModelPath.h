// The canonical text of instance paths.
#ifndef QORQL_MODEL_MODELPATH_H
#define QORQL_MODEL_MODELPATH_H

#include "cimom/IQoriType.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

namespace model {

// Builds `namespace:Class.Key1="v",Key2=2`. The caller adds the keys in name order.
class PathText {
 public:
  PathText(const QORString& nameSpace, const QORString& className);

  // Numbers and booleans stand bare, NULL for no value, all else quoted.
  void addKey(const QORString& name, const QoriScalar& value, const IQoriType& type);
  // The text in a buffer of its exact length.
  QORString text() const { return QORString(_path.view()); }

 private:
  void appendQuoted(const QORString& text);

  QORString _path;
  char _separator = '.';
};

}  // namespace model

#endif
