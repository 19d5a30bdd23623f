#include "application/sources/source_discovery.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/sources/collection_files.h"
#include "application/sources/mail_folders.h"
#include "application/sources/settings_file.h"
#include "application/sources/source_fault.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;

bool isThere(const fs::path& path) {
  std::error_code unreachable;
  return fs::exists(fs::symlink_status(path, unreachable));
}

std::vector<fs::path> foldersIn(const fs::path& folder) {
  std::vector<fs::path> folders;
  std::error_code error;
  for (fs::directory_iterator entry{folder, error}, end; !error && entry != end; entry.increment(error)) {
    std::error_code unknown;
    if (entry->is_directory(unknown)) {
      folders.push_back(entry->path());
    }
  }
  std::ranges::sort(folders);
  return folders;
}

class Search {
 public:
  Search(const UserPlaces& places, const SourceFound& tell) : places_(places), tell_(tell) {}

  void thunderbird() {
    std::vector<fs::path> roots{places_.home / ".thunderbird", places_.home / ".mozilla-thunderbird",
                                places_.home / "snap/thunderbird/common/.thunderbird"};
    for (const auto& program : foldersIn(places_.home / ".var/app")) {
      roots.push_back(program / ".thunderbird");
    }
    for (const auto& root : roots) {
      for (const auto& [section, settings] : settingsIn(root / "profiles.ini")) {
        const auto path = valueOf(settings, "Path");
        if (section.starts_with("Profile") && !path.empty()) {
          profile(valueOf(settings, "IsRelative") == "0" ? fs::path{path} : root / path);
        }
      }
    }
  }

  void evolution() {
    for (const auto& data : {places_.data, places_.home / ".var/app/org.gnome.Evolution/data"}) {
      mail(data / "evolution/mail/local", "Evolution");
      for (const auto& calendar : foldersIn(data / "evolution/calendar")) {
        files(SourceKind::calendar, calendar / "calendar.ics", "Evolution");
      }
    }
  }

  void kmail() {
    for (const auto& data : {places_.data, places_.home / ".var/app/org.kde.kontact/data"}) {
      mail(data / "local-mail", "KMail");
      mail(data / ".local-mail.directory", "KMail");
      for (const auto& folder : foldersIn(data)) {
        if (folder.filename().native().starts_with("akonadi_maildir_resource_")) {
          mail(folder, "KMail");
        }
      }
      files(SourceKind::calendar, data / "korganizer/std.ics", "KOrganizer");
      files(SourceKind::calendar, data / "apps/korganizer/std.ics", "KOrganizer");
      files(SourceKind::cards, data / "contacts", "KAddressBook");
    }
  }

  void mailFoldersOfTheUser() {
    mail(places_.home / "Maildir", "mail folder");
    mail(places_.home / "Mail", "mail folder");
    if (!places_.mailSpool.empty()) {
      mail(places_.mailSpool, "system mailbox");
    }
  }

  void vdirsyncer() {
    for (const auto& file : {places_.configuration / "vdirsyncer/config", places_.home / ".vdirsyncer/config"}) {
      for (const auto& [section, settings] : settingsIn(file)) {
        if (section.starts_with("storage") && valueOf(settings, "type") == "filesystem") {
          storage(expanded(valueOf(settings, "path")), valueOf(settings, "fileext"));
        }
      }
    }
  }

  Discovery found() && { return std::move(found_); }

 private:
  void profile(const fs::path& path) {
    mail(path, "Thunderbird");
    files(SourceKind::calendar, path / "calendar-data", "Thunderbird");
    found_.isInThunderbirdsDatabases |= isThere(path / "calendar-data/local.sqlite") || isThere(path / "abook.sqlite");
  }

  void mail(const fs::path& path, const char* keeper) {
    look(path, [&](const fs::path& whole) {
      const auto folders = findMailFolders(whole, MailboxTelling::byName);
      for (const auto& name : folders.unreadable) {
        found_.troubles.push_back({(whole / name).string(), make_error_code(SourceFault::notPermitted).message()});
      }
      if (!folders.mailboxes.empty()) {
        add({SourceKind::mail, whole, keeper, sizeOf(folders.mailboxes), folders.isInUse});
      }
    });
  }

  void files(SourceKind kind, const fs::path& path, const char* keeper) {
    look(path, [&](const fs::path& whole) {
      const auto paths = CollectionFiles::at(whole, Instant{}, kind == SourceKind::calendar ? ".ics" : ".vcf").paths;
      std::uintmax_t bytes = 0;
      for (const auto& file : paths) {
        std::error_code unknown;
        const auto size = fs::file_size(file, unknown);
        bytes += unknown ? 0 : size;
      }
      if (!paths.empty()) {
        add({kind, whole, keeper, bytes, false});
      }
    });
  }

  /// The folders in it are its collections, or it is one itself.
  void storage(const fs::path& path, std::string_view ending) {
    const auto kind = ending == ".vcf" ? SourceKind::cards : SourceKind::calendar;
    files(kind, path, "vdirsyncer");
    for (const auto& folder : foldersIn(path)) {
      files(kind, folder, "vdirsyncer");
    }
  }

  template <typename Look>
  void look(const fs::path& path, Look look) {
    if (!isThere(path)) {
      return;
    }
    try {
      requireFileOrFolder(path, SourceFault::missing);
      look(fs::canonical(path));
    } catch (const Error& error) {
      found_.troubles.push_back({path.string(), sentenceOnSource(error.code()).value_or(error.code().message())});
    } catch (const fs::filesystem_error& error) {
      found_.troubles.push_back({path.string(), make_error_code(SourceFault::cannotRead).message()});
    }
  }

  void add(DiscoveredSource source) {
    if (std::ranges::find(found_.sources, source.path, &DiscoveredSource::path) == found_.sources.end()) {
      found_.sources.push_back(std::move(source));
      if (tell_) {
        tell_(found_.sources.back());
      }
    }
  }

  fs::path expanded(const std::string& path) const {
    return path.starts_with("~/") ? places_.home / path.substr(2) : fs::path{path};
  }

  const UserPlaces& places_;
  const SourceFound& tell_;
  Discovery found_;
};

std::string variable(const char* name) {
  const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing changes our programs' environment.
  return value == nullptr ? "" : value;
}

fs::path folderNamed(const char* name, const fs::path& usual) {
  const auto value = variable(name);
  return value.starts_with('/') ? fs::path{value} : usual;
}

} // namespace

UserPlaces UserPlaces::ofThisUser() {
  const auto home = folderNamed("HOME", "/");
  const auto user = variable("USER");
  return {home, folderNamed("XDG_DATA_HOME", home / ".local/share"), folderNamed("XDG_CONFIG_HOME", home / ".config"),
          folderNamed("MAIL", user.empty() ? fs::path{} : fs::path{"/var/mail"} / user)};
}

Discovery discoverSources(const UserPlaces& places, const SourceFound& found) {
  Search search(places, found);
  search.thunderbird();
  search.evolution();
  search.kmail();
  search.mailFoldersOfTheUser();
  search.vdirsyncer();
  return std::move(search).found();
}

} // namespace orvan
