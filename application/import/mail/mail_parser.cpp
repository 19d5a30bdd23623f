#include "application/import/mail/mail_parser.h"

#include <algorithm>
#include <utility>

#include "application/import/mail/body_text.h"
#include "application/import/mail/header_fields.h"
#include "application/import/mail/header_values.h"
#include "application/import/mail/mail_origin.h"
#include "application/import/mail/own_words.h"
#include "application/import/mail/question_detector.h"

namespace orvan {
namespace {

std::string messageIDOf(const RawMail& mail, const HeaderFields& fields) {
  auto ids = messageIDs(fields.raw(HeaderField::messageID));
  return ids.empty() ? messageIDFromHeader(mail.header()) : std::move(ids.front());
}

std::optional<std::string> askingWords(const HeaderFields& fields, std::string_view body, BodyLines bodyLines) {
  const auto [text, isInvitation] = bodyText(fields, body, bodyLines);
  if (!text || isInvitation || !hasQuestionMark(*text)) {
    return std::nullopt;
  }
  auto words = ownWords(*text);
  return hasQuestionMark(words) ? std::optional{std::move(words)} : std::nullopt;
}

} // namespace

MailParser::MailParser(BodyLines bodyLines, std::set<std::string> ownAddresses)
    : bodyLines_{bodyLines}, ownAddresses_{std::move(ownAddresses)} {}

/// Reading bodies takes longer than everything else: what cannot hold a question for the user is left alone.
bool MailParser::mayAskTheUser(const MailMessage& message) const {
  const auto isOwn = [this](const MailAddress& mailbox) { return ownAddresses_.contains(mailbox.address); };
  const bool isPutToUser =
      ownAddresses_.empty() || (std::ranges::none_of(message.from, isOwn) && std::ranges::any_of(message.to, isOwn));
  return isPutToUser && !message.isAutomated && !isForwardSubject(message.subject);
}

MailItem MailParser::parse(const RawMail& mail) const {
  const HeaderFields fields{mail.header()};
  auto from = mailAddresses(fields.raw(HeaderField::from));
  if (from.empty()) {
    return MailSkip{MailSkipReason::noSender};
  }
  const auto sentAt = mailDate(fields.raw(HeaderField::date));
  if (!sentAt) {
    return MailSkip{MailSkipReason::undated};
  }
  MailMessage message;
  message.messageID = messageIDOf(mail, fields);
  message.references = referencesOf(fields, message.messageID);
  message.sentAt = *sentAt;
  message.to = mailAddresses(fields.raw(HeaderField::to));
  message.cc = mailAddresses(fields.raw(HeaderField::cc));
  message.subject = readableText(fields.raw(HeaderField::subject));
  message.isBulk = isBulkMail(fields);
  message.listAddresses = listAddresses(fields);
  message.isAutomated = isAutomatedMail(fields, from.front());
  message.from = std::move(from);
  if (mayAskTheUser(message)) {
    message.ownWords = askingWords(fields, mail.body(), bodyLines_);
  }
  return message;
}

} // namespace orvan
