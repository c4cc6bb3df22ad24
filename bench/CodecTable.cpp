// A reply is made while it is read, so that it takes no memory itself.
// SPDX-License-Identifier: Apache-2.0
#include "bench/CodecTable.h"

#include <expat.h>

#include <algorithm>
#include <atomic>
#include <cinttypes>
#include <iomanip>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Cimom/CimXml/CimXmlReply.h"
#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Remote/RemoteObjects.h"
#include "bench/Data.h"
#include "bench/PairedRounds.h"
#include "bench/ResidentPeak.h"
#include "bench/World.h"

namespace bench {

namespace {

constexpr std::uint64_t kInstances = 20000;
constexpr std::size_t kTexts = 100;  // instances that are made before, with keys of their own when they are sent
constexpr std::size_t kPiece = 16384;
constexpr double kSpeedGoal = 40000;
constexpr double kMemoryGoal = 1;  // MiB
constexpr const char* kOperation = "PullInstancesWithPath";
constexpr const char* kClass =
    "class Disk { [Key] string DeviceID; string Name; uint64 Size; uint32 BlockSize; uint16 Status; boolean Enabled; "
    "real64 Load; string PoolID; uint16 OperationalStatus[]; datetime InstallDate; uint64 Blocks; string Caption; };\n";

std::string property(const char* name, const char* type, const std::string& value) {
  std::string text = std::string("<PROPERTY NAME=\"") + name + "\" TYPE=\"" + type + "\"><VALUE>";
  cimxml::appendText(text, value);
  return text + "</VALUE></PROPERTY>\n";
}

// All but the key, with which an element begins.
std::string restOf(const DiskRow& row) {
  std::string text = property("Name", "string", row.name) + property("Size", "uint64", std::to_string(row.size)) +
                     property("BlockSize", "uint32", std::to_string(row.blockSize)) +
                     property("Status", "uint16", std::to_string(row.status)) +
                     property("Enabled", "boolean", row.isEnabled ? "TRUE" : "FALSE") +
                     property("Load", "real64", std::to_string(row.load)) + property("PoolID", "string", row.poolId) +
                     "<PROPERTY.ARRAY NAME=\"OperationalStatus\" TYPE=\"uint16\"><VALUE.ARRAY>";
  for (const std::uint16_t status : row.operationalStatus) text += "<VALUE>" + std::to_string(status) + "</VALUE>";
  return text + "</VALUE.ARRAY></PROPERTY.ARRAY>\n" + property("InstallDate", "datetime", "20240229091530.123456+000") +
         property("Blocks", "uint64", std::to_string(row.size / row.blockSize)) +
         property("Caption", "string", "Disk <" + row.name + ">") + "</INSTANCE></VALUE.INSTANCEWITHPATH>\n";
}

std::string beginOf(const std::string& key) {
  return "<VALUE.INSTANCEWITHPATH><INSTANCEPATH><NAMESPACEPATH><HOST>cimom.example</HOST><LOCALNAMESPACEPATH>"
         "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>"
         "<INSTANCENAME CLASSNAME=\"Disk\"><KEYBINDING NAME=\"DeviceID\"><KEYVALUE VALUETYPE=\"string\">" +
         key + "</KEYVALUE></KEYBINDING></INSTANCENAME></INSTANCEPATH>\n<INSTANCE CLASSNAME=\"Disk\">\n" +
         property("DeviceID", "string", key);
}

// Hands out a reply with so many instances.
class Document {
 public:
  explicit Document(std::uint64_t instances) : _instances(instances) {
    for (std::uint64_t i = 0; i < kTexts; ++i) _rests.push_back(restOf(diskRow(i, kTexts)));
  }

  std::size_t read(char* buffer, std::size_t capacity) {
    if (_at == _kept.size()) refill();
    const std::size_t count = std::min(capacity, _kept.size() - _at);
    std::copy_n(_kept.data() + _at, count, buffer);
    _at += count;
    return count;
  }

 private:
  void refill() {
    _kept.clear();
    _at = 0;
    if (_next == 0) {
      _kept = std::string(
                  "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">"
                  "<MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP><IMETHODRESPONSE NAME=\"") +
              kOperation + "\"><IRETURNVALUE>\n";
    }
    for (; _next < _instances && _kept.size() < kPiece; ++_next) {
      _kept += beginOf(numbered("disk%08" PRIu64, _next)) + _rests[_next % kTexts];
    }
    if (_next < _instances || _isEnded) return;
    _isEnded = true;
    _kept +=
        "</IRETURNVALUE><PARAMVALUE NAME=\"EndOfSequence\"><VALUE>TRUE</VALUE></PARAMVALUE></IMETHODRESPONSE>"
        "</SIMPLERSP></MESSAGE></CIM>\n";
  }

  const std::uint64_t _instances;
  std::vector<std::string> _rests;
  std::string _kept;
  std::size_t _at = 0;
  std::uint64_t _next = 0;
  bool _isEnded = false;
};

// The reply and nothing else, which is in all times.
std::uint64_t make(std::uint64_t instances) {
  Document document(instances);
  std::vector<char> buffer(kPiece);
  std::uint64_t bytes = 0;
  while (const std::size_t count = document.read(buffer.data(), buffer.size())) bytes += count;
  return bytes;
}

void countElement(void* count, const XML_Char*, const XML_Char**) { ++*static_cast<std::uint64_t*>(count); }
void countText(void* count, const XML_Char*, int length) {
  *static_cast<std::uint64_t*>(count) += static_cast<std::uint64_t>(length);
}

// What the parser takes that the codec works with.
std::uint64_t parse(std::uint64_t instances) {
  Document document(instances);
  const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr), XML_ParserFree);
  std::uint64_t count = 0;
  XML_SetUserData(parser.get(), &count);
  XML_SetElementHandler(parser.get(), countElement, nullptr);
  XML_SetCharacterDataHandler(parser.get(), countText);
  for (std::size_t size = 1; size != 0;) {
    void* const buffer = XML_GetBuffer(parser.get(), kPiece);
    size = document.read(static_cast<char*>(buffer), kPiece);
    if (XML_ParseBuffer(parser.get(), static_cast<int>(size), size == 0) != XML_STATUS_OK) {
      throw std::runtime_error("codec: the reply is not well-formed");
    }
  }
  return count;
}

class Codec {
 public:
  Codec() { MofLoader(_manager.sink()).loadText(kClass, "disks"); }

  // Hands over each object. Returns their number.
  template <class Take>
  std::uint64_t decode(std::uint64_t instances, const Take& take) {
    Document document(instances);
    CimXmlReply reply([&](char* buffer, std::size_t capacity) { return document.read(buffer, capacity); }, kOperation,
                      "1", kNameSpace);
    RemoteObjects maker(_server, _classes, _manager.sink(), kNameSpace, "Disk");
    std::uint64_t count = 0;
    for (CimXmlReply::Item item = reply.next(); item != CimXmlReply::Item::End; item = reply.next()) {
      if (item != CimXmlReply::Item::Instance) continue;
      take(maker.make(reply.takeInstance()));
      ++count;
    }
    return count;
  }

 private:
  static RemoteServerOptions options() {
    RemoteServerOptions options;
    options.name = "server";
    return options;
  }

  EmbeddedObjectManager _manager;
  RemoteCallLog _log;
  std::atomic<bool> _isStopped{false};
  RemoteServer _server{options(), _log, _isStopped};
  RemoteClasses _classes{[](const QORString&, const QORString&) { return RemoteClasses::Fetched(); }, false};
};

void requireAll(std::uint64_t instances) {
  if (instances != kInstances) throw std::runtime_error("codec: instances are missing");
}

const char* verdict(bool isMet) { return isMet ? ", met" : ", MISSED"; }

void printSpeed(Codec& codec, const TableOptions& options, std::ostream& out) {
  std::vector<QORSmrPtr<IQoriObject>> objects;
  objects.reserve(kInstances);
  const PairedRounds rounds({[] { make(kInstances); }, [] { parse(kInstances); },
                             [&] {
                               objects.clear();
                               requireAll(codec.decode(kInstances, [&](auto&& object) { objects.push_back(object); }));
                             }},
                            options.rounds, options.leastSeconds);
  const double making = rounds.seconds(0).median;
  const double megabytes = static_cast<double>(make(kInstances)) / 1e6;
  out << "| | instances a second | MB a second | goal |\n|---|--:|--:|---|\n" << std::fixed << std::setprecision(0);
  for (const std::size_t peer : {1U, 2U}) {
    const double seconds = rounds.seconds(peer).median - making;
    const double speed = static_cast<double>(kInstances) / seconds;
    out << "| " << (peer == 1 ? "expat alone" : "objects of the class") << " | " << speed << " | "
        << megabytes / seconds << " | ";
    if (peer == 1) {
      out << "-";
    } else {
      out << "at least " << kSpeedGoal << verdict(speed >= kSpeedGoal);
    }
    out << " |\n";
  }
}

// Of objects that are dropped as they come.
void printMemory(Codec& codec, std::ostream& out) {
  const ResidentPeak peak;
  requireAll(codec.decode(kInstances, [](auto&&) {}));
  const double mebibytes = peak.bytes() / kMebibyte;
  out << "\nMemory beyond the objects: " << std::setprecision(2) << mebibytes << " MiB (goal: at most "
      << std::setprecision(0) << kMemoryGoal << verdict(mebibytes <= kMemoryGoal) << ")\n";
}

}  // namespace

void printCodecTable(const TableOptions& options, std::ostream& out) {
  Codec codec;
  out << "\n### Decoding CIM-XML, " << kInstances << " instances of 12 properties with their paths\n\n";
  printSpeed(codec, options, out);
  printMemory(codec, out);
}

}  // namespace bench
