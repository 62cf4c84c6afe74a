// Update handlers.

#include <algorithm>
#include <mutex>

#include "database_store.h"

namespace store {

namespace {

std::mutex mutex;
std::vector<Registration> handlers;  // in the order of their registration

bool isSame(const Registration& a, const Registration& b) {
  return a.table == b.table && a.event == b.event && a.handler == b.handler;
}

std::vector<Registration> handlersOf(const DbTable* table, u32 watched) {
  std::vector<Registration> found;
  const std::lock_guard lock(mutex);
  for (const Registration& handler : handlers)
    if (handler.table == table && (watched >> handler.event & 1) != 0) found.push_back(handler);
  return found;
}

int request(mco_trans_h t, const Registration& registration) {
  if (const int code = checkWrites(t)) return code;
  if (registration.table == nullptr || registration.event >= registration.table->watched.size()) return DB_BAD_ARGUMENT;
  if (registration.handler != nullptr) t->registrations.push_back(registration);
  return DB_OK;
}

}  // namespace

// A handler may put fields of other rows; those come up too, if they are behind.
void callHandlers(DbTransactionData& t) {
  if (!t.anyWatched) return;
  for (u32 place = 0; place < t.rows.size(); ++place) {
    const HeldRow row = t.rows[place];
    if (row.watched == 0 || row.deleted) continue;
    for (const Registration& handler : handlersOf(row.table, row.watched))
      handler.call(handler.handler, &t, DbRow{&t, t.serial, place});
  }
}

void applyRegistrations(const std::vector<Registration>& registrations) {
  if (registrations.empty()) return;
  const std::lock_guard lock(mutex);
  for (const Registration& registration : registrations) {
    std::erase_if(handlers, [&](const Registration& known) { return isSame(known, registration); });
    if (registration.call != nullptr) handlers.push_back(registration);
  }
}

void forgetHandlers() {
  const std::lock_guard lock(mutex);
  handlers.clear();
}

}  // namespace store

int dbRegisterHandler(mco_trans_h t, const DbTable* table, u32 event, DbHandler* handler, DbCallHandler* call) {
  return store::request(t, {table, event, handler, call});
}

int dbUnregisterHandler(mco_trans_h t, const DbTable* table, u32 event, DbHandler* handler) {
  return store::request(t, {table, event, handler, nullptr});
}
