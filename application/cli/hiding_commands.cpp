#include "application/cli/hiding_commands.h"

#include <algorithm>
#include <memory>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/reminder_service.h"
#include "application/session/correction.h"
#include "application/session/reason_in_words.h"

namespace orvan {
namespace {

Json toJson(const HiddenThing& thing) {
  const auto textOrNull = [](const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); };
  return {
      {"key", thing.key},    {"scope", caseName(thing.scope)},          {"targetID", thing.targetID},
      {"name", thing.name},  {"personKey", textOrNull(thing.personID)}, {"displayName", textOrNull(thing.personName)},
      {"since", thing.since}};
}

/// "Ada Marsh", "the conversation "The boat" with Ada Marsh", "what came from mail mail-1a2b3c4d".
std::string inWords(const HiddenThing& thing) {
  const auto called = thing.name.empty() ? std::string{} : " \"" + thing.name + "\"";
  const auto whom = [&thing](const char* preposition) {
    return thing.personName ? preposition + *thing.personName : std::string{};
  };
  switch (thing.scope) {
    case HiddenScope::person:
      return printableText(thing.name.empty() ? thing.targetID : thing.name);
    case HiddenScope::conversation:
      return printableText("the conversation" + called + whom(" with "));
    case HiddenScope::mail:
      return printableText("a mail" + called + whom(" from ") + ", which waits for nothing");
    case HiddenScope::account:
      return printableText("what came from " + thing.name + " (" + thing.targetID + ")");
  }
  return "";
}

std::string sinceInWords(const HiddenThing& thing) {
  const auto since = parseInternetDateTime(thing.since);
  return since ? "since " + humanDateText(*since) : "since " + printableText(thing.since);
}

void print(const Hiding& hiding, OutputForm form) {
  if (form == OutputForm::json) {
    printJson(toJson(hiding.thing));
  } else if (hiding.outcome == Outcome::wasSo) {
    HumanOutput{}.line("Hidden already, " + sinceInWords(hiding.thing) + ": " + inWords(hiding.thing));
  } else {
    HumanOutput{}.line("Hidden: " + inWords(hiding.thing) + "\n'orvan unhide " + hiding.thing.key +
                       "' shows that again.");
  }
}

/// Nothing reminds of what is hidden.
void bringRemindersInLineIfAny(const CommandContext& context) {
  if (hasFollowUps(context.session)) {
    tell(context, bringRemindersInLine(context));
  }
}

void runHide(const CommandContext& context, const std::string& what) {
  const auto target = hidingTargetCalled(what, context.session, context.asOf);
  print(hide(context.session, target, context.asOf), context.output);
  bringRemindersInLineIfAny(context);
}

void runUnhide(const CommandContext& context, const std::string& what) {
  const auto thing = hiddenThingCalled(what, context.session);
  unhide(context.session, thing, context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(thing));
  } else {
    HumanOutput{}.line("Shown again: " + inWords(thing));
  }
  bringRemindersInLineIfAny(context);
}

void printThings(const std::vector<HiddenThing>& things) {
  const HumanOutput output;
  std::size_t width = 0;
  for (const auto& thing : things) {
    width = std::max(width, thing.key.size());
  }
  for (const auto& thing : things) {
    output.line(thing.key + std::string(width - thing.key.size(), ' ') + "  " + sinceInWords(thing) + "  " +
                inWords(thing));
  }
  if (things.empty()) {
    output.line("Nothing is hidden.");
  }
}

void runHidden(const CommandContext& context) {
  const auto things = context.session.readableStore().read(hiddenThings);
  if (context.output == OutputForm::human) {
    printThings(things);
    return;
  }
  auto document = Json::array();
  for (const auto& thing : things) {
    document.push_back(toJson(thing));
  }
  printJson(document);
}

std::string sentenceFor(WrongReason reason) {
  switch (reason) {
    case WrongReason::noQuestion:
      return "Noted that this is no question: ";
    case WrongReason::notWaiting:
      return "Noted that this waits for nothing until the next mail: ";
  }
  return "";
}

void runWrong(const CommandContext& context, const std::string& item) {
  const auto correction = sayWrong(context.session, item, context.asOf);
  if (context.output == OutputForm::json) {
    printJson({{"itemKey", correction.item.itemKey()}, {"wrong", caseName(correction.reason)}});
    return;
  }
  const HumanOutput output;
  output.line(sentenceFor(correction.reason) + printableText(correction.item.displayName()));
  output.line("  " + printableText(reasonInWords(correction.item.whyNow())));
  output.line("'orvan undo' takes that back.");
}

} // namespace

void addHidingCommands(CommandSet& commands) {
  const auto what = std::make_shared<std::string>();
  const auto takeWhat = [&what](CLI::App& command, const char* about) {
    command.add_option("WHAT", *what, about)->type_name("")->required()->check(notEmpty());
  };
  takeWhat(commands.add({"hide", "To correct", "Keep a person, a conversation or a whole source from being shown",
                         "orvan hide \"Ada Marsh\""},
                        [what](const auto& context) { runHide(context, *what); }),
           "A person; an item's key, for its conversation; an account, its kind or the path of its source");
  takeWhat(commands.add({"unhide", "To correct", "Show again what is hidden", "orvan unhide \"Ada Marsh\""},
                        [what](const auto& context) { runUnhide(context, *what); }),
           "What 'orvan hide' took, or a key that 'orvan hidden' gives");
  commands.add({"hidden", "To correct", "List what is hidden, and since when", "orvan hidden"}, runHidden);
  takeItem(commands.add({"wrong", "To correct", "Say that an item's question is none, or that it waits for nothing",
                         "orvan wrong \"Ada Marsh\""},
                        [what](const auto& context) { runWrong(context, *what); }),
           *what);
}

} // namespace orvan
