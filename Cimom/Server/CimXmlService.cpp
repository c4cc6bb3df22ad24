// What HTTP can tell of a call is checked here; whatever is about the call itself is the reply's status.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/CimXmlService.h"

#include <unistd.h>

#include <climits>
#include <optional>
#include <string>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlRequestReader.h"
#include "Cimom/Embedded/ManagerScope.h"
#include "Cimom/Server/StatusCodes.h"

namespace {

constexpr const char* kMapping = "http://www.dmtf.org/cim/mapping/http/v1.0";

// The headers of the mapping, whose names may begin with a number.
class CimHeaders {
 public:
  explicit CimHeaders(const HttpRequest& request) : _request(request) {
    const std::string* const man = request.header("Man");
    if (request.method != "M-POST" || man == nullptr || man->find(kMapping) == std::string::npos) return;
    const std::size_t at = man->find("ns=");
    const std::string_view digits =
        at == std::string::npos ? std::string_view() : std::string_view(*man).substr(at + 3);
    _number = digits.substr(0, digits.find_first_not_of("0123456789"));
  }

  bool hasMapping() const noexcept { return _request.method != "M-POST" || !_number.empty(); }
  // Null when it is not there.
  const std::string* find(const char* name) const { return _request.header(prefix() + name); }
  bool says(const char* name, std::string_view value) const {
    const std::string* const found = find(name);
    return found != nullptr && QORString::equalIgnoringCase(*found, value);
  }
  void addTo(HttpReply& reply, const char* name, const char* value) const {
    if (!_number.empty()) {
      reply.headers.emplace_back("Ext", "");
      reply.headers.emplace_back("Cache-Control", "no-cache");
      reply.headers.emplace_back("Man", std::string(kMapping) + " ; ns=" + std::string(_number));
    }
    reply.headers.emplace_back(prefix() + name, value);
  }

 private:
  std::string prefix() const { return _number.empty() ? std::string() : std::string(_number) + "-"; }

  const HttpRequest& _request;
  std::string_view _number;
};

int hexDigit(char digit) noexcept {
  if (digit >= '0' && digit <= '9') return digit - '0';
  const char lower = static_cast<char>(digit | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// "root/cimv2" of "root%2Fcimv2"; what is no such code stays.
std::string decoded(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '%' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
    const int low = high < 0 ? -1 : hexDigit(text[i + 2]);
    if (low < 0) {
      plain += text[i];
      continue;
    }
    plain += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return plain;
}

// The object of a method follows its namespace behind a colon.
std::string_view nameSpaceIn(std::string_view object) noexcept {
  object = object.substr(0, object.find(':'));
  while (object.starts_with('/')) object.remove_prefix(1);
  while (object.ends_with('/')) object.remove_suffix(1);
  return object;
}

// "/root/cimv2" of "//host:5988/root/cimv2" and of "http://host/root/cimv2"; any other object as it is.
std::string_view withoutHost(std::string_view object) noexcept {
  constexpr std::string_view kMark = "//";
  const std::size_t mark = object.find(kMark);
  if (mark == std::string_view::npos || object.find_first_of(":/") + 1 < mark) return object;
  const std::size_t slash = object.find('/', mark + kMark.size());
  return slash == std::string_view::npos ? object : object.substr(slash);
}

// Some clients tell the host in front; others begin with slashes that mean nothing.
bool isNameSpace(std::string_view object, const QORString& nameSpace) noexcept {
  return QORString::equalIgnoringCase(nameSpaceIn(object), nameSpace.view()) ||
         QORString::equalIgnoringCase(nameSpaceIn(withoutHost(object)), nameSpace.view());
}

[[noreturn]] void raiseMismatch(const char* name, const std::string& value, const std::string& message) {
  throw CimXmlRequestRefusal("header-mismatch",
                             std::string("the header ") + name + " says \"" + value + "\", the message " + message);
}

void requireOperationHeader(const CimHeaders& headers) {
  const std::string* const version = headers.find("CIMProtocolVersion");
  if (version != nullptr && !version->starts_with("1.")) {
    throw CimXmlRequestRefusal("unsupported-protocol-version",
                               "the header CIMProtocolVersion says \"" + *version + "\", expected 1.x");
  }
  if (headers.find("CIMBatch") != nullptr) {
    throw CimXmlRequestRefusal("multiple-requests-unsupported", "a message with several calls is not accepted");
  }
  for (const auto& [name, value] : {std::pair("CIMOperation", "MethodCall"), std::pair("CIMExport", "MethodRequest")}) {
    if (headers.find(name) == nullptr || headers.says(name, value)) continue;
    throw CimXmlRequestRefusal("unsupported-operation", std::string("the header ") + name + " says \"" +
                                                            *headers.find(name) + "\", expected \"" + value + '"');
  }
}

void requireMatch(const CimHeaders& headers, const CimXmlRequest& request) {
  const bool isExport = request.kind == CimXmlRequest::Kind::Export;
  const char* const other = isExport ? "CIMOperation" : "CIMExport";
  if (const std::string* const said = headers.find(other)) raiseMismatch(other, *said, "is not of that kind");
  const char* const method = isExport ? "CIMExportMethod" : "CIMMethod";
  if (headers.find(method) != nullptr && !headers.says(method, request.operation)) {
    raiseMismatch(method, *headers.find(method), "says \"" + request.operation + '"');
  }
  const std::string* const object = headers.find("CIMObject");
  if (isExport || object == nullptr) return;
  if (!isNameSpace(decoded(*object), request.nameSpace)) {
    raiseMismatch("CIMObject", *object, "says \"" + std::string(request.nameSpace.view()) + '"');
  }
}

// What the call is about, for the log.
std::string subjectOf(const CimXmlRequest& request) {
  for (const char* const name : {"Query", "ClassName", "InstanceName", "ObjectName", "QualifierName"}) {
    const CimXmlParameter* const found = request.find(name);
    if (found == nullptr) continue;
    if (found->kind == CimXmlParameter::Kind::InstanceName) return std::string(found->path->toString().view());
    return std::string(found->text.view());
  }
  for (const CimXmlParameter& each : request.parameters) {
    if (each.kind != CimXmlParameter::Kind::Instance) continue;
    return std::string((each.instance.name.IsNull() ? each.instance.className : each.instance.name->toString()).view());
  }
  return {};
}

// As the client calls this server; else as the machine calls itself.
QORString hostOf(const HttpRequest& request) {
  const std::string* const host = request.header("Host");
  if (host != nullptr && !host->empty()) return QORString(std::string_view(*host));
  char name[HOST_NAME_MAX + 1] = "";
  if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0') return QORString("localhost");
  return QORString(name);
}

// A reply that keeps its object manager until it is sent, and asks that one alone.
class HoldingReply final : public ServerReply {
 public:
  HoldingReply(std::unique_ptr<ServerReply> reply, std::shared_ptr<EmbeddedObjectManager> manager)
      : _manager(std::move(manager)), _reply(std::move(reply)) {}
  void append(std::string& out, std::size_t about) override {
    const ManagerScope scope(*_manager);
    _reply->append(out, about);
  }

 private:
  const std::shared_ptr<EmbeddedObjectManager> _manager;
  const std::unique_ptr<ServerReply> _reply;
};

// Reads and answers one message from one object manager.
class Answering {
 public:
  using Manager = CimXmlService::Manager;

  // BORROWS all.
  Answering(const HttpRequest& request, const Manager& manager) : _request(request), _takeManager(manager) { begin(); }

  // From the object manager that answers now.
  void begin() {
    _manager = _takeManager();
    _scope.emplace(*_manager);
  }
  // THROWS as readCimXmlRequest().
  void read() {
    const CimXmlMakeClassObject makeClassObject = [&](const QORString& nameSpace, const CimClassDeclaration& made) {
      return _manager->sink().makeClassObject(nameSpace, made);
    };
    _call = {};
    readCimXmlRequest(_request.body, makeClassObject, _call);
  }
  const CimXmlRequest& call() const noexcept { return _call; }
  const std::shared_ptr<EmbeddedObjectManager>& manager() const noexcept { return _manager; }

 private:
  const HttpRequest& _request;
  const Manager& _takeManager;
  std::shared_ptr<EmbeddedObjectManager> _manager;
  std::optional<ManagerScope> _scope;
  CimXmlRequest _call;
};

HttpReply plainReply(unsigned status, const std::string& text) {
  HttpReply reply;
  reply.status = status;
  reply.headers.emplace_back("Content-Type", "text/plain; charset=utf-8");
  reply.body = std::make_unique<WholeReply>(text + '\n');
  reply.note.statusText = text;
  return reply;
}

}  // namespace

CimXmlService::CimXmlService(const ServerOperations& operations, Manager manager, Manager forChange)
    : _operations(operations), _manager(std::move(manager)), _forChange(std::move(forChange)) {}

HttpReply CimXmlService::serve(const HttpRequest& request) {
  if (request.method != "POST" && request.method != "M-POST") {
    HttpReply reply = plainReply(httpstatus::kMethodNotAllowed, "CIM operations come by POST");
    reply.headers.emplace_back("Allow", "POST, M-POST");
    return reply;
  }
  const CimHeaders headers(request);
  if (!headers.hasMapping())
    return plainReply(httpstatus::kNotImplemented, std::string("M-POST needs the mapping ") + kMapping);
  Answering answering(request, _manager);
  const CimXmlRequest& call = answering.call();
  HttpReply reply;
  std::unique_ptr<ServerReply> body;
  try {
    requireOperationHeader(headers);
    while (body == nullptr) {
      answering.read();
      requireMatch(headers, call);
      reply.note.subject = subjectOf(call);
      try {
        body = _operations.answer({call, request.client, answering.manager(), reply.note, hostOf(request), _forChange});
      } catch (const ReplacedManager&) {
        answering.begin();  // the classes of the one that answers now may be others
      }
    }
  } catch (const CimXmlRequestRefusal& refusal) {
    HttpReply refused = plainReply(httpstatus::kBadRequest, std::string(refusal.getMessage().view()));
    refused.headers.emplace_back("CIMError", refusal.getWord());
    return refused;
  } catch (const QoriBaseException& failure) {
    body = _operations.refuse({call, request.client, answering.manager(), reply.note}, failure);
  }
  reply.headers.emplace_back("Content-Type", "application/xml; charset=\"utf-8\"");
  const bool isExport = call.kind == CimXmlRequest::Kind::Export;
  headers.addTo(reply, isExport ? "CIMExport" : "CIMOperation", "MethodResponse");
  reply.body = std::make_unique<HoldingReply>(std::move(body), answering.manager());
  return reply;
}
