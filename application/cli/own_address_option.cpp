#include "application/cli/own_address_option.h"

#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "application/cli/command_failure.h"
#include "application/cli/command_set.h"
#include "application/import/address/normal_address.h"
#include "application/import/ledger/own_addresses.h"

namespace orvan {
namespace {

std::string ownAddress(const std::string& written) {
  if (auto address = normalAddress(written)) {
    return *std::move(address);
  }
  throw CommandFailure(ExitCode::wrongCommandLine, "--me takes mail addresses, such as robin@example.org.");
}

} // namespace

void takeOwnAddresses(CLI::App& command, std::vector<std::string>& addresses) {
  command.add_option("--me", addresses, "Your own mail addresses (remembered)")
      ->type_name("ADDRESS")
      ->check(notEmpty());
}

std::vector<std::string> ownAddressesWith(const std::vector<std::string>& given, Instant now, DatabaseQueue& store) {
  std::vector<std::string> addresses;
  addresses.reserve(given.size());
  for (const auto& written : given) {
    addresses.push_back(ownAddress(written));
  }
  const auto all = store.write(
      [&](Connection& connection) { return rememberOwnAddresses(addresses, formatInternetDateTime(now), connection); });
  if (all.empty()) {
    throw CommandFailure(ExitCode::wrongCommandLine, "Say which addresses are yours: --me ADDRESS...");
  }
  return {all.begin(), all.end()};
}

} // namespace orvan
