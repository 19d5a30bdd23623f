#include "application/session/shown_items.h"

#include <exception>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/transaction.h"

namespace orvan {
namespace {

void write(std::span<const AttentionCatchUpItem> items, Instant asOf, Connection& connection) {
  for (const auto& item : items) {
    connection.execute(R"sql(
INSERT INTO shown_item (person_id, item_key, shown_at)
VALUES (?, ?, ?)
ON CONFLICT DO UPDATE SET item_key = excluded.item_key, shown_at = excluded.shown_at
WHERE item_key <> excluded.item_key
)sql",
                       item.personKey(), item.itemKey(), formatInternetDateTime(asOf));
  }
}

/// Has the connection wait for nobody until the end of a scope.
class WithoutWaiting {
 public:
  explicit WithoutWaiting(Connection& connection) : connection_(connection) {
    sqlite3_busy_timeout(connection.handle(), 0);
  }
  ~WithoutWaiting() { sqlite3_busy_timeout(connection_.handle(), static_cast<int>(connection_.busyTimeout().count())); }
  WithoutWaiting(const WithoutWaiting&) = delete;
  WithoutWaiting& operator=(const WithoutWaiting&) = delete;

 private:
  Connection& connection_;
};

} // namespace

void rememberShown(std::span<const AttentionCatchUpItem> items, Instant asOf, Session& session) noexcept {
  if (items.empty() || !session.isWritable()) {
    return;
  }
  try {
    session.writableStore().withoutTransaction([&](Connection& connection) {
      const WithoutWaiting inHaste(connection);
      inTransaction(connection, TransactionKind::write, [&](Connection& store) { write(items, asOf, store); });
    });
  } catch (const std::exception&) { // The user is asked once more than needed.
  }
}

std::optional<std::string> keyShownOf(const std::string& personKey, Connection& connection) {
  return connection.fetchOptionalText("SELECT item_key FROM shown_item WHERE person_id = ?", personKey);
}

} // namespace orvan
