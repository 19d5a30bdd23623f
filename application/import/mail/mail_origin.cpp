#include "application/import/mail/mail_origin.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "application/import/mail/decoded_text.h"
#include "application/import/mail/header_fields.h"
#include "application/import/mail/header_values.h"
#include "application/import/mail/mail_message.h"
#include "application/import/mail/mailbox_kind.h"

namespace orvan {
namespace {

/// The value without its parameters and comments: "auto-replied" of "auto-replied; owner-email=...".
std::string keywordOf(std::string_view rawValue) {
  auto keyword = lowerCasedAscii(unfolded(rawValue));
  keyword.resize(std::min(keyword.find_first_of("; ("), keyword.size()));
  return keyword;
}

bool isAutoSubmitted(const HeaderFields& fields) {
  const auto keyword = keywordOf(fields.raw(HeaderField::autoSubmitted));
  return (!keyword.empty() && keyword != "no") || keywordOf(fields.raw(HeaderField::precedence)) == "auto_reply";
}

bool hasBulkPrecedence(const HeaderFields& fields) {
  const auto keyword = keywordOf(fields.raw(HeaderField::precedence));
  return keyword == "bulk" || keyword == "list" || keyword == "junk";
}

bool isDeliveryReport(const HeaderFields& fields) {
  return keywordOf(fields.raw(HeaderField::contentType)) == "multipart/report";
}

/// "dev@lists.example" of "<mailto:dev@lists.example?subject=x>" and of "dev@lists.example; contact admin@...".
std::string postingAddress(std::string_view rawValue) {
  constexpr std::string_view scheme = "mailto:";
  auto text = unfolded(rawValue);
  if (const auto found = text.find(scheme); found != std::string::npos) {
    text.erase(0, found + scheme.size());
  }
  text.resize(std::min(text.find_first_of("?>;, "), text.size()));
  return text;
}

} // namespace

bool isBulkMail(const HeaderFields& fields) {
  return fields.has(HeaderField::listID) || fields.has(HeaderField::listPost) ||
         fields.has(HeaderField::listUnsubscribe) || fields.has(HeaderField::mailingList) || hasBulkPrecedence(fields);
}

std::vector<std::string> listAddresses(const HeaderFields& fields) {
  std::vector<std::string> addresses;
  for (const auto field : {HeaderField::listPost, HeaderField::mailingList}) {
    for (auto& mailbox : mailAddresses(postingAddress(fields.raw(field)))) {
      addresses.push_back(std::move(mailbox.address));
    }
  }
  return addresses;
}

bool isAutomatedMail(const HeaderFields& fields, const MailAddress& sender) {
  return isAutoSubmitted(fields) || isDeliveryReport(fields) || kindOfMailbox(sender.address) == MailboxKind::machine;
}

bool isForwardSubject(std::string_view subject) {
  constexpr std::array prefixes{"fwd:", "fw:", "wg:", "tr:", "rv:", "enc:", "doorst:", "转发:", "转发："};
  const auto lower = lowerCasedAscii(subject.starts_with('[') ? subject.substr(1) : subject);
  return std::ranges::any_of(prefixes, [&](const char* prefix) { return lower.starts_with(prefix); });
}

} // namespace orvan
