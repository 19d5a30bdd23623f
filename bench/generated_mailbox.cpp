#include "generated_mailbox.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

constexpr std::size_t threadsAtOnce = 600;
constexpr std::size_t mailsOfAHeavyCorrespondent = 20'000;
constexpr std::size_t mailsPerHeavyCorrespondent = 200'000;
constexpr std::size_t meanOfOthers = 275;
constexpr std::size_t bodyLength = 560;

constexpr std::array words{"the",   "garden", "next",  "week",   "before", "train",  "we",    "letter", "kitchen",
                           "about", "report", "small", "window", "music",  "summer", "paper", "again",  "morning",
                           "with",  "draft",  "lake",  "after",  "number", "street", "and",   "table",  "evening"};

std::string addressOf(std::size_t correspondent) {
  return "person" + std::to_string(correspondent) + "@domain" + std::to_string(correspondent % 97) + ".example";
}

std::string mailboxOf(std::size_t correspondent) {
  return "\"Person " + std::to_string(correspondent) + " Ordinary\" <" + addressOf(correspondent) + ">";
}

/// "Thu, 5 Mar 2026 09:15:00 +0000"; the day of the week is left out, as the format allows.
std::string dateOf(std::uint64_t secondsSinceStart) {
  constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  constexpr Instant start = std::chrono::sys_days{std::chrono::year{2018} / 1 / 1};
  const auto text = formatInternetDateTime(start + std::chrono::seconds{secondsSinceStart});
  const auto month = static_cast<std::size_t>((text[5] - '0') * 10 + (text[6] - '0') - 1);
  return text.substr(8, 2) + " " + months.at(month) + " " + text.substr(0, 4) + " " + text.substr(11, 8) + " +0000";
}

} // namespace

GeneratedMailbox::GeneratedMailbox(std::size_t mails, std::size_t people) : remaining_(mails) {
  shareOut(mails, people);
  while (threads_.size() < threadsAtOnce) {
    threads_.push_back(startThread());
  }
}

/// Shares only say how often somebody is drawn, so that those of a given number of people need not add up to `mails`.
void GeneratedMailbox::shareOut(std::size_t mails, std::size_t people) {
  std::size_t total = 0;
  for (std::size_t heavy = 0; heavy < mails / mailsPerHeavyCorrespondent; ++heavy) {
    shares_.push_back(total += mailsOfAHeavyCorrespondent);
  }
  const std::size_t mailsOfOthers = mails - std::min(mails, total);
  const std::size_t others = people - std::min(people, shares_.size());
  for (std::size_t other = 0; people == 0 ? total < mails : other < others; ++other) {
    const std::size_t usual = 50 + below(450);
    const std::size_t share = people == 0 ? usual : usual * mailsOfOthers / (others * meanOfOthers);
    shares_.push_back(total += std::max<std::size_t>(share, 1));
  }
}

bool GeneratedMailbox::appendNext(std::string& text) {
  if (remaining_ == 0) {
    return false;
  }
  --remaining_;
  secondsSinceStart_ += 1 + below(480);
  auto& thread = threads_[below(threads_.size())];
  auto messageID = drawMessageID();
  appendHeader(thread, messageID, text);
  appendBody(!thread.isAutomated && below(5) == 0, text);
  thread.messageIDs.push_back(std::move(messageID));
  if (thread.messageIDs.size() == thread.length) {
    thread = startThread();
  }
  return true;
}

std::size_t GeneratedMailbox::drawCorrespondent() {
  const auto found = std::ranges::upper_bound(shares_, below(shares_.back()));
  return static_cast<std::size_t>(found - shares_.begin());
}

GeneratedMailbox::Thread GeneratedMailbox::startThread() {
  Thread thread;
  thread.number = ++threadsStarted_;
  thread.length = 1 + below(10);
  thread.isAutomated = below(12) == 0;
  const std::size_t others = below(10) == 0 ? 2 + below(4) : 1;
  while (thread.others.size() < others) {
    thread.others.push_back(drawCorrespondent());
  }
  return thread;
}

std::string GeneratedMailbox::drawMessageID() {
  std::string messageID = "<";
  for (int digit = 0; digit < 24; ++digit) {
    messageID += "0123456789abcdef"[below(16)];
  }
  return messageID + "@mail.example>";
}

void GeneratedMailbox::appendHeader(const Thread& thread, const std::string& messageID, std::string& text) {
  const bool isFromUser = !thread.isAutomated && thread.messageIDs.size() % 2 == 1;
  const auto sender = thread.isAutomated
                          ? "News <no-reply@news" + std::to_string(thread.others.front() % 50) + ".example>"
                          : mailboxOf(thread.others.front());
  const auto user = "Mira <" + std::string{ownAddress} + ">";
  text += "From mailbox Mon Jan  1 00:00:00 2018\nDate: " + dateOf(secondsSinceStart_) + "\nFrom: ";
  text += isFromUser ? user : sender;
  text += "\nTo: ";
  text += isFromUser ? sender : user;
  for (std::size_t other = 1; other < thread.others.size(); ++other) {
    text += (other == 1 ? "\nCc: " : ",\n ") + mailboxOf(thread.others[other]);
  }
  text += thread.messageIDs.empty() ? "\nSubject: " : "\nSubject: Re: ";
  text += std::string{words.at(thread.number % words.size())} + " " + std::to_string(thread.number);
  text += "\nMessage-ID: " + messageID;
  if (!thread.messageIDs.empty()) {
    text += "\nIn-Reply-To: " + thread.messageIDs.back() + "\nReferences:";
    for (const auto& earlier : thread.messageIDs) {
      text += "\n " + earlier;
    }
  }
  text += thread.isAutomated ? "\nList-Id: <news.example>\nPrecedence: bulk" : "";
  text += "\nMIME-Version: 1.0\nContent-Type: text/plain; charset=utf-8\n\n";
}

void GeneratedMailbox::appendBody(bool asks, std::string& text) {
  const auto end = text.size() + bodyLength;
  for (std::size_t column = 0; text.size() < end; ++column) {
    text += words.at(below(words.size()));
    text += column % 11 == 10 ? ".\n" : " ";
  }
  text += asks ? "\nWill you be there on Thursday?\n\n" : "\n\n";
}

std::uintmax_t writeGeneratedMailbox(std::size_t mails, std::size_t people, const std::filesystem::path& file) {
  constexpr std::size_t flushAt = 1 << 20;
  GeneratedMailbox mailbox(mails, people);
  std::ofstream stream(file, std::ios::binary);
  std::string text;
  while (mailbox.appendNext(text)) {
    if (text.size() >= flushAt) {
      stream << text;
      text.clear();
    }
  }
  stream << text;
  stream.close();
  if (!stream) {
    throw std::filesystem::filesystem_error("writing the generated mailbox", file,
                                            std::make_error_code(std::errc::io_error));
  }
  return std::filesystem::file_size(file);
}

} // namespace orvan
