// The live classes watched for filters, and the indications of their changes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LIVEWATCH_H
#define QORQL_TOOL_LIVEWATCH_H

#include <functional>
#include <string>
#include <vector>

#include "Cimom/Embedded/Indications.h"
#include "Cimom/Embedded/InstanceChanges.h"
#include "LiveDemand.h"

// What indications of this process say of where they were made; another series each time.
IndicationOrigin thisMachine();

// Watches the live classes that are asked for. BORROWS the object manager, which has to be the one that is asked.
class LiveWatch {
 public:
  // Takes the indications of one look at a class. What it throws undoes that look.
  using Take = std::function<void(const std::vector<QORSmrPtr<IQoriObject>>& indications)>;
  using Report = std::function<void(const QORString& className, const QoriBaseException& failure)>;

  LiveWatch(EmbeddedObjectManager& manager, const QORString& nameSpace, const LiveDemand& demand);

  // Reads the instances to which the next look is compared. A class without its source on this machine is reported and
  // no longer watched, unless there is no other one with its source. THROWS what a provider throws.
  void start(const Report& report);
  // The same, where another one has watched before. What that one saw last is compared with what there is now, or with
  // the next look: no change is lost between the two, of what both look at.
  void continueFrom(const LiveWatch& before, const Take& take, const Report& report);
  // Looks again and hands over the indications that are asked for, in the order of the live classes. A class whose
  // provider fails is reported and keeps its last look; a change of which no indication can be made is reported.
  void look(const Take& take, const Report& report);

 private:
  struct Watched {
    QORString className;
    CIMApi::PropertyNames properties;  // null: all
    InstanceSnapshot last;
  };

  const Watched* find(const QORString& className) const;
  InstanceSnapshot snapshotOf(const Watched& watched) const;
  void begin(Watched& watched, const Watched* before, const Take& take, const Report& report);
  void beginAll(const LiveWatch* before, const Take& take, const Report& report);
  void hand(const Watched& watched, const std::vector<InstanceChange>& changes, const Take& take, const Report& report);

  const EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const std::set<std::string> _changes;  // the classes of indications that are asked for
  std::vector<Watched> _watched;
  Indications _indications;
};

#endif
