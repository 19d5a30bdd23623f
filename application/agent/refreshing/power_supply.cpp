#include "application/agent/refreshing/power_supply.h"

#include <charconv>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

namespace orvan {
namespace {

namespace fs = std::filesystem;

std::string told(const fs::path& supply, const char* what) {
  std::ifstream file(supply / what);
  std::string line;
  std::getline(file, line);
  return line;
}

std::optional<int> percentIn(const fs::path& battery) {
  const auto text = told(battery, "capacity");
  int percent = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), percent);
  return error == std::errc{} ? std::optional{percent} : std::nullopt;
}

struct Batteries {
  int count = 0;
  int percents = 0;
  bool isAnyDischarging = false;

  void add(const fs::path& battery) {
    isAnyDischarging |= told(battery, "status") == "Discharging";
    if (const auto percent = percentIn(battery)) {
      ++count;
      percents += *percent;
    }
  }
};

} // namespace

bool isBatteryLow(const fs::path& supplies) {
  constexpr int low = 20;
  Batteries batteries;
  std::error_code error;
  for (fs::directory_iterator entry{supplies, error}, end; !error && entry != end; entry.increment(error)) {
    const auto& supply = entry->path();
    if (told(supply, "scope") == "Device") {
      continue;
    }
    const auto type = told(supply, "type");
    if (type == "Battery") {
      batteries.add(supply);
    } else if (type != "UPS" && told(supply, "online") == "1") {
      return false;
    }
  }
  return batteries.isAnyDischarging && batteries.count > 0 && batteries.percents < low * batteries.count;
}

} // namespace orvan
