#include "application/import/ledger/own_addresses.h"

#include "import_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr const char* toldAt = "2026-03-05T12:00:00Z";

/// The user and Zoë write to each other, with others, and in a conversation where Ben asks.
const std::vector<TestMail> exampleMails{
    {.id = "first", .at = "2026-02-01T10:00:00Z", .from = me, .to = {zoe}},
    {.id = "asked", .at = "2026-02-02T10:00:00Z", .references = {"first"}, .question = "Shall we?"},
    {.id = "letter", .at = "2026-02-03T10:00:00Z", .from = me, .to = {ben, zoe}},
    {.id = "bens", .at = "2026-02-04T10:00:00Z", .from = ben, .references = {"letter"}, .question = "Who brings it?"},
    {.id = "crowd", .at = "2026-02-05T10:00:00Z", .to = {me, ben}, .references = {"letter", "bens"}},
    {.id = "toBen", .at = "2026-02-06T10:00:00Z", .to = {ben}, .references = {"letter", "bens", "crowd"}},
    {.id = "toZoe", .at = "2026-02-07T10:00:00Z", .from = ben, .to = {zoe}, .references = {"toBen"}},
    {.id = "later", .at = "2026-02-08T10:00:00Z", .references = {"first", "asked"}},
};

void add(const Texts& addresses, ImportStore& store) {
  store.queue.write([&](Connection& connection) { rememberOwnAddresses(addresses, toldAt, connection, ToldBy::user); });
}

GivenUp giveUp(const std::string& address, ImportStore& store) {
  return store.queue.write([&](Connection& connection) { return giveUpOwnAddress(address, toldAt, connection); });
}

/// What there is between the user and others, whatever its threads are called.
Texts contact(ImportStore& store) {
  auto rows = store.rowsOf({"interaction_participant", "identity_membership", "message_text", "own_address_taking",
                            "own_address_question", "outdated_mail"});
  for (const auto* sql :
       {"SELECT id || direction || COALESCE(source_identity_id, '') || occurred_at FROM interaction ORDER BY 1",
        "SELECT interaction_id || question FROM pending_question ORDER BY 1",
        "SELECT source_identity_id || since FROM waiting_thread ORDER BY 1",
        "SELECT message_key || state || is_answered FROM mail_reference ORDER BY 1",
        "SELECT id || state FROM open_loop ORDER BY 1",
        "SELECT sent || received || in_company || source_identity_id FROM contact_week WHERE sent + received > 0"}) {
    std::ranges::copy(store.texts(sql), std::back_inserter(rows));
  }
  std::ranges::copy(store.threads(), std::back_inserter(rows));
  return rows;
}

TEST(OwnAddress, GivenUpBeforeAnythingIsReadLeavesTheStoreAsItWas) {
  ImportStore store;
  store.import(exampleMails);
  store.run("INSERT INTO remembered_source VALUES (1, 'mail', '/mail', 'mail', 1, '', NULL, NULL, NULL, 'me')");
  const auto before = store.rowsOf();
  add({zoe}, store);
  EXPECT_THAT(store.people(), ElementsAre(ben));
  EXPECT_THAT(store.texts("SELECT read_for FROM remembered_source"), ElementsAre("NULL")) << "all is to be read again";
  EXPECT_EQ(giveUp(zoe, store), GivenUp::asItWas);
  store.run("UPDATE remembered_source SET read_for = 'me'");
  EXPECT_THAT(store.rowsOf(), ElementsAreArray(before));
}

TEST(OwnAddress, GivenUpLeavesNothingOnceTheMailIsReadAgain) {
  ImportStore unmistaken;
  unmistaken.import(exampleMails);
  for (const bool isToldFirst : {true, false}) {
    for (const std::size_t mailsPerBatch : {1U, 100U}) {
      SCOPED_TRACE(std::to_string(isToldFirst) + " " + std::to_string(mailsPerBatch));
      ImportStore store;
      store.import(exampleMails, mailsPerBatch, isToldFirst ? Texts{me, zoe} : Texts{me});
      store.import(exampleMails, mailsPerBatch, {me, zoe});
      EXPECT_THAT(store.people(), ElementsAre(ben));
      EXPECT_EQ(giveUp(zoe, store), GivenUp::toBeReadAgain);
      EXPECT_EQ(store.import(exampleMails, mailsPerBatch).imported, 0);
      EXPECT_THAT(contact(store), ElementsAreArray(contact(unmistaken)));
      EXPECT_THAT(store.people(), ElementsAreArray(unmistaken.people()));
      EXPECT_EQ(store.commitments(), unmistaken.commitments());
    }
  }
}

TEST(OwnAddress, ToldLateBringsInTheMailThatWasPassedOver) {
  ImportStore store;
  const std::vector<TestMail> elsewhere{{.id = "a", .to = {"mira@work.example"}},
                                        {.id = "b", .from = "mira@work.example", .to = {ben}}};
  EXPECT_EQ(store.import(elsewhere).elsewhere, 2);
  add({"mira@work.example"}, store);
  EXPECT_EQ(store.import(elsewhere).completed, 2);
  EXPECT_THAT(store.people(), testing::UnorderedElementsAre(zoe, ben));
  EXPECT_THAT(store.queue.read(ownAddresses),
              ElementsAre(OwnAddress{me, ToldBy::import, false}, OwnAddress{"mira@work.example", ToldBy::user, true}));
}

} // namespace
} // namespace orvan
