#include "OrvanPlatform/log.h"

#include <sys/uio.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace orvan {
namespace {

constexpr std::string_view subsystem = "org.orvan.Orvan";
constexpr auto journalSocket = "/run/systemd/journal/socket";

/// A journal field's name: capitals, digits and underlines.
std::string journalName(std::string_view name) {
  std::string text = "ORVAN_";
  std::ranges::transform(name, std::back_inserter(text), [](char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  });
  return text;
}

class JournalLogSink final : public LogSink {
 public:
  void write(const LogEntry& entry) noexcept override {
    try {
      send(entry);
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): without memory there is no line.
    }
  }

 private:
  static void send(const LogEntry& entry) {
    constexpr auto priorityNotice = "PRIORITY=5";
    std::vector<std::string> lines{"MESSAGE=" + entry.message, priorityNotice, "ORVAN_SUBSYSTEM=" + entry.subsystem,
                                   "ORVAN_CATEGORY=" + entry.category};
    for (const auto& field : entry.fields) {
      lines.push_back(journalName(field.name) + "=" + field.value);
    }
    std::vector<iovec> parts;
    parts.reserve(lines.size());
    for (auto& line : lines) {
      parts.push_back(iovec{.iov_base = line.data(), .iov_len = line.size()});
    }
    sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
  }
};

class JsonLinesLogSink final : public LogSink {
 public:
  explicit JsonLinesLogSink(int descriptor) : descriptor_(descriptor) {}

  void write(const LogEntry& entry) noexcept override {
    try {
      const std::string line = textOf(entry);
      // One call a line, so that lines of several threads do not mix.
      if (::write(descriptor_, line.data(), line.size()) < 0) {
        return;
      }
    } catch (...) { // NOLINT(bugprone-empty-catch): a line that cannot be made is no reason to end the program.
    }
  }

 private:
  static std::string textOf(const LogEntry& entry) {
    nlohmann::ordered_json line{
        {"subsystem", entry.subsystem}, {"category", entry.category}, {"level", "default"}, {"message", entry.message}};
    for (const auto& field : entry.fields) {
      line.emplace(field.name, field.value);
    }
    constexpr int compact = -1;
    return line.dump(compact, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
  }

  int descriptor_;
};

} // namespace

std::shared_ptr<LogSink> jsonLinesLogSink(int descriptor) {
  return std::make_shared<JsonLinesLogSink>(descriptor);
}

std::shared_ptr<LogSink> systemLogSink() {
  std::error_code ignored;
  if (std::filesystem::exists(journalSocket, ignored)) {
    return std::make_shared<JournalLogSink>();
  }
  return jsonLinesLogSink(STDERR_FILENO);
}

std::shared_ptr<LogSink> journalOrNoLogSink() {
  // Without a journal, sd_journal_sendv drops every line and reports success.
  return std::make_shared<JournalLogSink>();
}

LogChannel::LogChannel(std::shared_ptr<LogSink> sink, std::string category)
    : sink_(std::move(sink)), category_(std::move(category)) {}

void LogChannel::write(std::string_view event, std::initializer_list<LogField> fields) const {
  std::string message{event};
  for (const auto& field : fields) {
    message.append(" ").append(field.name).append("=").append(field.value);
  }
  sink_->write(LogEntry{
      .subsystem = std::string{subsystem}, .category = category_, .message = std::move(message), .fields = fields});
}

} // namespace orvan
