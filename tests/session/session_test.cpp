#include "application/session/session.h"

#include <gtest/gtest.h>

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
  EXPECT_EQ(faultOf([&] { return session.personKeyOf("Ada"); }), SessionError::personUnknown);
  session.writableStore().write([](Connection& store) {
    store.executeScript(R"sql(
INSERT INTO person VALUES ('p1', 'Ada', ''), ('p2', 'Kim', ''), ('p3', 'Kim', '');
INSERT INTO identity_membership VALUES ('m', 'i', 'p1', 'confirmed', NULL);
INSERT INTO interaction_participant VALUES ('i', 'mail');
)sql");
  });
  EXPECT_TRUE(session.people().empty()) << "as they were read";
  session.readPeopleAgain();
  EXPECT_EQ(session.people(), (std::vector{ProjectedPerson{"p1", "Ada"}}));
  EXPECT_EQ(session.personKeyOf("ada"), "p1");
  EXPECT_EQ(session.personKeyOf("p3"), "p3");
  EXPECT_EQ(faultOf([&] { return session.personKeyOf("Kim"); }), SessionError::personAmbiguous);
}

} // namespace
} // namespace orvan
