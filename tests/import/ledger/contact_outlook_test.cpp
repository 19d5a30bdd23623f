#include "OrvanObservatory/contact_outlook.h"

#include "import_store.h"

namespace orvan {
namespace {

class Outlooks : public testing::Test {
 protected:
  /// As many letters to the person, one a day from then on.
  void write(const char* to, std::string_view from, int letters) {
    std::vector<TestMail> mails;
    for (int day = 0; day < letters; ++day) {
      const auto at = formatInternetDateTime(instantByAddingDays(instantOf(from), day));
      mails.push_back({.id = to + at, .at = at, .from = me, .to = {to}});
    }
    store.import(mails);
  }

  ImportStore store;
};

TEST_F(Outlooks, WeighWhatIsExchangedByHowLatelyItWas) {
  write(zoe, "2026-02-25T10:00:00Z", 3);
  write(ben, "2025-12-01T10:00:00Z", 3);
  write("cleo@out.example", "2024-01-01T10:00:00Z", 3);
  EXPECT_GT(store.outlook(zoe).exchange, store.outlook(ben).exchange);
  EXPECT_GT(store.outlook(ben).exchange, 0);
  EXPECT_EQ(store.outlook("cleo@out.example").exchange, 0);
  EXPECT_TRUE(store.outlook("cleo@out.example").isAcquainted);
  EXPECT_FALSE(store.outlook(ben, instantOf("2025-11-30T10:00:00Z")).isAcquainted) << "not yet";
}

TEST_F(Outlooks, TellWhoCanHaveAReason) {
  write(zoe, "2026-02-25T10:00:00Z", 3);
  write(ben, "2025-06-01T10:00:00Z", 1);
  write(ben, "2026-02-25T10:00:00Z", 1);
  const auto asked = instantOf("2026-01-10T12:00:00Z");
  const std::string cleo = "cleo@out.example";
  store.import({{.id = "asked", .at = "2026-01-10T10:00:00Z", .from = cleo},
                {.id = "answer", .at = "2026-01-12T10:00:00Z", .from = me, .to = {cleo}, .references = {"asked"}}});
  EXPECT_FALSE(store.outlook(zoe).canHaveReason()) << "contact as ever";
  EXPECT_TRUE(store.outlook(ben).mayHaveResumed);
  EXPECT_FALSE(store.outlook(ben, instantOf("2026-06-01T10:00:00Z")).canHaveReason());
  EXPECT_FALSE(store.outlook(cleo).canHaveReason()) << "answered";
  EXPECT_TRUE(store.outlook(cleo, asked).waitingSince) << "on the day before the answer it may have waited";
  EXPECT_FALSE(store.outlook(cleo, asked).isAcquainted);
  EXPECT_FALSE(store.outlook(cleo, instantOf("2025-12-01T10:00:00Z")).canHaveReason()) << "not written yet";

  store.run("DELETE FROM contact_span");
  EXPECT_TRUE(store.outlook(zoe).canHaveReason()) << "nobody whose interactions are not counted is passed over";
}

TEST_F(Outlooks, ComeInTheOrderInWhichALookIsWorthwhile) {
  write(zoe, "2026-01-20T10:00:00Z", 5);
  write(ben, "2026-01-20T10:00:00Z", 1);
  write("asks@out.example", "2026-01-20T10:00:00Z", 1);
  write("idle@out.example", "2026-02-20T10:00:00Z", 9);
  write("old@out.example", "2025-06-01T10:00:00Z", 9);
  store.import({{.id = "1", .from = ben},
                {.id = "2", .from = zoe},
                {.id = "3", .from = "asks@out.example", .question = "Shall we meet?"},
                {.id = "4", .from = "stranger@out.example"},
                {.id = "5", .at = "2025-07-01T10:00:00Z", .from = "old@out.example"}});
  Texts order;
  for (const auto& outlook :
       store.queue.read([](Connection& connection) { return contactOutlooks(ImportStore::asOf(), connection); })) {
    order.push_back(outlook.displayName);
  }
  EXPECT_THAT(order, testing::ElementsAre("asks@out.example", zoe, ben, "stranger@out.example", "old@out.example",
                                          "idle@out.example"));
}

TEST_F(Outlooks, CountTheMailsEachWayAndTheLatestOfThem) {
  const auto counts = [this](const char* who) {
    return store.texts(
        "SELECT mails_to || ' ' || mails_from || ' ' || last_mail_at FROM contact_span "
        "WHERE source_identity_id = '" +
        identityIDOf(who) + "'");
  };
  write(zoe, "2026-02-25T10:00:00Z", 3);
  // Sent with a clock that was months ahead, and answered.
  store.import({{.id = "early", .at = "2026-09-01T10:00:00Z"}});
  EXPECT_THAT(counts(zoe), testing::ElementsAre("3 1 2026-09-01T10:00:00Z"));
  store.import({{.id = "answer", .at = "2026-03-02T10:00:00Z", .from = me, .to = {zoe}, .references = {"early"}}});
  EXPECT_THAT(counts(zoe), testing::ElementsAre("4 1 2026-03-02T10:00:00Z"));
}

} // namespace
} // namespace orvan
