#include "application/import/mail/mail_parser.h"

#include <utility>

#include "application/import/mail/body_text.h"
#include "application/import/mail/header_fields.h"
#include "application/import/mail/header_values.h"
#include "application/import/mail/mail_origin.h"
#include "application/import/mail/question_detector.h"

namespace orvan {
namespace {

std::string messageIDOf(const RawMail& mail, const HeaderFields& fields) {
  auto ids = messageIDs(fields.raw(HeaderField::messageID));
  return ids.empty() ? messageIDFromHeader(mail.header()) : std::move(ids.front());
}

std::optional<std::string> questionIn(const HeaderFields& fields, std::string_view body, BodyLines bodyLines) {
  const auto [text, isInvitation] = bodyText(fields, body, bodyLines);
  return text && !isInvitation ? firstQuestion(*text) : std::nullopt;
}

} // namespace

MailParser::MailParser(BodyLines bodyLines) : bodyLines_{bodyLines} {}

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
  if (!message.isAutomated && !isForwardSubject(message.subject)) {
    message.question = questionIn(fields, mail.body(), bodyLines_);
  }
  return message;
}

} // namespace orvan
