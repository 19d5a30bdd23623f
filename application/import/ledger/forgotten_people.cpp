#include "application/import/ledger/forgotten_people.h"

namespace orvan {
namespace {

void passOver(PreparedMail& mail) {
  mail.use = PreparedMail::Use::forgotten;
  mail.standing = MailStanding::passedOver;
  mail.standingAsAnswer = MailStanding::passedOver;
}

} // namespace

ForgottenPeople ForgottenPeople::in(Connection& connection) {
  std::set<std::string, std::less<>> identityIDs;
  auto rows = connection.query("SELECT object_id FROM deletion_tombstone WHERE object_type = 'identity'");
  while (rows.next()) {
    identityIDs.emplace(rows.text(Column{0}));
  }
  return ForgottenPeople(std::move(identityIDs));
}

void ForgottenPeople::leaveOut(std::vector<std::string>& identityIDs) const {
  std::erase_if(identityIDs, [this](const auto& identityID) { return contains(identityID); });
}

void ForgottenPeople::leaveOut(PreparedMail& mail) const {
  if (identityIDs_.empty()) {
    return;
  }
  leaveOut(mail.participantIdentityIDs);
  leaveOut(mail.namedIdentityIDs);
  const bool isTheirs =
      mail.isFromUser() ? mail.readers > 0 && mail.participantIdentityIDs.empty() : contains(mail.principalIdentityID);
  if (isTheirs) {
    passOver(mail);
  }
}

} // namespace orvan
