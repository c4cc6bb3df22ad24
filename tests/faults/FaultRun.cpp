// Runs queries and matches and takes their results without giving faults a chance.
// SPDX-License-Identifier: Apache-2.0
#include "FaultRun.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <streambuf>
#include <utility>

#include "AllocationFaults.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

constexpr char kNameSpace[] = "root/cimv2";
constexpr char kModel[] = R"(
class T_Device { [Key] string Name; uint32 Slot; };
class T_Disk : T_Device { uint64 Size; string Vendor; boolean Spare; uint8 Codes[]; real64 Load; };
class T_Bay { [Key] uint32 No; uint32 Slot; };
class T_Pool { [Key] string Id; uint32 Quota; };
[Association] class T_Member { [Key] T_Pool REF Pool; [Key] T_Device REF Member; };
instance of T_Disk as $d1 { Name = "d1"; Slot = 1; Size = 100; Vendor = "Acme & Sons, a name of some length";
                            Codes = {1, 2}; Load = 0.5; };
instance of T_Disk as $d2 { Name = "d2"; Slot = 2; Size = 20; Vendor = "Bolt"; Spare = TRUE; Codes = {}; };
instance of T_Disk { Name = "d3"; Slot = 2; Size = 30; Load = 2.5; };
instance of T_Bay { No = 10; Slot = 1; };
instance of T_Bay { No = 11; Slot = 2; };
instance of T_Bay { No = 12; };
instance of T_Pool as $p { Id = "p"; Quota = 50; };
instance of T_Member { Pool = $p; Member = $d1; };
instance of T_Member { Pool = $p; Member = $d2; };
class CIM_FCPort { [Key] string Id; };
class CIM_Volume { [Key] string Id; uint16 Status[]; uint64 Size; };
[Indication] class CIM_Indication { string IndicationIdentifier; };
[Indication] class CIM_InstModification : CIM_Indication {
  [EmbeddedObject] string SourceInstance; [EmbeddedObject] string PreviousInstance; };
[Indication] class CIM_AlertIndication : CIM_Indication {
  string OwningEntity; string AlertingManagedElement; uint16 AlertingElementFormat; uint8 U8; sint64 S64; uint16 A[]; };
)";

// Tells what exception is being handled.
std::string currentError() {
  const AllocationFaults::Pause pause;
  const auto text = [](const QORString& message) { return std::string(message.view()); };
  try {
    throw;
  } catch (const QORQL_ParseException& error) {
    return "parse " + std::to_string(error.getCode()) + ": " + text(error.getMessage());
  } catch (const QORQL_Exception& error) {
    return "runtime " + std::to_string(error.getCode()) + ": " + text(error.getMessage());
  } catch (const QoriBaseException& error) {
    return text(error.getType()) + " " + std::to_string(error.getCode()) + ": " + text(error.getMessage());
  } catch (const std::exception& error) {
    return std::string("std: ") + error.what();
  } catch (int) {
    return "int";
  }
}

// The test's stream takes everything, whatever fails.
class KeptBuffer : public std::streambuf {
 public:
  std::string take() { return std::move(_text); }

 private:
  int_type overflow(int_type byte) override {
    const AllocationFaults::Pause pause;
    _text += static_cast<char>(byte);
    return byte;
  }
  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    const AllocationFaults::Pause pause;
    _text.append(bytes, static_cast<std::size_t>(count));
    return count;
  }
  std::string _text;
};

void readRows(QORQL_ResultReader& reader, std::vector<std::string>& rows) {
  const std::size_t columns = reader.columns().size();
  while (reader.next()) {
    {
      const AllocationFaults::Pause pause;
      rows.emplace_back();
    }
    for (std::size_t i = 0; i < columns; ++i) {
      const QORSmrPtr<IQoriValue> value(reader.value(i));
      const QORString text(value.IsNull() ? QORString() : value->toString());
      const AllocationFaults::Pause pause;
      rows.back() += (i == 0 ? "" : "|") + (value.IsNull() ? std::string("NULL") : std::string(text.view()));
    }
  }
}

void execute(const QORString& text, QORQL_DataTable::ExecutionMode mode, std::ostream& out,
             std::vector<std::string>& rows) {
  const QORString nameSpace(kNameSpace);
  QORQL_Lexer lexer(text, false);
  QORQL_SymbolTable symbols(nullptr);
  const QORSmrPtr<QORQL_Executable> parsed(QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", nameSpace));
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  table->setExecutionMode(mode);
  parsed->execute(symbols, table, &out, nameSpace);
  QORQL_ResultReader reader(dynamic_cast<QORQL_Query&>(*parsed), symbols, table);
  readRows(reader, rows);
}

}  // namespace

bool FaultOutcome::hasLogged(const std::string& text) const {
  return std::any_of(log.begin(), log.end(), [&](const std::string& line) { return line.find(text) != line.npos; });
}

void PrintTo(const FaultOutcome& outcome, std::ostream* out) {
  *out << "error: " << outcome.error << "\nrows:\n";
  for (const std::string& row : outcome.rows) *out << "  " << row << "\n";
  *out << "stream:" << outcome.stream << "log:\n";
  for (const std::string& line : outcome.log) *out << "  " << line << "\n";
}

FaultWorld::FaultWorld() {
  _manager.makeCurrent();
  MofLoader(_manager.sink(), kNameSpace).loadText(kModel, "model");
  _manager.setLogSink(
      [this](const QORString& who, const QORString& message, QORuint32) {
        const AllocationFaults::Pause pause;
        if (_log != nullptr) _log->push_back(std::string(who.view()) + ": " + std::string(message.view()));
      },
      QoriTraceLog::kError);
}

FaultOutcome FaultWorld::query(const std::string& text, QORQL_DataTable::ExecutionMode mode) {
  FaultOutcome outcome;
  _log = &outcome.log;
  KeptBuffer buffer;
  AllocationFaults::Pause outside;  // the lines below, but not the run
  std::ostream out(&buffer);
  const QORString query(text.data(), text.size());
  try {
    outside.interrupt([&] { execute(query, mode, out, outcome.rows); });
  } catch (...) {
    outcome.error = currentError();
  }
  outcome.stream = buffer.take();
  _log = nullptr;
  return outcome;
}

FaultOutcome FaultWorld::match(const std::string& filter, const QORSmrPtr<IQoriObject>& indication) {
  FaultOutcome outcome;
  _log = &outcome.log;
  AllocationFaults::Pause outside;
  const auto attempt = [&](const std::function<std::string()>& action) {
    try {
      outcome.rows.push_back(action());
    } catch (...) {
      outcome.rows.push_back(currentError());
    }
  };
  const QORString text(filter.data(), filter.size());
  CQLQueryStatement statement("CQL", text, kNameSpace, "");
  QUERY_VALIDATE validity = QUERY_INVALID_QUERY;
  attempt([&] {
    outside.interrupt([&] { validity = statement.validate(); });
    return "validity " + std::to_string(validity);
  });
  if (validity == QUERY_VALIDATE_SUCCESS) {
    attempt([&] {
      CQLQueryStatement::ClassList list;
      outside.interrupt([&] {
        list = statement.getClassList();
        statement.getPropertyList(list->first());
      });
      return std::to_string(list->entries()) + " classes";
    });
    attempt([&] {
      bool isMatch = false;
      const QORString nameSpace(kNameSpace);
      outside.interrupt([&] { isMatch = statement.isMatch(indication, nameSpace); });
      return std::string(isMatch ? "match" : "no match");
    });
  }
  _log = nullptr;
  return outcome;
}

std::vector<QORSmrPtr<IQoriObject>> FaultWorld::indications(const std::string& mof) {
  return MofLoader(_manager.sink(), kNameSpace).readInstances(mof, "indications");
}

const std::vector<std::string> kFaultQueries = {
    "SELECT Name, Size * 2 + Slot AS Sum FROM T_Disk WHERE Vendor LIKE 'Acme' OR Size >= 20 ORDER BY Size DESC",
    "SELECT d.Name, b.No FROM T_Disk AS d, T_Bay AS b WHERE d.Slot = b.Slot AND d.Size < 1000 AND b.No > 10",
    "SELECT d.Name, b.No FROM T_Disk AS d, T_Bay AS b WHERE d.Slot *= b.Slot AND NOT b.No = 5",
    "SELECT p.Id, d.Name, m.Member FROM T_Pool AS p, T_Disk AS d, T_Member AS m WHERE T_Member = p AND T_Member = d",
    "SELECT COUNT(Name) AS N, SUM(Size) AS S, MIN(Slot) AS M, AVG(Load) AS A FROM T_Disk WHERE Spare IS NULL",
    "SELECT FIRST 2 OBJECTPATH(d) AS P, INSTANCEOF(d) AS I, d.Codes FROM T_Disk AS d WHERE ANY Codes = 1 OR d ISA "
    "T_Disk",
    "SELECT * FROM T_Disk WHERE (Slot + 1) * 2 > Size / 100 AND -Load < 1.5",
    "SELECT T_Disk.*, T_Bay.No FROM T_Disk, T_Bay WHERE T_Disk.Slot *=* T_Bay.Slot",
    "SELECT Nope FROM T_Disk",
    "SELECT Name FROM T_Disk WHERE Name = 'a' ORDER BY Name FORMAT AS PDF"};

const char* const kFaultIndications = R"(
instance of CIM_InstModification {
  SourceInstance = "instance of CIM_Volume { Id = \"v\"; Status = {2, 17}; Size = 10; };";
  PreviousInstance = "instance of CIM_Volume { Id = \"v\"; Status = {2}; Size = 9; };"; };
instance of CIM_AlertIndication { OwningEntity = "SNIA"; AlertingElementFormat = 2; U8 = 5; S64 = -3; A = {1, 5};
  AlertingManagedElement = "//host/root/ns:CIM_FCPort.Id=1"; };
)";

const std::vector<std::string> kFaultFilters = {
    "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_Volume AND "
    "SourceInstance.CIM_Volume::Status <> PreviousInstance.CIM_Volume::Status AND SourceInstance.Size > 9",
    "SELECT OwningEntity, a.U8 FROM CIM_AlertIndication AS a WHERE a.OwningEntity = 'SNIA' AND U8 = 5 AND S64 < U8",
    "SELECT * FROM CIM_AlertIndication WHERE ANY A[*] = 5 AND AlertingManagedElement ISA CIM_FCPort AND U8 + 2 * S64 < "
    "0",
    "SELECT * FROM CIM_AlertIndication WHERE U8 = 5 OR U8 = 6", "SELECT * FROM Nope"};
