#include "OrvanRelationshipAttention/store_access/plaintext_database.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

constexpr std::string_view plaintextHeader = "SQLite format 3";

/// Nothing but the header is read: a store may be a gigabyte.
using Header = std::array<char, plaintextHeader.size()>;

[[noreturn]] void failReading() {
  throw Error({errno, std::generic_category()}, "reading the start of the store file");
}

std::string_view readHeader(int descriptor, Header& header) {
  std::size_t length = 0;
  while (length < header.size()) {
    const auto count = pread(descriptor, header.data() + length, header.size() - length, static_cast<off_t>(length));
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      failReading();
    }
    if (count == 0) {
      break;
    }
    length += static_cast<std::size_t>(count);
  }
  return {header.data(), length};
}

class OpenFile {
 public:
  explicit OpenFile(const std::filesystem::path& path) : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) {
      failReading();
    }
  }
  ~OpenFile() { close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  int descriptor() const noexcept { return descriptor_; }

 private:
  int descriptor_;
};

} // namespace

void rejectPlaintextDatabase(const std::filesystem::path& path, std::error_code rejection) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) {
    return;
  }
  const OpenFile file(path);
  Header header{};
  if (readHeader(file.descriptor(), header) == plaintextHeader) {
    throw Error(rejection, "opening the store");
  }
}

} // namespace orvan
