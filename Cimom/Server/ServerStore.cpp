// The statements behind each operation.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerStore.h"

using Lasting = StoreTransaction::Lasting;

std::vector<ServerStore::Instance> ServerStore::instances() {
  StoreTransaction reading(_file, Lasting::Process);
  std::vector<Instance> found;
  StoreFile::Run run = _file.run("SELECT namespace, path, document, gone FROM instance ORDER BY place");
  while (run.next()) found.push_back({run.text(0), run.text(1), run.text(2), run.number(3) != 0});
  return found;
}

ServerStore::Listener ServerStore::listener(const std::string& path, const std::string& context) {
  StoreTransaction transaction(_file, Lasting::Process);
  _file.run("INSERT OR IGNORE INTO listener(path, context, next, dropped) VALUES(?, ?, 0, 0)")
      .bind(path)
      .bind(context)
      .finish();
  Listener found;
  {
    StoreFile::Run run = _file.run(
        "SELECT id, context, next, dropped, (SELECT count(*) FROM queued WHERE listener = listener.id)"
        " FROM listener WHERE path = ?");
    if (run.bind(path).next()) found = {run.number(0), run.text(1), run.number(2), run.number(3), run.number(4)};
  }
  transaction.commit();
  return found;
}

std::vector<std::pair<std::string, std::int64_t>> ServerStore::listeners() {
  StoreTransaction reading(_file, Lasting::Process);
  std::vector<std::pair<std::string, std::int64_t>> found;
  StoreFile::Run run = _file.run("SELECT path, id FROM listener ORDER BY id");
  while (run.next()) found.emplace_back(run.text(0), run.number(1));
  return found;
}

std::vector<ServerStore::Queued> ServerStore::queued(std::int64_t listener, std::size_t most) {
  StoreTransaction reading(_file, Lasting::Process);
  std::vector<Queued> found;
  StoreFile::Run run =
      _file.run("SELECT number, subscription, document FROM queued WHERE listener = ? ORDER BY number LIMIT ?");
  run.bind(listener).bind(static_cast<std::int64_t>(most));
  while (run.next()) found.push_back({run.number(0), run.text(1), run.text(2)});
  return found;
}

bool ServerStore::remove(std::int64_t listener, std::int64_t number, bool isDropped) {
  StoreTransaction transaction(_file, Lasting::Process);
  const int count =
      _file.run("DELETE FROM queued WHERE listener = ? AND number = ?").bind(listener).bind(number).finish();
  if (isDropped && count > 0) {
    _file.run("UPDATE listener SET dropped = dropped + 1 WHERE id = ?").bind(listener).finish();
  }
  transaction.commit();
  return count > 0;
}

int ServerStore::Change::removeOf(std::int64_t listener, const std::string& subscription) {
  const int count = _file.run("DELETE FROM queued WHERE listener = ? AND subscription = ?")
                        .bind(listener)
                        .bind(subscription)
                        .finish();
  _file.run("UPDATE listener SET dropped = dropped + ? WHERE id = ?").bind(count).bind(listener).finish();
  return count;
}

void ServerStore::Change::forget(std::int64_t listener) {
  _file.run("DELETE FROM queued WHERE listener = ?").bind(listener).finish();
  _file.run("DELETE FROM listener WHERE id = ?").bind(listener).finish();
}

void ServerStore::Change::create(const Instance& instance) { put(instance, false); }

void ServerStore::Change::modify(const Instance& instance) { put(instance, true); }

// What was there before stays what it is: created here, or over one that is declared elsewhere.
void ServerStore::Change::put(const Instance& instance, bool isOver) {
  _file
      .run(
          "INSERT INTO instance(path, namespace, document, over, gone) VALUES(?, ?, ?, ?, 0)"
          " ON CONFLICT(path) DO UPDATE SET document = excluded.document, gone = 0")
      .bind(instance.path)
      .bind(instance.nameSpace)
      .bind(instance.document)
      .bind(isOver ? 1 : 0)
      .finish();
}

void ServerStore::Change::remove(const Instance& instance) {
  const int ours = _file.run("DELETE FROM instance WHERE path = ? AND over = 0").bind(instance.path).finish();
  if (ours > 0) return;
  put(instance, true);
  _file.run("UPDATE instance SET gone = 1 WHERE path = ?").bind(instance.path).finish();
}

void ServerStore::Change::queue(std::int64_t listener, const Queued& queued) {
  _file.run("INSERT INTO queued(listener, number, subscription, document) VALUES(?, ?, ?, ?)")
      .bind(listener)
      .bind(queued.number)
      .bind(queued.subscription)
      .bind(queued.document)
      .finish();
}

void ServerStore::Change::count(std::int64_t listener, std::int64_t next, std::int64_t dropped) {
  _file.run("UPDATE listener SET next = ?, dropped = dropped + ? WHERE id = ?")
      .bind(next)
      .bind(dropped)
      .bind(listener)
      .finish();
}
