#include "OrvanObservatory/store_projection_reader.h"

#include <gtest/gtest.h>

#include "tests/support/test_store.h"

namespace orvan {
namespace {

TEST(StoreProjectionReader, ListsInKeyOrderThoseWithEnoughInteractionsThroughLiveIdentities) {
  TestStore store;
  for (const char* person : {"zoe", "ana", "bo", "ended", "doubtful", "stranger"}) {
    store.addPerson(person);
  }
  store.run("UPDATE person SET display_name = 'Zoë' WHERE id = 'zoe'");
  store.run("UPDATE identity_membership SET ended_at = '2026-01-01T00:00:00Z' WHERE canonical_person_id = 'ended'");
  store.run("UPDATE identity_membership SET state = 'low_conf' WHERE canonical_person_id = 'doubtful'");
  store.run("UPDATE identity_membership SET state = 'high_conf' WHERE canonical_person_id = 'bo'");
  for (const char* person : {"zoe", "ana", "bo", "ended", "doubtful"}) {
    store.add(TestInteraction{.id = person, .at = "2026-03-01T10:00:00Z", .person = person});
  }
  store.add(TestInteraction{.id = "second", .at = "2026-03-02T10:00:00Z", .person = "ana"});

  using People = std::vector<ProjectedPerson>;
  EXPECT_EQ(StoreProjectionReader::project(1, store.connection()).people(),
            (People{{"ana", "ana"}, {"bo", "bo"}, {"zoe", "Zoë"}}));
  EXPECT_EQ(StoreProjectionReader::project(2, store.connection()).people(), (People{{"ana", "ana"}}));
  EXPECT_EQ(StoreProjectionReader::project(0, store.connection()).people().size(), 6U);

  store.run(
      "CREATE TABLE damaged AS SELECT CASE id WHEN 'ana' THEN x'00ff' ELSE id END AS id, "
      "x'00ff' AS display_name FROM person");
  store.run("DROP TABLE person");
  store.run("ALTER TABLE damaged RENAME TO person");
  EXPECT_EQ(StoreProjectionReader::project(1, store.connection()).people(), (People{{"bo", ""}, {"zoe", ""}}));
  EXPECT_EQ(StoreProjectionReader::project(0, store.connection()).people().size(), 5U);
}

} // namespace
} // namespace orvan
