#include "application/import/mail/header_values.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_set>

#include "OrvanPlatform/white_space.h"
#include "application/import/address/normal_address.h"
#include "application/import/mail/decoded_text.h"
#include "application/import/mail/gmime.h"
#include "application/import/mail/header_fields.h"

namespace orvan {
namespace {

constexpr std::size_t mostReferences = 100;
constexpr std::size_t longestMessageID = 1000;

// --- Addresses ------------------------------------------------------------------------------------------------------

/// GMime goes one call deeper for each colon that could begin a group: enough of them would exhaust the stack. A list
/// that was cut off loses its last entry, which could otherwise be read as another person's address.
std::string addressListText(std::string_view rawValue) {
  constexpr std::size_t mostColons = 200;
  std::string text = unfolded(rawValue);
  if (rawValue.size() > longestFieldValue) {
    text.resize(std::min(text.rfind(','), text.size()));
  }
  std::size_t colons = 0;
  std::ranges::replace_if(text, [&](char byte) { return byte == ':' && ++colons > mostColons; }, ' ');
  return text;
}

void appendMailbox(InternetAddress* mailbox, std::vector<MailAddress>& addresses) {
  const char* written = internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(mailbox));
  if (auto address = normalAddress(onOneLine(written == nullptr ? "" : written))) {
    const char* name = internet_address_get_name(mailbox);
    addresses.push_back({onOneLine(name == nullptr ? "" : name), *std::move(address)});
  }
}

void appendMailboxes(InternetAddressList* list, std::vector<MailAddress>& addresses) {
  for (int index = 0; index < internet_address_list_length(list); ++index) {
    InternetAddress* entry = internet_address_list_get_address(list, index);
    if (INTERNET_ADDRESS_IS_MAILBOX(entry)) {
      appendMailbox(entry, addresses);
    } else if (INTERNET_ADDRESS_IS_GROUP(entry)) {
      appendMailboxes(internet_address_group_get_members(INTERNET_ADDRESS_GROUP(entry)), addresses);
    }
  }
}

// --- Message ids ----------------------------------------------------------------------------------------------------

void appendMessageID(std::string_view text, std::vector<std::string>& ids) {
  auto id = onOneLine(text);
  std::erase(id, ' ');
  if (!id.empty() && id.size() <= longestMessageID) {
    ids.push_back(std::move(id));
  }
}

void appendBracketedIDs(std::string_view text, std::vector<std::string>& ids) {
  for (auto open = text.find('<'); open != std::string_view::npos; open = text.find('<', open + 1)) {
    const auto close = text.find('>', open);
    if (close == std::string_view::npos) {
      return;
    }
    appendMessageID(text.substr(open + 1, close - open - 1), ids);
  }
}

/// Without brackets, only a value that is nothing but ids is believed: old In-Reply-To fields hold prose.
void appendBareIDs(std::string_view text, std::vector<std::string>& ids) {
  while (!text.empty()) {
    const auto end = std::min(text.find(' '), text.size());
    appendMessageID(text.substr(0, end), ids);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  if (ids.size() > 1 && !std::ranges::all_of(ids, [](const std::string& id) { return id.contains('@'); })) {
    ids.clear();
  }
}

// --- Ids from headers -----------------------------------------------------------------------------------------------

/// Mail programs keep their own notes about a mail in these fields and rewrite them as it is read, tagged or moved.
bool isKeptByMailProgram(std::string_view name) {
  constexpr std::array prefixes{"content-length",   "lines",    "status", "x-gmail-labels", "x-imap", "x-keywords",
                                "x-mozilla-status", "x-status", "x-uid",  "x-mozilla-keys"};
  const auto lower = lowerCasedAscii(name);
  return std::ranges::any_of(prefixes, [&](const char* prefix) { return lower.starts_with(prefix); });
}

std::string lastingFields(std::string_view header) {
  std::string lasting;
  HeaderScanner scanner{header};
  while (const auto field = scanner.next()) {
    if (!isKeptByMailProgram(field->name)) {
      lasting.append(lowerCasedAscii(field->name)).append(":").append(unfolded(field->value)).append("\n");
    }
  }
  return lasting;
}

std::string sha256Hex(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::array<unsigned char, 32> digest{};
  EVP_Digest(text.data(), text.size(), digest.data(), nullptr, EVP_sha256(), nullptr);
  std::string hex;
  for (const unsigned byte : digest) {
    hex += digits[byte >> 4U];
    hex += digits[byte & 15U];
  }
  return hex;
}

} // namespace

std::vector<MailAddress> mailAddresses(std::string_view rawValue) {
  prepareGMime();
  std::vector<MailAddress> addresses;
  const auto text = addressListText(rawValue);
  const GMimeAddresses list{text.empty() ? nullptr : internet_address_list_parse(nullptr, text.c_str())};
  if (list != nullptr) {
    appendMailboxes(list.get(), addresses);
  }
  return addresses;
}

std::string readableText(std::string_view rawValue) {
  prepareGMime();
  const GMimeText decoded{g_mime_utils_header_decode_text(nullptr, unfolded(rawValue).c_str())};
  return onOneLine(decoded == nullptr ? "" : decoded.get());
}

std::optional<Instant> mailDate(std::string_view rawValue) {
  constexpr Instant end = std::chrono::sys_days{std::chrono::year{10000} / 1 / 1};
  prepareGMime();
  const GMimeDate date{g_mime_utils_header_decode_date(unfolded(rawValue).c_str())};
  if (date == nullptr) {
    return std::nullopt;
  }
  const Instant instant{std::chrono::seconds{g_date_time_to_unix(date.get())}};
  return instant >= Instant{} && instant < end ? std::optional{instant} : std::nullopt;
}

std::vector<std::string> messageIDs(std::string_view rawValue) {
  std::vector<std::string> ids;
  const auto text = unfolded(rawValue);
  if (text.contains('<')) {
    appendBracketedIDs(text, ids);
  } else {
    appendBareIDs(text, ids);
  }
  return ids;
}

std::vector<std::string> referencesOf(const HeaderFields& fields, const std::string& messageID) {
  std::vector<std::string> references;
  std::unordered_set<std::string> known{messageID};
  for (const auto field : {HeaderField::references, HeaderField::inReplyTo}) {
    for (auto& id : messageIDs(fields.raw(field))) {
      if (known.insert(id).second) {
        references.push_back(std::move(id));
      }
    }
  }
  if (references.size() > mostReferences) {
    // The first names the conversation, the last ones where in it this mail belongs.
    const auto dropped = static_cast<std::ptrdiff_t>(references.size() - mostReferences);
    references.erase(references.begin() + 1, references.begin() + 1 + dropped);
  }
  return references;
}

std::string messageIDFromHeader(std::string_view header) {
  return "header-sha256-" + sha256Hex(lastingFields(header));
}

} // namespace orvan
