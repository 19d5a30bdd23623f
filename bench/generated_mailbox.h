#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace orvan {

/// An invented mailbox of any size, the same at every run: many threads of up to ten mails going on at once, most
/// correspondents with 50 to 500 mails and a few with twenty thousand, some mail to several people and some written by
/// machines, each mail about a kilobyte.
class GeneratedMailbox {
 public:
  /// The user's address in all of it.
  static constexpr std::string_view ownAddress = "mira@home.example";

  /// With `people` correspondents, who then have more or fewer mails each; as many as come of the usual numbers when
  /// it is 0.
  explicit GeneratedMailbox(std::size_t mails, std::size_t people = 0);

  /// Appends the next mail, as an mbox file holds it, to `text`; false at the end.
  bool appendNext(std::string& text);

  std::size_t correspondents() const noexcept { return shares_.size(); }

 private:
  struct Thread {
    std::vector<std::size_t> others;
    std::vector<std::string> messageIDs;
    std::size_t length = 0;
    std::uint64_t number = 0;
    bool isAutomated = false;
  };

  std::uint64_t below(std::uint64_t limit) { return random_() % limit; }
  std::size_t drawCorrespondent();
  void shareOut(std::size_t mails, std::size_t people);
  Thread startThread();
  std::string drawMessageID();
  void appendHeader(const Thread& thread, const std::string& messageID, std::string& text);
  void appendBody(bool asks, std::string& text);

  std::mt19937_64 random_{20260305};
  std::size_t remaining_;
  /// Running totals of how many mails each correspondent is meant to have.
  std::vector<std::size_t> shares_;
  std::vector<Thread> threads_;
  std::uint64_t threadsStarted_ = 0;
  std::uint64_t secondsSinceStart_ = 0;
};

/// Writes the whole mailbox to `file` and returns its size in bytes.
std::uintmax_t writeGeneratedMailbox(std::size_t mails, std::size_t people, const std::filesystem::path& file);

} // namespace orvan
