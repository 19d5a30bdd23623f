#include "application/import/ledger/card_importer.h"

#include <fstream>

#include "application/import/ledger/identity_moves.h"
#include "application/import/ledger/person_names.h"
#include "import_store.h"

namespace orvan {
namespace {

using testing::UnorderedElementsAre;

constexpr const char* mill = "zoe@mill.example";

class ImportedCards : public testing::Test {
 protected:
  CardReport import(const std::vector<std::pair<std::string, Texts>>& cards) {
    const auto file = store.folder.path() / "cards.vcf";
    std::ofstream stream(file);
    for (const auto& [name, addresses] : cards) {
      stream << "BEGIN:VCARD\nFN:" << name << '\n';
      for (const auto& address : addresses) {
        stream << "EMAIL:" << address << '\n';
      }
      stream << "END:VCARD\n";
    }
    stream.close();
    CardSource source(file);
    return CardImporter(store.queue, ImportStore::context()).import(source);
  }

  Texts livePeople() {
    return store.texts("SELECT DISTINCT canonical_person_id FROM identity_membership WHERE ended_at IS NULL");
  }

  ImportStore store;
};

TEST_F(ImportedCards, NameAndJoinWhoeverIsWrittenToNowOrLater) {
  store.import({{.id = "a", .from = me, .to = {zoe}}, {.id = "b", .fromName = "Zo"}, {.id = "c", .from = ben}});
  const auto report = import({{"Zoë Marsh", {mill, zoe}}, {"Mira", {me, "mira@mill.example"}}});
  EXPECT_EQ(report.imported, 1);
  EXPECT_EQ(report.skipped.at(CardSkip::own), 1);
  EXPECT_THAT(store.people(), UnorderedElementsAre("Zoë Marsh", ben));
  store.import({{.id = "d",
                 .at = "2026-03-02T10:00:00Z",
                 .from = mill,
                 .fromName = "Zoe at work",
                 .question = "Will you come?"}});
  EXPECT_THAT(store.people(), UnorderedElementsAre("Zoë Marsh", ben)) << "the mail of both is one person's";
  EXPECT_EQ(store.commitments().size(), 1U);
  const auto again = import({{"Zoë Marsh", {mill, zoe}}});
  EXPECT_EQ(again.known, 1);
  EXPECT_EQ(again.joined, 0);
  import({{"Zoë Hill", {mill, zoe}}});
  EXPECT_THAT(store.people(), UnorderedElementsAre("Zoë Hill", ben)) << "the card was brought up to date";
}

TEST_F(ImportedCards, SayNothingAgainstTheUserOrEachOther) {
  store.import({{.id = "a"}, {.id = "b", .from = mill}, {.id = "c", .from = ben}});
  import({{"Zoë Marsh", {mill, zoe}}});
  store.queue.write([](Connection& connection) {
    const auto own = personIDForItself(identityIDOf(mill), connection);
    makePersonFor(identityIDOf(mill), own, "2026-03-05T12:00:00Z", connection);
    moveIdentity(identityIDOf(mill), own, "2026-03-05T12:00:00Z", connection);
    renamePerson(own, "The mill", connection);
  });
  const auto report =
      import({{"Zoë Marsh", {mill, zoe}}, {"Ben", {ben, "shared@out.example"}}, {"Pat", {"shared@out.example"}}});
  EXPECT_EQ(report.keptApart, 1);
  EXPECT_EQ(report.ambiguous, 1);
  EXPECT_THAT(store.people(), UnorderedElementsAre("Zoë Marsh", "The mill", "Ben"));
  EXPECT_EQ(livePeople().size(), 3U) << "an address that two cards have is nobody's yet";
}

} // namespace
} // namespace orvan
