#include "application/session/session.h"

#include <gtest/gtest.h>

#include "application/session/people_list.h"
#include "application/session/session_error.h"
#include "application/session/store_creation.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

TEST(Session, ThatStaysOpenSeesWhatIsWrittenMeanwhile) {
  deriveKeysQuickly();
  const ScratchFolder folder;
  const SessionSettings settings{.store = folder.path() / "store.db", .keyFile = folder.path() / "key"};
  EXPECT_EQ(createStoreAndKey(settings), KeyOrigin::made);

  Session session(settings);
  session.openForReading();
  EXPECT_EQ(faultOf([&] { return session.personKeyOf("p3"); }), SessionError::personUnknown);
  session.writableStore().write([](Connection& store) {
    store.executeScript(R"sql(
INSERT INTO person VALUES ('p1', 'Ada Ünal', ''), ('p2', 'Kim', ''), ('p3', 'Kim', '');
INSERT INTO source_identity (id, address, display_name, name_rank) VALUES ('i', 'ada@hill.example', '', 0);
INSERT INTO identity_membership VALUES ('m', 'i', 'p1', 'confirmed', NULL);
INSERT INTO interaction_participant VALUES ('i', 'mail');
)sql");
  });
  const auto found = [&](const char* text) { return peopleList(session, text, Instant{}).size(); };
  EXPECT_EQ(found(""), 1U);
  EXPECT_EQ(found("da unAL"), 1U);
  EXPECT_EQ(found("@Hill"), 1U);
  EXPECT_EQ(found("Kim"), 0U) << "never dealt with";
  EXPECT_EQ(session.personKeyOf("ADA@hill.example"), "p1");
  EXPECT_EQ(session.personKeyOf("p3"), "p3");
  EXPECT_EQ(faultOf([&] { return session.personKeyOf("Kim"); }), SessionError::personAmbiguous);
}

} // namespace
} // namespace orvan
