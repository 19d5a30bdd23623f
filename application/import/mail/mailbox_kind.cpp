#include "application/import/mail/mailbox_kind.h"

#include <algorithm>
#include <array>
#include <string>

namespace orvan {
namespace {

/// "-drive-shares-noreply-" for "drive.shares_noreply2": words between dashes, so that a search finds whole words only.
std::string dashedWordsOf(std::string_view localPart) {
  std::string words = "-";
  for (const char byte : localPart) {
    const bool separates = std::string_view{"-_.+=0123456789"}.contains(byte);
    if (!separates) {
      words += byte;
    } else if (words.back() != '-') {
      words += '-';
    }
  }
  return words.back() == '-' ? words : words + '-';
}

bool isMachine(std::string_view words) {
  constexpr std::array anywhere{"-noreply-",    "-no-reply-",     "-donotreply-",    "-do-not-reply-", "-dontreply-",
                                "-dont-reply-", "-notification-", "-notifications-", "-autoresponder-"};
  constexpr std::array atStart{"-mailer-daemon-", "-mailerdaemon-", "-postmaster-", "-bounce-", "-bounces-", "-daemon-",
                               "-cron-",          "-root-",         "-nobody-",     "-alerts-", "-www-data-"};
  return std::ranges::any_of(anywhere, [&](const char* name) { return words.contains(name); }) ||
         std::ranges::any_of(atStart, [&](const char* name) { return words.starts_with(name); });
}

bool isList(std::string_view words, std::string_view domain) {
  constexpr std::array endings{"-list-",      "-lists-",   "-devel-",   "-users-",       "-announce-",
                               "-announces-", "-discuss-", "-commits-", "-subscribers-", "-request-"};
  constexpr std::array domains{"lists.", "list.", "groups.", "googlegroups.", "yahoogroups.", "vger.", "freelists."};
  return std::ranges::any_of(endings, [&](const char* name) { return words.ends_with(name); }) ||
         std::ranges::any_of(domains, [&](const char* name) { return domain.starts_with(name); });
}

/// Only where the whole name says so: "support@", and not "maria.support@".
bool isRole(std::string_view localPart) {
  constexpr std::array<std::string_view, 54> roles{
      "abuse",     "accounting",   "accounts",        "admin",       "administrator", "billing",
      "bookings",  "buchhaltung",  "careers",         "commandes",   "contact",       "contacto",
      "contato",   "customercare", "customerservice", "feedback",    "hallo",         "hello",
      "help",      "helpdesk",     "hostmaster",      "hr",          "info",          "infos",
      "inquiries", "invoice",      "invoices",        "jobs",        "kontakt",       "kundenservice",
      "mail",      "marketing",    "membership",      "news",        "newsletter",    "newsletters",
      "office",    "order",        "orders",          "post",        "press",         "presse",
      "reception", "reservations", "sales",           "secretariat", "security",      "service",
      "services",  "shop",         "support",         "team",        "verkauf",       "webmaster"};
  return std::ranges::binary_search(roles, localPart);
}

} // namespace

MailboxKind kindOfMailbox(std::string_view address) {
  const auto at = std::min(address.rfind('@'), address.size());
  const auto localPart = address.substr(0, at);
  const auto words = dashedWordsOf(localPart);
  if (isMachine(words)) {
    return MailboxKind::machine;
  }
  if (isList(words, address.substr(std::min(at + 1, address.size())))) {
    return MailboxKind::list;
  }
  return isRole(localPart) ? MailboxKind::role : MailboxKind::person;
}

} // namespace orvan
