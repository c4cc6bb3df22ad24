// A name that is bound to no class has no value on any row; otherwise the first row whose key is NULL is the one.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Run/QORQL_SortFault.h"

#include <exception>

#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/Lazy/QORQL_RowReader.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_TableHeader.h"
#include "cimom/IQoriInstanceName.h"

namespace {

using Fault = QORQL_Fault;

// Of the error that is being handled.
Fault ownFault() {
  try {
    throw;
  } catch (const QoriBaseException& error) {
    const Fault* const fault = QORQL_faultOf(error);
    return fault == nullptr ? Fault() : *fault;
  } catch (...) {
    return {};
  }
}

// The first name of the key that no class was found for.
Fault unboundName(QORQL_Evaluatable& key) {
  Fault fault;
  QORQL_findPlace(key, [&](const QORQL_Factor& factor) {
    const bool isBound = factor.getClassName().IsNull() || !factor.getClassName()->isEmpty() ||
                         factor.getPropertyName().IsNull() || !factor.getSelectedEntry().IsNull();
    if (isBound) return Fault::kNowhere;
    fault = {Fault::kPropertyUnknown, *factor.getPropertyName(), {}, factor.getPropertyOffset()};
    return fault.offset;
  });
  return fault;
}

// The first name before a dot that FROM does not know: what is asked of it has no value on any row.
Fault unknownFromName(QORQL_Evaluatable& key, const QORQL_SymbolTable& symbolTable) {
  Fault fault;
  QORQL_findPlace(key, [&](const QORQL_Factor& factor) {
    const bool hasClass = !factor.getClassName().IsNull() && !factor.getClassName()->isEmpty();
    if (!hasClass || !symbolTable.lookupIgnoringCase(*factor.getClassName()).IsNull()) return Fault::kNowhere;
    fault = {Fault::kFromNameUnknown, *factor.getClassName(), {}, factor.getOffset()};
    return fault.offset;
  });
  return fault;
}

// Whether more than one class of the row has the property: then it was left unbound for that. The objects themselves
// hold only what was asked of them.
bool isOfSeveral(QORQL_RowReader& reader, QORQL_DataTable& table, const QORString& property) {
  QORuint32 count = 0;
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> headers(*table.getColumnHeaderList());
  while (++headers) {
    const QORString& className = headers.key()->getName();
    const QORSmrPtr<IQoriObject> object(reader.object(className));
    if (object.IsNull()) continue;
    if (CQLQueryValidator::findProperty(IQoriObject::getLocalNameSpace(object), className, property, true)) ++count;
  }
  return count > 1;
}

QORString pathOf(QORQL_RowReader& reader, const QORString& className) {
  const QORSmrPtr<IQoriObject> object(reader.object(className));
  const QORSmrPtr<IQoriInstanceName> name(object.IsNull() ? QORSmrPtr<IQoriInstanceName>() : object->getInstanceName());
  return name.IsNull() ? QORString() : name->toString();
}

// The property that the key, or the column that it stands for, begins with.
void noteReference(Fault& fault, QORQL_Evaluatable& key) {
  QORQL_findPlace(key, [&](const QORQL_Factor& factor) {
    if (!factor.getSelectedEntry().IsNull()) {
      noteReference(fault, *factor.getSelectedEntry()->getExpression());
      return factor.getOffset();
    }
    if (factor.getClassName().IsNull() || factor.getPropertyName().IsNull()) return Fault::kNowhere;
    fault.name = *factor.getPropertyName();
    fault.className = *factor.getClassName();
    return factor.getOffset();
  });
}

// Of the first row whose key has no value, or cannot be computed.
void noteRow(Fault& fault, QORQL_RowReader& reader, std::size_t slot, QORQL_Evaluatable& key) {
  for (QORuint64 row = 0; row < reader.rowCount(); ++row) {
    reader.select(row);
    if (!reader.hasRow()) continue;
    try {
      if (!reader.value(slot).IsNull()) continue;
      if (fault.kind == Fault::kOther) fault = {Fault::kValueMissing, {}, {}, QORQL_startOf(key)};
      noteReference(fault, key);
    } catch (const QORQL_Exception&) {
      // What was thrown before has its own fault.
    }
    if (fault.kind != Fault::kOther) fault.object = pathOf(reader, fault.className);
    return;
  }
}

}  // namespace

QORQL_Fault QORQL_sortFault(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                            const QORSmrPtr<QORQL_Evaluatable>& key) {
  Fault fault = ownFault();
  try {
    if (fault.kind == Fault::kOther) fault = unboundName(*key);
    if (fault.kind == Fault::kOther) fault = unknownFromName(*key, symbolTable);
    if (fault.kind == Fault::kFromNameUnknown) return fault;
    QORQL_RowReader reader(symbolTable, table);
    const std::size_t slot = reader.addExpression(key);
    if (fault.kind == Fault::kPropertyUnknown) {
      if (reader.rowCount() != 0) reader.select(0);
      if (isOfSeveral(reader, *table, fault.name)) fault.kind = Fault::kPropertyAmbiguous;
    } else if (!QORQL_containsInstanceOf(*key)) {
      noteRow(fault, reader, slot, *key);
    }
  } catch (const std::exception&) {
    // The rows tell nothing more.
  }
  return fault;
}
