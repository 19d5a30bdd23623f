#include "application/import/ledger/mail_batch.h"

#include <algorithm>
#include <span>
#include <utility>

#include "application/import/ledger/bounded_text.h"
#include "application/import/mail/question_detector.h"

namespace orvan {
namespace {

/// Nobody writes to so many people one by one; a mail with more is told from its first ones.
constexpr std::size_t mostParticipants = 200;
constexpr std::size_t mostNamed = 50;

using Mailboxes = std::span<const MailAddress>;

/// Who is on a mail, told apart with what is known of addresses.
class Readers {
 public:
  Readers(const MailMessage& message, const KnownAddresses& known, PeopleLedger& people)
      : message_(message), known_(known), people_(people) {}

  bool isOwn(const MailAddress& mailbox) const { return known_.own.contains(mailbox.address); }
  bool isList(const MailAddress& mailbox) const {
    const auto& [identityID, kind] = people_.mailbox(mailbox.address);
    return kind == MailboxKind::list || known_.listIdentityIDs.contains(identityID);
  }
  const std::string& identityIDOf(const MailAddress& mailbox) const {
    return people_.mailbox(mailbox.address).identityID;
  }

  bool isFromUser() const { return anyOwn(message_.from); }
  bool namesUser() const { return anyOwn(message_.to) || anyOwn(message_.cc); }

  /// Whether nobody but the user is addressed. A list beside the user does not make a crowd, and readers of a copy are
  /// not addressed.
  bool isToUserAlone() const {
    return anyOwn(message_.to) &&
           std::ranges::all_of(message_.to, [this](const auto& reader) { return isOwn(reader) || isList(reader); });
  }

  /// Whether it names nobody but the user, not even a list, as newsletters do.
  bool isToNobodyElse() const {
    const auto isMine = [this](const auto& reader) { return isOwn(reader); };
    return std::ranges::all_of(message_.to, isMine) && std::ranges::all_of(message_.cc, isMine);
  }

  /// The people whom a mail of the user's was sent to: those addressed, or else those who got a copy.
  std::vector<const MailAddress*> people() const {
    auto addressed = peopleAmong(message_.to);
    return addressed.empty() ? peopleAmong(message_.cc) : addressed;
  }

  /// The first mailbox that is not the user's, list or not.
  const MailAddress& firstOther() const {
    for (const Mailboxes mailboxes : {Mailboxes{message_.to}, Mailboxes{message_.cc}}) {
      const auto other = std::ranges::find_if_not(mailboxes, [this](const auto& reader) { return isOwn(reader); });
      if (other != mailboxes.end()) {
        return *other;
      }
    }
    return message_.from.front();
  }

 private:
  bool anyOwn(Mailboxes mailboxes) const {
    return std::ranges::any_of(mailboxes, [this](const auto& mailbox) { return isOwn(mailbox); });
  }

  std::vector<const MailAddress*> peopleAmong(Mailboxes mailboxes) const {
    std::vector<const MailAddress*> people;
    for (const auto& mailbox : mailboxes) {
      const bool isListed =
          std::ranges::any_of(people, [&](const auto* other) { return other->address == mailbox.address; });
      if (people.size() < mostParticipants && !isListed && !isOwn(mailbox) && !isList(mailbox)) {
        people.push_back(&mailbox);
      }
    }
    return people;
  }

  const MailMessage& message_;
  const KnownAddresses& known_;
  PeopleLedger& people_;
};

void noteOwn(const MailMessage& message, const Readers& readers, std::set<std::string>& ownAddresses) {
  for (const Mailboxes mailboxes : {Mailboxes{message.from}, Mailboxes{message.to}, Mailboxes{message.cc}}) {
    for (const auto& mailbox : mailboxes) {
      if (readers.isOwn(mailbox)) {
        ownAddresses.insert(mailbox.address);
      }
    }
  }
}

struct Standing {
  PreparedMail::Use use;
  MailStanding standing;
  MailStanding asAnswer = MailStanding::passedOver;
};

Standing standingOf(const MailMessage& message, const Readers& readers) {
  using Use = PreparedMail::Use;
  if (readers.isFromUser()) {
    const bool isNote = readers.isToNobodyElse() && message.references.empty();
    return isNote ? Standing{Use::note, MailStanding::passedOver} : Standing{Use::history, MailStanding::own};
  }
  if (message.isAutomated) {
    return {Use::automated, MailStanding::passedOver};
  }
  if (!readers.namesUser()) {
    return {Use::elsewhere, MailStanding::passedOver, MailStanding::group};
  }
  const auto standing = readers.isToUserAlone() ? MailStanding::direct : MailStanding::group;
  if (message.isBulk && readers.isToNobodyElse()) {
    return {Use::automated, MailStanding::passedOver, standing};
  }
  return {Use::history, standing};
}

std::vector<MailKey> keysOf(std::span<const std::string> messageIDs) {
  std::vector<MailKey> keys;
  keys.reserve(messageIDs.size());
  for (const auto& messageID : messageIDs) {
    keys.push_back(mailKeyOf(messageID));
  }
  return keys;
}

std::vector<std::string> namedOn(const MailMessage& message, const Readers& readers) {
  std::vector<std::string> named;
  for (const Mailboxes mailboxes : {Mailboxes{message.to}, Mailboxes{message.cc}}) {
    for (const auto& mailbox : mailboxes) {
      if (named.size() < mostNamed && !readers.isOwn(mailbox) && !readers.isList(mailbox)) {
        named.push_back(readers.identityIDOf(mailbox));
      }
    }
  }
  std::ranges::sort(named);
  const auto duplicates = std::ranges::unique(named);
  named.erase(duplicates.begin(), duplicates.end());
  return named;
}

std::size_t bytesOf(const PreparedMail& mail) {
  return sizeof(mail) + mail.references.size() * sizeof(MailKey) +
         (mail.participantIdentityIDs.size() + mail.namedIdentityIDs.size()) * sizeof(std::string) +
         mail.subject.size() + mail.messageID.size() + (mail.question ? mail.question->size() : 0);
}

} // namespace

void MailBatch::add(MailMessage message, KnownAddresses& known) {
  for (const auto& address : message.listAddresses) {
    if (!known.own.contains(address)) {
      known.listIdentityIDs.insert(people_.mailbox(address).identityID);
      people_.noteList(address);
    }
  }
  const Readers readers(message, known, people_);
  noteOwn(message, readers, ownAddresses_);
  const auto [use, standing, asAnswer] = standingOf(message, readers);
  PreparedMail mail;
  mail.key = mailKeyOf(message.messageID);
  mail.use = use;
  mail.standing = standing;
  mail.standingAsAnswer = asAnswer;
  mail.sentAt = message.sentAt;
  mail.isReadAgain = message.isReadAgain;
  mail.references = keysOf(message.references);
  if (mail.isFromUser()) {
    for (const auto* reader : readers.people()) {
      mail.participantIdentityIDs.push_back(people_.note(reader->address, reader->displayName, NameSource::others));
    }
    mail.readers = mail.participantIdentityIDs.size();
    mail.principalIdentityID = mail.participantIdentityIDs.empty() ? readers.identityIDOf(readers.firstOther())
                                                                   : mail.participantIdentityIDs.front();
  } else {
    const auto& writer = message.from.front();
    mail.principalIdentityID = people_.note(writer.address, writer.displayName, NameSource::themselves);
    mail.participantIdentityIDs = {mail.principalIdentityID};
    mail.namedIdentityIDs = namedOn(message, readers);
  }
  const bool isDirect = standing == MailStanding::direct || asAnswer == MailStanding::direct;
  if (standing != MailStanding::passedOver || asAnswer != MailStanding::passedOver) {
    mail.subject = leadingCharacters(std::move(message.subject), mostSubjectCharacters);
  }
  if (isDirect) {
    mail.messageID = leadingCharacters(std::move(message.messageID), mostMessageIDCharacters);
  }
  if (isDirect && message.ownWords) {
    mail.question = firstQuestion(*message.ownWords, readerNames(message, known.own));
  }
  bytes_ += bytesOf(mail);
  mails_.push_back(std::move(mail));
}

} // namespace orvan
