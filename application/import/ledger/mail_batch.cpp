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

struct Participant {
  const MailAddress* mailbox;
  NameSource nameSource;
};

bool isOwn(const MailAddress& mailbox, const std::set<std::string>& ownAddresses) {
  return ownAddresses.contains(mailbox.address);
}

/// Everybody on the mail but the user: the sender first, then the readers.
std::vector<Participant> othersOf(const MailMessage& message, const std::set<std::string>& ownAddresses) {
  std::vector<Participant> others;
  const auto addOthers = [&](std::span<const MailAddress> mailboxes, NameSource nameSource) {
    for (const auto& mailbox : mailboxes) {
      if (others.size() == mostParticipants) {
        return;
      }
      const bool isListed = std::ranges::any_of(
          others, [&mailbox](const Participant& other) { return other.mailbox->address == mailbox.address; });
      if (!isListed && !isOwn(mailbox, ownAddresses)) {
        others.push_back({&mailbox, nameSource});
      }
    }
  };
  addOthers(message.from, NameSource::themselves);
  addOthers(message.to, NameSource::others);
  addOthers(message.cc, NameSource::others);
  return others;
}

PreparedMail::Use useOf(const MailMessage& message, bool hasOthers) {
  if (message.isListMail) {
    return PreparedMail::Use::listOnly;
  }
  if (message.isAutomated) {
    return PreparedMail::Use::automated;
  }
  return hasOthers ? PreparedMail::Use::history : PreparedMail::Use::note;
}

std::vector<MailKey> keysOf(std::span<const std::string> messageIDs) {
  std::vector<MailKey> keys;
  keys.reserve(messageIDs.size());
  for (const auto& messageID : messageIDs) {
    keys.push_back(mailKeyOf(messageID));
  }
  return keys;
}

bool hasAThread(PreparedMail::Use use) {
  return use == PreparedMail::Use::history || use == PreparedMail::Use::listOnly;
}

std::size_t bytesOf(const PreparedMail& mail) {
  constexpr std::size_t identityAndItsPerson = 256;
  return sizeof(mail) + mail.references.size() * sizeof(MailKey) +
         mail.participantIdentityIDs.size() * identityAndItsPerson + mail.subject.size() +
         (mail.question ? mail.question->size() : 0);
}

} // namespace

void MailBatch::add(MailMessage message, const std::set<std::string>& ownAddresses) {
  const auto others = othersOf(message, ownAddresses);
  PreparedMail mail;
  mail.key = mailKeyOf(message.messageID);
  mail.use = useOf(message, !others.empty());
  mail.isFromUser =
      std::ranges::any_of(message.from, [&](const auto& mailbox) { return isOwn(mailbox, ownAddresses); });
  mail.isGroup = message.isListMail || others.size() > 1;
  if (mail.use == PreparedMail::Use::history) {
    for (const auto& [mailbox, nameSource] : others) {
      mail.participantIdentityIDs.push_back(people_.note(mailbox->address, mailbox->displayName, nameSource));
    }
  }
  if (hasAThread(mail.use)) {
    mail.principalIdentityID =
        identityIDOf(others.empty() ? message.from.front().address : others.front().mailbox->address);
    mail.references = keysOf(message.references);
    mail.sentAt = message.sentAt;
    mail.subject = leadingCharacters(std::move(message.subject), mostSubjectCharacters);
  }
  if (mail.use == PreparedMail::Use::history && message.ownWords && !mail.isFromUser && !mail.isGroup) {
    mail.question = firstQuestion(*message.ownWords, readerNames(message, ownAddresses));
  }
  bytes_ += bytesOf(mail);
  mails_.push_back(std::move(mail));
}

} // namespace orvan
