#include "application/import/mail/mail_origin.h"

#include <algorithm>
#include <array>
#include <string>

#include "application/import/mail/decoded_text.h"
#include "application/import/mail/header_fields.h"
#include "application/import/mail/mail_message.h"

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
  return !keyword.empty() && keyword != "no";
}

bool hasBulkPrecedence(const HeaderFields& fields) {
  const auto keyword = keywordOf(fields.raw(HeaderField::precedence));
  return keyword == "bulk" || keyword == "list" || keyword == "junk" || keyword == "auto_reply";
}

bool isDeliveryReport(const HeaderFields& fields) {
  return keywordOf(fields.raw(HeaderField::contentType)) == "multipart/report";
}

/// "-drive-shares-noreply-" for "drive.shares_noreply2": words between dashes, so that a search finds whole words only.
std::string wordsOfMailbox(std::string_view address) {
  std::string words = "-";
  for (const char byte : address.substr(0, address.rfind('@'))) {
    const bool separates = std::string_view{"-_.+=0123456789"}.contains(byte);
    if (!separates) {
      words += byte;
    } else if (words.back() != '-') {
      words += '-';
    }
  }
  return words.back() == '-' ? words : words + '-';
}

bool isMachineMailbox(std::string_view address) {
  constexpr std::array anywhere{"-noreply-",      "-no-reply-",  "-donotreply-",
                                "-do-not-reply-", "-dontreply-", "-dont-reply-"};
  constexpr std::array atStart{"-mailer-daemon-", "-mailerdaemon-", "-postmaster-", "-bounce-", "-bounces-"};
  const auto words = wordsOfMailbox(address);
  return std::ranges::any_of(anywhere, [&](const char* name) { return words.contains(name); }) ||
         std::ranges::any_of(atStart, [&](const char* name) { return words.starts_with(name); });
}

} // namespace

bool isListMail(const HeaderFields& fields) noexcept {
  return fields.has(HeaderField::listID) || fields.has(HeaderField::listPost) ||
         fields.has(HeaderField::listUnsubscribe);
}

bool isAutomatedMail(const HeaderFields& fields, const MailAddress& sender) {
  return fields.has(HeaderField::listID) || isAutoSubmitted(fields) || hasBulkPrecedence(fields) ||
         isDeliveryReport(fields) || isMachineMailbox(sender.address);
}

bool isForwardSubject(std::string_view subject) {
  constexpr std::array prefixes{"fwd:", "fw:", "wg:", "tr:", "rv:", "enc:", "doorst:", "转发:", "转发："};
  const auto lower = lowerCasedAscii(subject.starts_with('[') ? subject.substr(1) : subject);
  return std::ranges::any_of(prefixes, [&](const char* prefix) { return lower.starts_with(prefix); });
}

} // namespace orvan
