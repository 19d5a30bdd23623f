#include <span>

#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/showing.h"
#include "application/process/mail_program.h"
#include "application/session/item_lookup.h"
#include "application/session/message_address.h"

namespace orvan {
namespace {

std::string messageAddressIn(const About& about, bool isFollowUp) {
  if (about.messageID) {
    return messageAddressOf(*about.messageID);
  }
  if (isFollowUp && !about.threadID) {
    throw CommandFailure(ExitCode::failed,
                         "That follow-up is about no message; 'orvan show' tells what there is with the person.");
  }
  throw CommandFailure(ExitCode::failed,
                       about.startsAt
                           ? "That is about a meeting, and there is no message to open; 'orvan show' tells when and "
                             "where it is."
                           : "Orvan does not know the Message-ID of that mail; it keeps those of mail to you alone.");
}

void requireHandedOver(HandingOver outcome) {
  switch (outcome) {
    case HandingOver::done:
      return;
    case HandingOver::noOpener:
      throw CommandFailure(ExitCode::failed,
                           "There is no xdg-open to reach your mail program with; install xdg-utils, or take the "
                           "message's address with --print.");
    case HandingOver::noMailProgram:
      throw CommandFailure(ExitCode::failed,
                           "No program is set to open mid: addresses; set your mail program with 'xdg-mime default "
                           "NAME.desktop x-scheme-handler/mid', or take the message's address with --print.");
    case HandingOver::failed:
      break;
  }
  throw CommandFailure(ExitCode::failed,
                       "The desktop could not open the message; take its address with --print to try by hand.");
}

} // namespace

void runShow(const CommandContext& context, const std::string& item) {
  openToShow(context);
  const auto details = itemDetails(item, context.session, context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(details));
  } else {
    HumanOutput{}.details(details);
    noteShown(context, std::span{&details.item, 1});
  }
}

void runOpen(const CommandContext& context, const OpenArguments& arguments) {
  context.session.openForReading();
  const auto found = itemCalled(arguments.item, context.session, context.asOf);
  const auto about =
      context.session.readableStore().read([&](Connection& connection) { return aboutOf(found, connection); });
  const auto address = messageAddressIn(about, found.followUp.has_value());
  if (!arguments.isPrinted) {
    requireHandedOver(handToMailProgram(address));
  }
  if (context.output == OutputForm::json) {
    printJson({{"itemKey", found.item.itemKey()}, {"address", arguments.isPrinted ? Json(address) : Json(nullptr)}});
  } else {
    HumanOutput{}.line(arguments.isPrinted ? address : "Handed to your mail program.");
  }
}

} // namespace orvan
