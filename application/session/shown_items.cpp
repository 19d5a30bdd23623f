#include "application/session/shown_items.h"

#include <exception>
#include <nlohmann/json.hpp>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

/// One statement, and so a transaction by itself: a Transaction would wait for its turn.
void write(std::span<const AttentionCatchUpItem> items, Instant asOf, Connection& connection) {
  auto shown = nlohmann::json::array();
  for (const auto& item : items) {
    shown.push_back({item.personKey(), item.itemKey()});
  }
  connection.execute(R"sql(
INSERT INTO shown_item (person_id, item_key, shown_at)
SELECT json_extract(value, '$[0]'), json_extract(value, '$[1]'), ?2
FROM json_each(?1)
WHERE TRUE
ON CONFLICT DO UPDATE SET item_key = excluded.item_key, shown_at = excluded.shown_at
WHERE item_key <> excluded.item_key
)sql",
                     shown.dump(), formatInternetDateTime(asOf));
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
      write(items, asOf, connection);
    });
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the user is asked once more than needed.
  }
}

std::optional<std::string> keyShownOf(const std::string& personKey, Connection& connection) {
  return connection.fetchOptionalText("SELECT item_key FROM shown_item WHERE person_id = ?", personKey);
}

} // namespace orvan
