#include <algorithm>
#include <iterator>
#include <span>

#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/showing.h"
#include "application/session/item_lookup.h"

namespace orvan {
namespace {

std::string nameOf(Session& session, const std::string& personKey) {
  const auto person = session.person(personKey);
  return person ? person->displayName() : "Somebody unknown";
}

std::vector<Matter> mattersOf(Session& session, const AttentionEvidenceBundle& bundle) {
  return session.readableStore().read([&](Connection& connection) { return orvan::mattersOf(bundle, connection); });
}

void printBundle(Session& session, const AttentionEvidenceBundle& bundle, const HumanOutput& output) {
  output.bundle(bundle, nameOf(session, bundle.personKey()), mattersOf(session, bundle));
}

/// Under the key that a list would show the reason by.
void noteShown(const CommandContext& context, const AttentionEvidenceBundle& bundle) {
  const auto person = context.session.person(bundle.personKey());
  if (const auto item = person ? itemOf(*person, bundle, context.asOf) : std::nullopt) {
    noteShown(context, std::span{&*item, 1});
  }
}

void noteShown(const CommandContext& context, std::span<const CatchUpRow> rows) {
  std::vector<AttentionCatchUpItem> items;
  items.reserve(rows.size());
  std::ranges::transform(rows, std::back_inserter(items), &CatchUpRow::item);
  noteShown(context, items);
}

/// What is older stays closed unless it is asked for.
std::size_t rowsOnATerminal(const CatchUpList& list, const CatchUpArguments& arguments) {
  constexpr std::size_t usualRows = 10;
  if (arguments.isAll) {
    return list.rows.size();
  }
  return std::min(list.rows.size() - list.older, arguments.limit.value_or(usualRows));
}

} // namespace

void runBundle(const CommandContext& context, const std::string& person) {
  context.session.openForReading();
  const auto bundle = context.session.bundle(context.session.personKeyOf(person), context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(bundle));
  } else {
    printBundle(context.session, bundle, HumanOutput{});
  }
}

void runBundles(const CommandContext& context) {
  const auto bundles = context.session.bundles(context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(bundles));
    return;
  }
  const HumanOutput output;
  for (const auto& bundle : bundles) {
    printBundle(context.session, bundle, output);
  }
}

void runWhy(const CommandContext& context, const std::string& person) {
  openToShow(context);
  const auto personKey = context.session.personKeyOf(person);
  const auto bundle = context.session.bundle(personKey, context.asOf);
  const auto fromEvidence = AttentionWhyNowSelector::select(bundle);
  const auto followUp = followUpThatStands(personKey, context.session, context.asOf);
  const auto item = followUp ? std::optional{followUp->item->whyNow()} : fromEvidence;
  if (context.output == OutputForm::json) {
    printJson(item ? toJson(*item) : Json(nullptr));
  } else if (followUp) {
    HumanOutput{}.why(*followUp, fromEvidence);
    noteShown(context, std::span{&*followUp->item, 1});
  } else if (item) {
    HumanOutput{}.whyNow(*item);
    noteShown(context, bundle);
  } else {
    HumanOutput{}.line(context.session.isHidden(bundle.personKey())
                           ? "That person is hidden; 'orvan unhide PERSON' shows them again."
                           : "There is no reason to get in touch now.");
  }
}

void runCatchUp(const CommandContext& context, const CatchUpArguments& arguments) {
  const auto explanation = arguments.isExplained ? Explanation::everyone : Explanation::none;
  openToShow(context);
  const auto list = makeCatchUpList(context.session, context.asOf, explanation);
  if (context.output == OutputForm::json) {
    printJson(toJson(list, arguments.limit, explanation));
  } else {
    const auto shown = rowsOnATerminal(list, arguments);
    HumanOutput{}.catchUpList(list, shown, explanation, context.asOf);
    noteShown(context, std::span{list.rows}.first(shown));
  }
}

} // namespace orvan
