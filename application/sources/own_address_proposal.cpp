#include "application/sources/own_address_proposal.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

#include "OrvanPlatform/error.h"
#include "application/import/address/normal_address.h"
#include "application/import/mail/mail_file.h"
#include "application/import/mail/mail_parser.h"
#include "application/import/mail/mbox_source.h"
#include "application/sources/mail_folders.h"
#include "application/sources/settings_file.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;
using Ground = ProposedAddress::Ground;

constexpr std::chrono::seconds longestLook{4};
/// Of the mailbox's oldest mails, and of its newest: people change their addresses.
constexpr std::size_t oldest = 100;
constexpr std::size_t newest = 200;
constexpr std::uint64_t bytesOfNewest = std::uint64_t{2} * 1024 * 1024;
constexpr std::size_t mostProposed = 8;

/// Bodies are read only of mail to the user, and so is none when that is nobody.
const std::set<std::string>& nobody() {
  static const std::set<std::string> nobody{""};
  return nobody;
}

void propose(const std::string& written, std::vector<ProposedAddress>& proposed) {
  const auto address = normalAddress(written);
  if (address && std::ranges::find(proposed, *address, &ProposedAddress::address) == proposed.end()) {
    proposed.push_back({*address, Ground::settings, true});
  }
}

/// Thunderbird's lines of the form: user_pref("mail.identity.id1.useremail", "robin@orvan.example");
void proposeIdentitiesOf(const fs::path& profile, std::vector<ProposedAddress>& proposed) {
  std::ifstream stream(profile / "prefs.js");
  for (std::string line; std::getline(stream, line);) {
    constexpr std::string_view name = ".useremail\", \"";
    const auto found = line.find(name);
    if (found != std::string::npos && line.contains("\"mail.identity.")) {
      const auto begin = found + name.size();
      propose(line.substr(begin, line.find('"', begin) - begin), proposed);
    }
  }
}

void proposeSetting(const fs::path& file, const char* name, std::vector<ProposedAddress>& proposed) {
  for (const auto& [section, settings] : settingsIn(file)) {
    propose(valueOf(settings, name), proposed);
  }
}

bool isOfSentMail(const Mailbox& mailbox) {
  // A Maildir's mail lies in a folder "cur" within the one with the name.
  const auto& named = mailbox.form == Mailbox::Form::files ? mailbox.path.parent_path() : mailbox.path;
  std::string name = named.filename().native();
  std::ranges::transform(name, name.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  constexpr std::array words{"sent", "gesendet", "envoy", "inviat", "enviad", "verzonden", "skickat", "sendt"};
  return std::ranges::any_of(words, [&name](const char* word) { return name.contains(word); });
}

/// Where a mail begins after that place in an mbox file.
std::optional<std::uint64_t> separatorAfter(std::uint64_t place, const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  stream.seekg(static_cast<std::streamoff>(place));
  std::string block(std::size_t{512} * 1024, '\0');
  stream.read(block.data(), static_cast<std::streamsize>(block.size()));
  block.resize(static_cast<std::size_t>(stream.gcount()));
  constexpr std::string_view separator = "\n\nFrom ";
  const auto found = block.find(separator);
  return found == std::string::npos ? std::nullopt : std::optional{place + found + 2};
}

class Sample {
 public:
  void look(const Mailbox& mailbox) {
    isSent_ = isOfSentMail(mailbox);
    if (mailbox.form == Mailbox::Form::mbox) {
      lookIntoFile(mailbox.path);
    } else {
      lookIntoFolder(mailbox.path);
    }
  }

  bool isOver() const { return std::chrono::steady_clock::now() > end_; }

  std::vector<ProposedAddress> proposed() const {
    auto proposed = senders();
    for (auto& other : mostNamed()) {
      if (!sentFrom_.contains(other.address)) {
        proposed.push_back(std::move(other));
      }
    }
    proposed.resize(std::min(proposed.size(), mostProposed), {"", Ground::mostMail, false});
    return proposed;
  }

 private:
  using Counts = std::map<std::string, std::size_t>;

  // In a hundred mails.
  static constexpr std::size_t sentToPropose = 1;
  static constexpr std::size_t sentToBeLikely = 5;
  static constexpr std::size_t namedToPropose = 15;
  static constexpr std::size_t namedToBeLikely = 50;
  /// In how many mails at least, unless it is in more than half: a few tell nothing.
  static constexpr std::size_t fewestNamed = 3;

  using Counted = std::pair<std::size_t, std::string>;

  static std::vector<Counted> byCount(const Counts& counts) {
    std::vector<Counted> counted;
    for (const auto& [address, count] : counts) {
      counted.emplace_back(count, address);
    }
    std::ranges::sort(counted, [](const auto& one, const auto& other) { return one.first > other.first; });
    return counted;
  }

  std::vector<ProposedAddress> senders() const {
    std::vector<ProposedAddress> proposed;
    for (auto& [count, address] : byCount(sentFrom_)) {
      if (count * 100 >= sent_ * sentToPropose) {
        proposed.push_back({std::move(address), Ground::sentMail, count * 100 >= sent_ * sentToBeLikely});
      }
    }
    return proposed;
  }

  /// Whom the user writes with most is named in a good part of the mail too, so that only the one address that stands
  /// out is likely.
  std::vector<ProposedAddress> mostNamed() const {
    std::vector<ProposedAddress> proposed;
    const auto counted = byCount(named_);
    for (std::size_t i = 0; i < counted.size(); ++i) {
      const auto& [count, address] = counted[i];
      const bool isInMost = count * 100 > received_ * namedToBeLikely;
      if (isInMost || (count >= fewestNamed && count * 100 >= received_ * namedToPropose)) {
        const bool standsOut = i == 0 && (counted.size() == 1 || count > counted[1].first);
        proposed.push_back({address, Ground::mostMail, isInMost && standsOut});
      }
    }
    return proposed;
  }

  void lookIntoFile(const fs::path& file) {
    std::error_code unknown;
    const auto size = fs::file_size(file, unknown);
    if (unknown || size <= bytesOfNewest) {
      take(MboxSource(file, nobody()), oldest + newest);
      return;
    }
    take(MboxSource(file, nobody()), oldest);
    if (const auto place = separatorAfter(size - bytesOfNewest, file)) {
      take(MboxSource(file, nobody(), *place), newest);
    }
  }

  void take(MboxSource mails, std::size_t most) {
    for (std::size_t count = 0; count < most && !isOver(); ++count) {
      const auto item = mails.next();
      if (!item) {
        return;
      }
      countIn(*item);
    }
  }

  void lookIntoFolder(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry{folder, error}, end; !error && entry != end; entry.increment(error)) {
      files.push_back(entry->path());
    }
    // Their names begin with when they came.
    std::ranges::sort(files);
    if (files.size() > oldest + newest) {
      files.erase(files.begin() + oldest, files.end() - newest);
    }
    MailParser parser(BodyLines::asSent, nobody());
    RawMail space;
    for (const auto& file : files) {
      if (isOver()) {
        return;
      }
      countIn(readMailFile(file, parser, space));
    }
  }

  void countIn(const MailItem& item) {
    const auto* mail = std::get_if<MailMessage>(&item);
    if (mail == nullptr) {
      return;
    }
    if (isSent_) {
      ++sent_;
      ++sentFrom_[mail->from.front().address];
    } else if (!mail->isBulk) {
      ++received_;
      std::set<std::string> addresses;
      for (const auto* field : {&mail->from, &mail->to, &mail->cc}) {
        for (const auto& mailbox : *field) {
          addresses.insert(mailbox.address);
        }
      }
      for (const auto& address : addresses) {
        ++named_[address];
      }
    }
  }

  std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + longestLook;
  bool isSent_ = false;
  std::size_t sent_ = 0;
  Counts sentFrom_;
  std::size_t received_ = 0;
  Counts named_;
};

} // namespace

std::vector<ProposedAddress> ownAddressesInSettings(const std::vector<fs::path>& mail, const UserPlaces& places) {
  std::vector<ProposedAddress> proposed;
  for (const auto& path : mail) {
    proposeIdentitiesOf(path, proposed);
  }
  for (const auto& configuration : {places.configuration, places.home / ".var/app/org.gnome.Evolution/config"}) {
    std::error_code error;
    for (fs::directory_iterator entry{configuration / "evolution/sources", error}, end; !error && entry != end;
         entry.increment(error)) {
      proposeSetting(entry->path(), "Address", proposed);
    }
  }
  proposeSetting(places.configuration / "emailidentities", "Email Address", proposed);
  return proposed;
}

std::vector<ProposedAddress> ownAddressesInMail(const std::vector<fs::path>& mail) {
  std::vector<Mailbox> mailboxes;
  for (const auto& path : mail) {
    try {
      std::ranges::move(findMailFolders(path, MailboxTelling::byContent).mailboxes, std::back_inserter(mailboxes));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): the reading tells of it.
    }
  }
  std::ranges::partition(mailboxes, isOfSentMail);
  Sample sample;
  for (const auto& mailbox : mailboxes) {
    if (sample.isOver()) {
      break;
    }
    try {
      sample.look(mailbox);
    } catch (const Error&) { // NOLINT(bugprone-empty-catch)
    }
  }
  return sample.proposed();
}

} // namespace orvan
