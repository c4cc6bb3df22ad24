// The live classes watched for a filter, and the indications of their changes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LIVEWATCH_H
#define QORQL_TOOL_LIVEWATCH_H

#include <functional>
#include <vector>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Indications.h"
#include "InstanceChanges.h"
#include "StatementText.h"

// Watches the live classes whose changes the filter can match: those that
// each `SourceInstance ISA Class` of it allows. BORROWS the object manager and
// the statement, which is valid.
class LiveWatch {
 public:
  using Take = std::function<void(const IQoriObject& indication)>;
  using Report = std::function<void(const QORString& className, const QoriBaseException& failure)>;

  LiveWatch(EmbeddedObjectManager& manager, const QORString& nameSpace, const CQLQueryStatement& filter);

  // The classes looked at; empty when no change can match.
  std::vector<QORString> classNames() const;
  // Whether the filter asks for an indication that changes make.
  bool asksForChanges() const;

  // Reads the instances to which the next look is compared. A class without its
  // source on this machine is reported and no longer watched, unless it is the
  // only one. THROWS what a provider throws.
  void start(const Report& report);
  // Looks again and hands over the indications that match, in the order of the
  // classes. A class whose provider fails is reported and keeps its last look.
  void look(const Take& take, const Report& report);

 private:
  struct Watched {
    QORString className;
    CIMApi::PropertyNames properties;  // null: all
    InstanceSnapshot last;
  };

  bool asksFor(const char* indicationClass) const;
  static CIMApi::PropertyNames steadyProperties(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                                                const QORString& className, const StatementText& text);
  InstanceSnapshot snapshotOf(const Watched& watched) const;
  void hand(const InstanceChange& change, const Take& take);

  const QORString _nameSpace;
  const CQLQueryStatement& _filter;
  std::vector<QORString> _sources;  // the classes of FROM
  std::vector<Watched> _watched;
  Indications _indications;
};

#endif
