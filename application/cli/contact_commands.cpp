#include "application/cli/contact_commands.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/command_set.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/sparkline.h"
#include "application/cli/terminal_text.h"
#include "application/session/contact_history.h"
#include "application/session/contact_overview.h"
#include "application/session/shared_names.h"

namespace orvan {
namespace {

constexpr std::string_view labelColumns = "  They wrote  ";

Instant startOf(std::int64_t week) {
  return Instant{std::chrono::weeks{week}};
}

Json toJson(const std::optional<Instant>& instant) {
  return instant ? Json(formatInternetDateTime(*instant)) : Json(nullptr);
}

Json toJson(const std::optional<QuietStretch>& stretch) {
  return stretch ? Json{{"since", formatInternetDateTime(startOf(stretch->firstWeek))}, {"weeks", stretch->weeks}}
                 : Json(nullptr);
}

Json toJson(const ProjectedPerson& person, const ContactHistory& history) {
  return {{"personKey", person.personKey()},
          {"displayName", person.displayName()},
          {"firstWeekStartsAt", formatInternetDateTime(startOf(history.firstWeek))},
          {"mailsTo", history.mailsTo},
          {"mailsFrom", history.mailsFrom},
          {"meetings", history.meetings},
          {"lastMailToAt", toJson(history.lastMailToAt)},
          {"lastMailFromAt", toJson(history.lastMailFromAt)},
          {"lastMetAt", toJson(history.lastMetAt)},
          {"currentQuiet", toJson(history.currentQuiet)},
          {"longestQuiet", toJson(history.longestQuiet)}};
}

Json toJson(const ContactSummary& person) {
  return {{"personKey", person.personKey},
          {"displayName", person.displayName},
          {"lastContactAt", toJson(person.lastContactAt)},
          {"exchangedLastYear", person.exchangedLastYear},
          {"exchangedYearBefore", person.exchangedYearBefore},
          {"standing", caseName(person.standing)},
          {"waiting", caseName(person.waiting)},
          {"waitingSince", toJson(person.waitingSince)}};
}

std::string inWeeks(std::int64_t weeks) {
  return std::to_string(weeks) + (weeks == 1 ? " week" : " weeks");
}

std::string countOf(std::int64_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + " " + std::string{count == 1 ? one : many};
}

/// What is drawn of two years: a line each way and one of the meetings, as wide as the terminal lets them be.
class YearsDrawn {
 public:
  explicit YearsDrawn(const ContactHistory& history) : history_(history), style_(sparklineStyleOfLocale()) {
    const auto columns = columnsOfStandardOutput();
    while (columns && labelColumns.size() + charactersOfALine() > *columns && weeksTogether_ < weeksOfHistory) {
      ++weeksTogether_;
    }
    for (const auto* counts : {&history.mailsTo, &history.mailsFrom, &history.meetings}) {
      most_ = std::max(most_, std::ranges::max(summedUp(*counts, weeksTogether_)));
    }
  }

  std::string line(std::string_view label, const std::vector<std::int64_t>& counts) const {
    std::string text = "  " + std::string{label};
    text.resize(labelColumns.size(), ' ');
    return text + sparkline(summedUp(counts, weeksTogether_), most_, style_);
  }

  /// "since Nov 21, 2024, each character a week"
  std::string legend() const {
    const auto each = weeksTogether_ == 1 ? std::string{"a week"} : inWeeks(static_cast<std::int64_t>(weeksTogether_));
    return std::string(labelColumns.size(), ' ') + "since " + humanDateText(startOf(history_.firstWeek)) +
           ", each character " + each;
  }

 private:
  std::size_t charactersOfALine() const { return (weeksOfHistory + weeksTogether_ - 1) / weeksTogether_; }

  const ContactHistory& history_;
  SparklineStyle style_;
  std::size_t weeksTogether_ = 1;
  std::int64_t most_ = 0;
};

std::string lastInWords(const std::optional<Instant>& last) {
  return last ? ", the last on " + humanDateText(*last) : "";
}

std::string quietInWords(const ContactHistory& history) {
  std::string text;
  if (const auto& now = history.currentQuiet) {
    text = "Quiet for " + inWeeks(now->weeks) + " now. ";
  }
  const auto& longest = history.longestQuiet;
  if (!longest) {
    return text + "There has not been a whole week without contact.";
  }
  if (history.currentQuiet &&
      longest->firstWeek + longest->weeks == history.currentQuiet->firstWeek + history.currentQuiet->weeks) {
    return text + "It has not been quiet for longer in these two years.";
  }
  return text + "The longest quiet stretch of these two years was " + inWeeks(longest->weeks) + ", from " +
         humanDateText(startOf(longest->firstWeek)) + ".";
}

void print(const ProjectedPerson& person, const ContactHistory& history) {
  const HumanOutput output;
  output.heading(printableText(person.displayName()));
  if (!history.lastMailToAt && !history.lastMailFromAt && !history.lastMetAt) {
    output.line("  There was no contact that counts.");
    return;
  }
  const auto sum = [](const auto& counts) { return std::accumulate(counts.begin(), counts.end(), std::int64_t{0}); };
  const YearsDrawn drawn(history);
  output.line(drawn.line("You wrote", history.mailsTo));
  output.line(drawn.line("They wrote", history.mailsFrom));
  if (sum(history.meetings) > 0) {
    output.line(drawn.line("You met", history.meetings));
  }
  output.line(drawn.legend());
  output.line("  You wrote " + countOf(sum(history.mailsTo), "mail", "mails") + lastInWords(history.lastMailToAt) +
              ".");
  output.line("  They wrote " + countOf(sum(history.mailsFrom), "mail", "mails") + lastInWords(history.lastMailFromAt) +
              ".");
  if (history.lastMetAt) {
    output.line("  You met " + countOf(sum(history.meetings), "time", "times") + lastInWords(history.lastMetAt) + ".");
  }
  output.line("  " + quietInWords(history));
}

void runContact(const CommandContext& context, const std::string& text) {
  const auto personKey = context.session.personKeyOf(text);
  const auto person = context.session.person(personKey);
  if (!person || context.session.isHidden(personKey)) {
    throw CommandFailure(ExitCode::failed, "That person is hidden; 'orvan unhide PERSON' shows them again.");
  }
  const auto history = contactHistory(context.session, personKey, context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(*person, history));
  } else {
    print(*person, history);
  }
}

struct OverviewArguments {
  bool isAll = false;
};

/// Prints the groups of an overview, or the first few of each.
class OverviewPrinting {
 public:
  OverviewPrinting(const std::vector<ContactSummary>& overview, const OverviewArguments& arguments, Session& session)
      : arguments_(arguments), shared_(overview), session_(session) {}

  using Telling = std::function<std::string(const ContactSummary&)>;

  void print(std::string_view title, const std::vector<ContactSummary>& group, const Telling& telling) {
    constexpr std::size_t usualRows = 8;
    if (group.empty()) {
      return;
    }
    output_.heading((isFirst_ ? "" : "\n") + std::string{title} + " (" + std::to_string(group.size()) + ")");
    isFirst_ = false;
    const auto shown = arguments_.isAll ? group.size() : std::min(group.size(), usualRows);
    const auto names = namesOf(std::span{group}.first(shown));
    std::size_t width = 0;
    for (const auto& name : names) {
      width = std::max(width, columnsOf(name));
    }
    for (std::size_t row = 0; row < shown; ++row) {
      const auto blanks = std::string(width - columnsOf(names[row]), ' ');
      output_.row("  " + names[row] + blanks + "  " + telling(group[row]));
    }
    if (shown < group.size()) {
      output_.line("  and " + std::to_string(group.size() - shown) + " more");
      isCut_ = true;
    }
  }

  bool isEmpty() const noexcept { return isFirst_; }
  bool isCut() const noexcept { return isCut_; }

 private:
  std::vector<std::string> namesOf(std::span<const ContactSummary> people) {
    return session_.readableStore().read([&](Connection& connection) {
      std::vector<std::string> names;
      for (const auto& person : people) {
        const auto address = shared_.addressToTell(person.displayName, person.personKey, connection);
        names.push_back(printableText(person.displayName + (address ? " <" + *address + ">" : "")));
      }
      return names;
    });
  }

  const OverviewArguments& arguments_;
  SharedNames shared_;
  Session& session_;
  HumanOutput output_;
  bool isFirst_ = true;
  bool isCut_ = false;
};

std::string dateOf(const std::optional<Instant>& instant) {
  return instant ? humanDateText(*instant) : "";
}

/// "12 in a year, 85 the year before"
std::string exchangedInWords(const ContactSummary& person) {
  return std::to_string(person.exchangedLastYear) + " in a year, " + std::to_string(person.exchangedYearBefore) +
         " the year before";
}

void printOverview(const std::vector<ContactSummary>& overview, const OverviewArguments& arguments, Session& session) {
  const auto groups = contactGroups(overview);
  OverviewPrinting printing(overview, arguments, session);
  const auto lastAndHowMuch = [](const ContactSummary& person) {
    return "last " + dateOf(person.lastContactAt) + "; " + exchangedInWords(person);
  };
  const auto waitingMail = [](const char* whose) {
    return [whose](const ContactSummary& person) { return whose + dateOf(person.waitingSince); };
  };
  printing.print("Drifted away", groups.driftedAway, lastAndHowMuch);
  printing.print("In touch", groups.inTouch, lastAndHowMuch);
  printing.print("They wrote last, and wait for you", groups.waitingForUser, waitingMail("since "));
  printing.print("You wrote last, and they have not answered", groups.waitingForThem, waitingMail("since "));
  const HumanOutput output;
  if (printing.isEmpty()) {
    output.line("There is too little contact to tell; 'orvan people' lists whom you deal with.");
  } else if (printing.isCut()) {
    output.line("\n'orvan overview --all' lists everyone, 'orvan contact PERSON' shows two years with one of them.");
  }
}

void runOverview(const CommandContext& context, const OverviewArguments& arguments) {
  const auto overview = contactOverview(context.session, context.asOf);
  if (context.output == OutputForm::human) {
    printOverview(overview, arguments, context.session);
    return;
  }
  auto document = Json::array();
  for (const auto& person : overview) {
    document.push_back(toJson(person));
  }
  printJson(document);
}

} // namespace

void addContactCommands(CommandSet& commands) {
  const auto person = std::make_shared<std::string>();
  takePerson(commands.add({"contact", "To see", "Draw two years of contact with a person, week by week",
                           "orvan contact \"Ada Marsh\""},
                          [person](const auto& context) { runContact(context, *person); }),
             *person);
  const auto arguments = std::make_shared<OverviewArguments>();
  commands
      .add({"overview", "To see", "Tell who drifted away, who is in touch, and who waits for whom", "orvan overview"},
           [arguments](const auto& context) { runOverview(context, *arguments); })
      .add_flag("--all", arguments->isAll, "Everyone of each group");
}

} // namespace orvan
