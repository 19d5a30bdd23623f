#include "application/import/ledger/stable_id.h"

#include <openssl/evp.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <new>
#include <span>

namespace orvan {
namespace {

/// In the order of their codes, so that numbers sort as their letters do.
constexpr std::string_view alphabet = "234567abcdefghijklmnopqrstuvwxyz";
constexpr std::size_t identityLength = 13;
constexpr std::size_t clusterLength = 5;
constexpr std::size_t rowLength = 12;
constexpr unsigned minuteLength = 6;
constexpr unsigned bitsPerLetter = 5;

using Digest = std::array<unsigned char, SHA256_DIGEST_LENGTH>;

struct ContextDeleter {
  void operator()(EVP_MD_CTX* context) const noexcept { EVP_MD_CTX_free(context); }
};
using DigestContext = std::unique_ptr<EVP_MD_CTX, ContextDeleter>;

DigestContext newContext() {
  static const EVP_MD* const algorithm = EVP_MD_fetch(nullptr, "SHA256", nullptr);
  DigestContext context{EVP_MD_CTX_new()};
  if (context == nullptr || EVP_DigestInit_ex2(context.get(), algorithm, nullptr) != 1) {
    throw std::bad_alloc();
  }
  return context;
}

/// Every mail takes half a dozen digests, and setting one up costs more than computing it: each thread keeps its own.
Digest digestOf(std::string_view text) {
  thread_local const DigestContext context = newContext();
  Digest digest{};
  EVP_DigestUpdate(context.get(), text.data(), text.size());
  EVP_DigestFinal_ex(context.get(), digest.data(), nullptr);
  EVP_DigestInit_ex2(context.get(), nullptr, nullptr);
  return digest;
}

/// The five bits of `digest` that begin at bit `position`.
std::size_t fiveBits(std::span<const unsigned char> digest, std::size_t position) {
  const std::size_t byte = position / 8;
  const unsigned pair = static_cast<unsigned>(digest[byte]) << 8U | digest[byte + 1];
  return (pair >> (11 - position % 8)) & 0x1fU;
}

/// The last `length` * 5 bits of `number`.
void appendLetters(std::uint64_t number, std::size_t length, std::string& text) {
  while (length-- > 0) {
    text += alphabet[number >> (length * bitsPerLetter) & 0x1fU];
  }
}

} // namespace

std::string stableID(std::string_view text, std::size_t length) {
  const auto digest = digestOf(text);
  std::string identifier(length, '\0');
  for (std::size_t position = 0; position < length; ++position) {
    identifier[position] = alphabet[fiveBits(digest, position * bitsPerLetter)];
  }
  return identifier;
}

MailKey mailKeyOf(std::string_view messageID) {
  const auto digest = digestOf(messageID);
  std::int64_t key = 0;
  for (std::size_t position = 0; position < rowLength; ++position) {
    key = key << bitsPerLetter | static_cast<std::int64_t>(fiveBits(digest, position * bitsPerLetter));
  }
  return MailKey{key};
}

std::string identityIDOf(std::string_view address) {
  return stableID(address, identityLength);
}

std::string personIDOf(std::string_view identityID) {
  return "p-" + std::string{identityID};
}

std::string clusteredID(std::string_view identityID, std::string_view text) {
  std::string identifier{identityID.substr(0, clusterLength)};
  identifier += stableID(text, rowLength);
  return identifier;
}

/// Two mails of one minute and neighbourhood are told apart by 40 bits.
std::string clusteredID(std::string_view identityID, Instant sentAt, MailKey mail) {
  constexpr std::int64_t lastMinute = (std::int64_t{1} << (minuteLength * bitsPerLetter)) - 1;
  const auto minutes = std::chrono::floor<std::chrono::minutes>(sentAt).time_since_epoch().count();
  std::string identifier{identityID.substr(0, clusterLength)};
  appendLetters(static_cast<std::uint64_t>(std::clamp<std::int64_t>(minutes, 0, lastMinute)), minuteLength, identifier);
  identifier += endingOfMailID(mail);
  return identifier;
}

std::string endingOfMailID(MailKey mail) {
  std::string ending;
  appendLetters(static_cast<std::uint64_t>(mail), lengthOfMailIDEnding, ending);
  return ending;
}

} // namespace orvan
