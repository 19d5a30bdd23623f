#include "OrvanSpineCore/internal/contact_by_person.h"

namespace orvan::internal {
namespace {

// How many of the mails in company the user sent: with it, sent + sent_in_company went to the identity in that week,
// and received + in_company - sent_in_company came from it.
//
// The table is in the order of the weeks. The index has the same rows in the order of the identities, whole, so that
// one person's weeks lie on a page or two.
constexpr const char* weeksByIdentity = R"sql(
ALTER TABLE contact_week ADD COLUMN sent_in_company INTEGER NOT NULL DEFAULT 0;

CREATE INDEX contact_week_by_identity
  ON contact_week (source_identity_id, week, sent, received, in_company, sent_in_company, met);
)sql";

// Only those are looked at to whom the user sent more than the weeks tell: few people get a mail to that many.
constexpr const char* countSentInCompany = R"sql(
UPDATE contact_week
SET sent_in_company = mails.sent - contact_week.sent
FROM (
  SELECT strftime('%s', i.occurred_at) / 604800 AS week, present.source_identity_id AS identity, count(*) AS sent
  FROM contact_span span
  CROSS JOIN interaction_participant present ON present.source_identity_id = span.source_identity_id
  CROSS JOIN interaction i ON i.id = present.interaction_id AND i.kind = 'message' AND i.direction = 'outbound'
  WHERE span.mails_to > (SELECT total(told.sent) FROM contact_week told
                         WHERE told.source_identity_id = span.source_identity_id)
  GROUP BY 1, 2
) mails
WHERE contact_week.week = mails.week AND contact_week.source_identity_id = mails.identity
  AND mails.sent > contact_week.sent;
)sql";

// When the latest mail went to the identity, and when the latest came from it; the later of them is last_mail_at. One
// identity is looked at after the other, so that a long history takes no more memory than a short one.
constexpr const char* lastMailEachWay = R"sql(
ALTER TABLE contact_span ADD COLUMN last_mail_to_at TEXT;
ALTER TABLE contact_span ADD COLUMN last_mail_from_at TEXT;

UPDATE contact_span
SET (last_mail_to_at, last_mail_from_at) = (
  SELECT max(CASE i.direction WHEN 'outbound' THEN i.occurred_at END),
         max(CASE i.direction WHEN 'inbound' THEN i.occurred_at END)
  FROM interaction_participant present
  JOIN interaction i ON i.id = present.interaction_id AND i.kind = 'message'
  WHERE present.source_identity_id = contact_span.source_identity_id)
WHERE last_mail_at IS NOT NULL;
)sql";

} // namespace

void createWhatTellsOfContactByPerson(Connection& connection) {
  for (const char* script : {weeksByIdentity, countSentInCompany, lastMailEachWay}) {
    connection.executeScript(script);
  }
}

} // namespace orvan::internal
