#include "application/session/about.h"

#include <gtest/gtest.h>

#include "OrvanPlatform/internet_date_time.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using Reference = AttentionWhyNowEvidenceReference;

/// A mail of Ana's, a meeting with her, and a question that the mail asks.
class AboutAReason : public testing::Test {
 protected:
  AboutAReason() {
    store.addPerson("ana");
    store.add(TestInteraction{.id = "mail", .at = "2026-03-09T08:00:00Z", .thread = "boat"});
    store.add(TestInteraction{.id = "later", .at = "2026-03-09T09:00:00Z", .thread = "sail"});
    store.add(TestInteraction{
        .id = "tea", .at = "2026-03-12T09:00:00Z", .thread = "series", .direction = "mutual", .kind = "meeting"});
    store.add(TestOpenLoop{.id = "asked", .at = "2026-03-09T08:00:01Z", .event = "event-mail"});
    store.connection().executeScript(R"sql(
INSERT INTO thread_text VALUES ('boat', 'The boat'), ('sail', ''), ('series', 'Tea');
INSERT INTO message_text VALUES ('mail', 'm1@hill.example'), ('later', 'header-sha256-0a');
INSERT INTO meeting_text VALUES ('tea', 'Café Sol', 1);
INSERT INTO claim_text VALUES ('claim-asked', 'When do we leave?');
UPDATE claim SET kind = 'asked_question';
)sql");
  }

  About about(const std::vector<Reference>& references, const std::string& person = "ana") {
    return aboutOf(person, references, store.connection());
  }

  const std::vector<Reference> mail{Reference::interaction("mail"), Reference::thread("boat")};
  const std::vector<Reference> both{Reference::interaction("later"), Reference::interaction("mail")};
  const std::vector<Reference> tea{Reference::interaction("tea")};
  const std::vector<Reference> asked{Reference::claimEvidence("evidence-asked"), Reference::openLoop("asked")};
  const About aboutMail{.threadID = "boat", .subject = "The boat", .messageID = "m1@hill.example"};
  TestStore store;
};

TEST_F(AboutAReason, IsReadFromTheRowsItRestsOn) {
  EXPECT_EQ(about(mail), aboutMail);
  EXPECT_EQ(about(both), About{.threadID = "sail"}) << "the latest, which has no subject and no Message-ID";
  EXPECT_EQ(about(tea), (About{.threadID = "series",
                               .title = "Tea",
                               .startsAt = parseInternetDateTime("2026-03-12T09:00:00Z"),
                               .isAllDay = true,
                               .place = "Café Sol"}));
  auto aboutQuestion = aboutMail;
  aboutQuestion.question = "When do we leave?";
  EXPECT_EQ(about(asked), aboutQuestion);
  EXPECT_EQ(about(asked, "ben"), About{}) << "claimed of another";
  store.run("UPDATE claim SET kind = 'promise'");
  EXPECT_EQ(about(asked), aboutMail) << "what the user promised is no question of theirs";
}

TEST_F(AboutAReason, TellsNothingOfWhatIsGoneOrKeptFromBeingShown) {
  store.run("DELETE FROM thread_text WHERE thread_id = 'boat'");
  EXPECT_EQ(about(mail).messageID, aboutMail.messageID) << "the rest of it is still told";
  store.run("DELETE FROM meeting_text");
  EXPECT_EQ(about(tea).title, "Tea");
  store.run("DELETE FROM interaction WHERE id = 'later'");
  EXPECT_EQ(about(both).threadID, "boat");
  for (const auto& [scope, id] : {std::pair{"thread", "boat"}, {"interaction", "mail"}, {"person", "ana"}}) {
    store.run("INSERT INTO exclusion_rule VALUES ('rule', ?, ?, '2026-01-01T00:00:00Z', NULL)", scope, id);
    EXPECT_EQ(about(mail), About{}) << scope;
    EXPECT_EQ(about(asked), About{}) << scope;
    store.run("DELETE FROM exclusion_rule");
  }
  store.run("INSERT INTO deletion_tombstone VALUES ('event-mail', 'source_event', '2026-01-01T00:00:00Z')");
  EXPECT_EQ(about(asked), About{});
  store.run("DELETE FROM claim_text");
  EXPECT_EQ(about(both), About{});
}

} // namespace
} // namespace orvan
