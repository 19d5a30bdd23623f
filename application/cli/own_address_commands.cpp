#include "application/cli/own_address_commands.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/import/address/normal_address.h"
#include "application/import/ledger/own_addresses.h"
#include "application/session/own_address_change.h"

namespace orvan {
namespace {

constexpr const char* readAgain =
    "Mail and calendars are read again from their beginning by the next 'orvan refresh' or import.";

std::string addressIn(const std::string& written) {
  if (auto address = normalAddress(written)) {
    return *std::move(address);
  }
  throw CommandFailure(ExitCode::wrongCommandLine, "'orvan me' takes mail addresses, such as robin@example.org.");
}

bool isAmong(const std::vector<OwnAddress>& addresses, const std::string& address) {
  return std::ranges::find(addresses, address, &OwnAddress::address) != addresses.end();
}

// Listing

std::string inWords(const OwnAddress& own) {
  std::string told = own.toldBy == ToldBy::user ? "told with 'orvan me add'" : "told with 'import --me'";
  if (!own.hasMail) {
    return told;
  }
  return told + (*own.hasMail ? ", stands on mail that was read" : ", on no mail that was read so far");
}

Json toJson(const OwnAddress& own) {
  return {{"address", own.address},
          {"toldBy", caseName(own.toldBy)},
          {"hasMail", own.hasMail ? Json(*own.hasMail) : Json(nullptr)}};
}

void runListOwnAddresses(const CommandContext& context) {
  const auto addresses = context.session.readableStore().read(ownAddresses);
  if (context.output == OutputForm::json) {
    auto list = Json::array();
    std::ranges::transform(addresses, std::back_inserter(list), [](const auto& own) { return toJson(own); });
    printJson(list);
    return;
  }
  const HumanOutput output;
  std::size_t width = 0;
  for (const auto& own : addresses) {
    width = std::max(width, own.address.size());
  }
  for (const auto& own : addresses) {
    output.line(printableText(own.address) + std::string(width + 2 - own.address.size(), ' ') + inWords(own));
  }
  if (addresses.empty()) {
    output.line("None yet: 'orvan me add ADDRESS...' tells which addresses are yours.");
  }
}

// Adding

std::string inWords(const AddedOwnAddress& added) {
  auto isYours = printableText(added.address) + " is yours now.";
  if (!added.takenFrom) {
    return isYours;
  }
  const auto name = printableText(added.takenFrom->displayName);
  return isYours + (added.takenFrom->hasOthers ? " It was taken for " + name + "'s, whose other addresses stay theirs."
                                               : " It was taken for " + name + ", who is nobody else any more.");
}

Json toJson(const AddedOwnAddress& added) {
  return {{"address", added.address},
          {"takenFrom", added.takenFrom ? Json(added.takenFrom->personKey) : Json(nullptr)}};
}

void runAddOwnAddresses(const CommandContext& context, const std::vector<std::string>& written) {
  std::vector<std::string> addresses;
  std::ranges::transform(written, std::back_inserter(addresses), addressIn);
  const auto added = context.session.writableStore().write([&](Connection& connection) {
    return addOwnAddresses(addresses, formatInternetDateTime(context.asOf), connection);
  });
  if (context.output == OutputForm::json) {
    auto list = Json::array();
    std::ranges::transform(added, std::back_inserter(list), [](const auto& one) { return toJson(one); });
    printJson({{"added", list}});
    return;
  }
  const HumanOutput output;
  for (const auto& one : added) {
    output.line(inWords(one));
  }
  if (added.empty()) {
    output.line("That is known; nothing was changed.");
  } else if (context.session.writableStore().read(isAnythingRead)) {
    output.line(readAgain);
  }
}

// Removing

void requireAnother(const std::vector<OwnAddress>& addresses, const std::string& address) {
  std::string all;
  for (const auto& own : addresses) {
    all += (all.empty() ? "" : ", ") + printableText(own.address);
  }
  if (!isAmong(addresses, address)) {
    throw CommandFailure(ExitCode::failed, addresses.empty()
                                               ? "No address is known as yours; 'orvan me add ADDRESS...' adds them."
                                               : "That is none of your addresses, which are: " + all + ".");
  }
  if (addresses.size() == 1) {
    throw CommandFailure(ExitCode::failed,
                         "That is the only address known as yours, and without any there is no telling your mail from "
                         "others'; add another first with 'orvan me add ADDRESS'.");
  }
}

void runRemoveOwnAddress(const CommandContext& context, const std::string& written) {
  const auto address = addressIn(written);
  auto& store = context.session.writableStore();
  const auto givenUp = store.write([&](Connection& connection) {
    requireAnother(ownAddresses(connection), address);
    return giveUpOwnAddress(address, formatInternetDateTime(context.asOf), connection);
  });
  const auto holder = store.read([&](Connection& connection) { return holderOfAddress(address, connection); });
  if (context.output == OutputForm::json) {
    printJson({{"removed", address},
               {"personKey", holder ? Json(holder->personKey) : Json(nullptr)},
               {"isReadAgain", givenUp == GivenUp::toBeReadAgain}});
    return;
  }
  const HumanOutput output;
  output.line(printableText(address) + " is not yours any more." +
              (holder ? " It is " + printableText(holder->displayName) + "'s again." : ""));
  if (givenUp == GivenUp::toBeReadAgain) {
    output.line(readAgain);
    output.line("Until then, what was read while it was yours stays as it is.");
  }
}

} // namespace

void addOwnAddressCommands(CommandSet& commands) {
  auto& me =
      commands.add({"me", "To decide", "Tell which mail addresses are your own", "orvan me"}, runListOwnAddresses);
  commands.addTo(me, {"list", nullptr, "List your addresses, and how they came to be known", "orvan me list"},
                 runListOwnAddresses);
  const auto added = std::make_shared<std::vector<std::string>>();
  commands
      .addTo(me, {"add", nullptr, "Say that addresses are yours", "orvan me add robin@work.example"},
             [added](const auto& context) { runAddOwnAddresses(context, *added); })
      .add_option("ADDRESS", *added, "Mail addresses of yours")
      ->type_name("")
      ->required()
      ->check(notEmpty());
  const auto removed = std::make_shared<std::string>();
  commands
      .addTo(me,
             {"remove", nullptr, "Say that an address is not yours, and bring back whom it hid",
              "orvan me remove ada@hill.example"},
             [removed](const auto& context) { runRemoveOwnAddress(context, *removed); })
      .add_option("ADDRESS", *removed, "The mail address")
      ->type_name("")
      ->required()
      ->check(notEmpty());
}

} // namespace orvan
