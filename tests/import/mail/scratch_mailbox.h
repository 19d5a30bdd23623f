#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/error.h"
#include "application/import/mail/mail_source.h"

namespace orvan {

/// A folder for one test's mail, removed with it.
class ScratchMailbox {
 public:
  ScratchMailbox() {
    std::string name = testing::TempDir() + "orvan-mail-XXXXXX";
    path_ = mkdtemp(name.data());
  }
  ~ScratchMailbox() { std::filesystem::remove_all(path_); }
  ScratchMailbox(const ScratchMailbox&) = delete;
  ScratchMailbox& operator=(const ScratchMailbox&) = delete;

  const std::filesystem::path& path() const { return path_; }

  std::filesystem::path write(const std::filesystem::path& name, std::string_view content) const {
    const auto file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream{file, std::ios::binary} << content;
    return file;
  }

 private:
  std::filesystem::path path_;
};

/// One word per item: the subject of a message, or "(description)" of a skip.
inline std::vector<std::string> outlineOf(MailSource& source) {
  std::vector<std::string> outline;
  while (const auto item = source.next()) {
    const auto* message = std::get_if<MailMessage>(&*item);
    outline.push_back(message != nullptr ? message->subject
                                         : "(" + std::string{description(std::get<MailSkip>(*item).reason)} + ")");
  }
  return outline;
}

/// The error that opening a source fails with; none when it succeeds.
template <typename Source>
std::optional<std::error_code> openingErrorOf(const std::filesystem::path& path) {
  try {
    const Source source{path};
    return std::nullopt;
  } catch (const Error& error) {
    return error.code();
  }
}

} // namespace orvan
