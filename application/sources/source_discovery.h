#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "application/sources/changed_mail.h"
#include "application/sources/remembered_source.h"

namespace orvan {

/// Where programs keep a user's data.
struct UserPlaces {
  std::filesystem::path home;
  std::filesystem::path data;
  std::filesystem::path configuration;
  /// The system's mailbox of this user; empty when there is none.
  std::filesystem::path mailSpool;

  /// Reads the environment, so nothing may change that at the same time.
  static UserPlaces ofThisUser();
};

struct DiscoveredSource {
  SourceKind kind;
  std::filesystem::path path;
  /// Whose it is, as "Thunderbird".
  std::string keeper;
  std::uintmax_t bytes;
  /// The program has it open.
  bool isInUse;
};

struct Discovery {
  std::vector<DiscoveredSource> sources;
  /// What cannot be looked into, by its whole path.
  std::vector<SourceTrouble> troubles;
  /// Thunderbird keeps calendars or an address book of its own there, which no other program can read.
  bool isInThunderbirdsDatabases = false;
};

/// Told of each source as it is found.
using SourceFound = std::function<void(const DiscoveredSource&)>;

/// Looks in the places where mail programs, calendars and address books keep their files. Reads names and sizes, and
/// the lists that Thunderbird and vdirsyncer keep of their own folders; never a mail, a calendar or a card. `found` may
/// be empty.
Discovery discoverSources(const UserPlaces& places, const SourceFound& found = {});

} // namespace orvan
