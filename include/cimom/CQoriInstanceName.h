// Instance names and namespace paths that the engine or the object manager creates.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CQORIINSTANCENAME_H
#define QORQL_CIMOM_CQORIINSTANCENAME_H

#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

// Immutable; threads may share one.
class CQoriNameSpacePath : public IQoriNameSpacePath {
 public:
  // Either may be empty.
  CQoriNameSpacePath(const QORString& host, const QORString& nameSpace) : _host(host), _nameSpace(nameSpace) {}
  ~CQoriNameSpacePath() override;
  const QORString& getHost() const noexcept override { return _host; }
  const QORString& getNameSpace() const noexcept override { return _nameSpace; }

 private:
  QORString _host;
  QORString _nameSpace;
};

// Immutable; threads may share one.
class CQoriInstanceName : public IQoriInstanceName {
 public:
  // A null key list stands for no keys (a class path), a null namespace path
  // for an empty one. The keys are copied and put into ascending name order;
  // the path text is made here.
  CQoriInstanceName(const QORString& className, const QORSmrPtr<KeyList>& keys,
                    const QORSmrPtr<IQoriNameSpacePath>& nameSpacePath);
  ~CQoriInstanceName() override;
  const QORString& getClassName() const noexcept override { return _className; }
  const QORSmrPtr<IQoriNameSpacePath>& getNameSpacePath() const noexcept override { return _nameSpacePath; }
  const QORSmrPtr<KeyList>& getKeys() const override { return _keys; }
  QORString toString() const override { return _path; }

 private:
  QORString _className;
  QORSmrPtr<IQoriNameSpacePath> _nameSpacePath;
  QORSmrPtr<KeyList> _keys;
  QORString _path;
};

#endif
