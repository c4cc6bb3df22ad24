// The live classes watched for filters, and the indications of their changes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LIVEWATCH_H
#define QORQL_TOOL_LIVEWATCH_H

#include <functional>
#include <string>
#include <vector>

#include "Cimom/Embedded/Indications.h"
#include "Cimom/Embedded/InstanceChanges.h"
#include "Cimom/QORQL/CQLQueryStatement.h"

// What indications of this process say of where they were made; another series each time.
IndicationOrigin thisMachine();

// Watches the live classes whose changes one of the filters can match: those
// that each `SourceInstance ISA Class` of it allows. BORROWS the object manager.
class LiveWatch {
 public:
  using Take = std::function<void(const QORSmrPtr<IQoriObject>& indication)>;
  using Report = std::function<void(const QORString& className, const QoriBaseException& failure)>;

  LiveWatch(EmbeddedObjectManager& manager, const QORString& nameSpace);

  // Watches for a valid filter too. Why no indication can come for it; empty when one can.
  std::string add(const CQLQueryStatement& filter);

  // Takes over what another one saw last, where both look at the same, so that no change is lost between the two.
  void continueFrom(const LiveWatch& before);

  // Reads the instances to which the next look is compared, unless they were taken over. A class without its
  // source on this machine is reported and no longer watched, unless it is the
  // only one. THROWS what a provider throws.
  void start(const Report& report);
  // Looks again and hands over the indications of the classes that the filters ask
  // for, in the order of the live classes. A class whose provider fails is reported and keeps its last look.
  void look(const Take& take, const Report& report);

 private:
  struct Watched {
    QORString className;
    bool isAskedFor = false;
    bool hasLast = false;
    CIMApi::PropertyNames properties;  // null: all
    InstanceSnapshot last;
  };

  InstanceSnapshot snapshotOf(const Watched& watched) const;
  void hand(const InstanceChange& change, const Take& take);

  const EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  std::vector<const char*> _changes;  // the classes of indications that are asked for
  std::vector<Watched> _watched;      // at first all live classes
  Indications _indications;
};

#endif
