#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// Identifiers that the importer gives to what it reads. The same text always gives the same identifier, so a mail or
/// meeting read twice is recognised; and rows that belong to one person begin alike, so that they lie together in the
/// store: reading a person's history then touches few pages. Among those the mails lie in the order of time, so that
/// an import, which mostly goes forward in time, writes few pages per person.

/// `length` letters and digits that stand for `text` (5 bits of its SHA-256 digest each).
std::string stableID(std::string_view text, std::size_t length);

/// Stands for a Message-ID: 60 bits of its digest. A number, because every mail refers to several: the store and a
/// batch hold more of these than of anything else.
enum class MailKey : std::int64_t {};
MailKey mailKeyOf(std::string_view messageID);

/// Stands for somebody's address.
std::string identityIDOf(std::string_view address);

/// Stands for the person whom an identity is taken for until the user says otherwise.
std::string personIDOf(std::string_view identityID);

/// Stands for `text` and lies beside everything else of `identityID`.
std::string clusteredID(std::string_view identityID, std::string_view text);

/// Stands for a mail of that time, and lies among those of `identityID` in the order of time, to the minute.
std::string clusteredID(std::string_view identityID, Instant sentAt, MailKey mail);

/// How the identifiers of a mail end, whoever's they lie among: the last letters of each, as many as
/// lengthOfMailIDEnding says.
inline constexpr std::size_t lengthOfMailIDEnding = 8;
std::string endingOfMailID(MailKey mail);

} // namespace orvan
