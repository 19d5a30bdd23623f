#include "application/agent/refreshing/inotify_folder_watcher.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <cerrno>
#include <cstring>
#include <string>
#include <unordered_map>
#include <utility>

namespace orvan {
namespace {

/// Not what is still being written: that tells again when it is closed. A mail may come by a second link to it, which
/// is only made.
constexpr std::uint32_t whatCounts = IN_CLOSE_WRITE | IN_CREATE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE;

} // namespace

class InotifyFolderWatcher::Watch : public std::enable_shared_from_this<Watch> {
 public:
  Watch(const Executor& executor, Tell tell) : kernel_(executor), tell_(std::move(tell)) {}

  /// False when not all of them can be watched.
  bool start(std::vector<FolderToWatch> folders) {
    const int descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (descriptor < 0) {
      return false;
    }
    kernel_.assign(descriptor);
    for (auto& folder : folders) {
      const int number = inotify_add_watch(descriptor, folder.path.c_str(), whatCounts | IN_ONLYDIR | IN_EXCL_UNLINK);
      if (number >= 0) {
        add(number, std::move(folder.names));
      } else if (errno == ENOSPC || errno == ENOMEM) {
        return false;
      }
    }
    awaitNews();
    return true;
  }

  void stop() {
    tell_ = nullptr;
    boost::system::error_code ignored;
    kernel_.close(ignored); // NOLINT(bugprone-unused-return-value): the same as `ignored`.
  }

 private:
  /// Two paths may lead to one folder.
  void add(int number, std::optional<std::set<std::string>> names) {
    const auto [known, isNew] = names_.try_emplace(number, names);
    if (isNew || !known->second) {
      return;
    }
    if (names) {
      known->second->merge(*names);
    } else {
      known->second = std::nullopt;
    }
  }

  void awaitNews() {
    kernel_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                       [self = shared_from_this()](boost::system::error_code error) {
                         if (error || self->tell_ == nullptr) {
                           return;
                         }
                         if (self->readNews()) {
                           // A copy: whoever is told may want to watch something else.
                           const auto tell = self->tell_;
                           tell(FolderNews::changed);
                         }
                         if (self->tell_ != nullptr) {
                           self->awaitNews();
                         }
                       });
  }

  /// Whether any of it counts.
  bool readNews() {
    bool isAnything = false;
    for (;;) {
      const auto length = read(kernel_.native_handle(), space_.data(), space_.size());
      if (length <= 0) {
        return isAnything;
      }
      const char* const end = space_.data() + length;
      for (const char* at = space_.data(); at < end;) {
        inotify_event event{};
        std::memcpy(&event, at, sizeof event);
        isAnything |= counts(event, event.len > 0 ? at + sizeof event : "");
        at += sizeof event + event.len;
      }
    }
  }

  bool counts(const inotify_event& event, const char* name) {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
      return true;
    }
    const auto folder = names_.find(event.wd);
    if (folder == names_.end()) {
      return false;
    }
    if ((event.mask & IN_IGNORED) != 0) {
      names_.erase(folder);
      return false;
    }
    return !folder->second || folder->second->contains(name);
  }

  boost::asio::posix::stream_descriptor kernel_;
  Tell tell_;
  std::unordered_map<int, std::optional<std::set<std::string>>> names_;
  std::array<char, 16384> space_{};
};

InotifyFolderWatcher::InotifyFolderWatcher(Executor executor, std::size_t mostFolders)
    : executor_(std::move(executor)), mostFolders_(mostFolders) {}

InotifyFolderWatcher::~InotifyFolderWatcher() {
  if (watch_ != nullptr) {
    watch_->stop();
  }
}

void InotifyFolderWatcher::watch(std::vector<FolderToWatch> folders, Tell tell) {
  if (const auto former = std::exchange(watch_, nullptr)) {
    former->stop();
  }
  if (folders.empty()) {
    return;
  }
  const auto watch = std::make_shared<Watch>(executor_, tell);
  if (folders.size() <= mostFolders_ && watch->start(std::move(folders))) {
    watch_ = watch;
    return;
  }
  watch->stop();
  boost::asio::post(executor_, [tell = std::move(tell)] { tell(FolderNews::cannotWatch); });
}

} // namespace orvan
