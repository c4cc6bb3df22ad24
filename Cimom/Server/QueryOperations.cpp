// Both run the statement before the reply begins, and write rows while it is sent or pulled.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/QueryOperations.h"

#include <optional>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/Server/EnumerationParameters.h"
#include "Cimom/Server/EnumerationReply.h"
#include "Cimom/Server/QueryRows.h"
#include "Cimom/Server/ServerObjects.h"
#include "Cimom/Server/ServerParameters.h"

namespace {

QORString requireText(const ServerCall& call, const char* name) {
  const std::optional<QORString> text = call.request.text(name);
  if (!text) throw CimStatusException(cimstatus::kInvalidParameter, std::string(name) + " is needed");
  return *text;
}

// `language`, `query`: the names of the parameters.
std::unique_ptr<QueryRows> runQuery(const ServerCall& call, const char* language, const char* query,
                                    const ServerLimits& limits) {
  const QORString languageText = requireText(call, language);
  const QORString text = requireText(call, query);
  call.note.subject = text.view();
  return std::make_unique<QueryRows>(call, languageText, text, limits);
}

// All rows in one reply. Rows may ask the object manager, which is held.
class RowsReply final : public ServerReply {
 public:
  RowsReply(const ServerCall& call, std::unique_ptr<QueryRows> rows, EnumerationContexts::Hold hold)
      : _manager(call.manager),
        _response(call.request.messageId, call.request.operation),
        _hold(std::move(hold)),
        _rows(std::move(rows)) {
    _response.values();
  }
  void append(std::string& out, std::size_t about) override {
    if (_rows == nullptr) return;
    out += _response.take();
    for (const std::size_t begin = out.size(); _rows->hasNext();) {
      if (out.size() - begin >= about) return;
      out += "<VALUE.OBJECT>";
      _rows->writeNext(out);
      out += "</VALUE.OBJECT>";
    }
    out += _response.finish();
    _rows.reset();
    _hold.reset();
  }

 private:
  const std::shared_ptr<EmbeddedObjectManager> _manager;
  CimXmlResponse _response;
  std::optional<EnumerationContexts::Hold> _hold;  // of the rows
  std::unique_ptr<QueryRows> _rows;                // null: all are sent
};

class RowItems final : public EnumerationItems {
 public:
  explicit RowItems(std::unique_ptr<QueryRows> rows) : _rows(std::move(rows)) {}
  bool hasNext() const override { return _rows->hasNext(); }
  QORuint64 heldBytes() const override { return _rows->heldBytes(); }
  void writeNext(CimXmlWriter& writer) override { _rows->writeNext(writer.text()); }

 private:
  const std::unique_ptr<QueryRows> _rows;
};

std::unique_ptr<ServerReply> openQuery(const ServerCall& call, EnumerationContexts& contexts,
                                       const ServerLimits& limits) {
  serverparameters::allowOnly(call, {"FilterQueryLanguage", "FilterQuery", "ReturnQueryResultClass", "OperationTimeout",
                                     "ContinueOnError", "MaxObjectCount"});
  ServerObjects(call).requireNameSpace();
  const EnumerationParameters parameters(call.request, limits);
  EnumerationContexts::Turn turn = contexts.open(call, EnumerationContexts::Kind::Instances, parameters.betweenPulls);
  std::unique_ptr<QueryRows> rows = runQuery(call, "FilterQueryLanguage", "FilterQuery", limits);
  std::optional<CimClassDeclaration> resultClass;
  if (call.request.flag("ReturnQueryResultClass", false)) resultClass = rows->resultClass();
  turn.setItems(std::make_unique<RowItems>(std::move(rows)));
  auto reply = std::make_unique<EnumerationReply>(call, std::move(turn), parameters.most);
  if (resultClass) reply->setResultClass(std::move(*resultClass));
  return reply;
}

}  // namespace

void addQueryOperations(ServerOperations& operations, const std::shared_ptr<EnumerationContexts>& contexts,
                        const ServerLimits& limits) {
  operations.add("ExecQuery", [contexts, limits](const ServerCall& call) {
    serverparameters::allowOnly(call, {"QueryLanguage", "Query"});
    std::unique_ptr<QueryRows> rows = runQuery(call, "QueryLanguage", "Query", limits);
    EnumerationContexts::Hold hold = contexts->hold(call, rows->heldBytes());
    return std::make_unique<RowsReply>(call, std::move(rows), std::move(hold));
  });
  operations.add("OpenQueryInstances",
                 [contexts, limits](const ServerCall& call) { return openQuery(call, *contexts, limits); });
}
