#include "application/cli/sources_commands.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/command_set.h"
#include "application/cli/confirmation.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/source_failure.h"
#include "application/sources/remembered_source.h"
#include "application/sources/source_adding.h"
#include "application/sources/source_discovery.h"
#include "application/sources/source_recognizer.h"
#include "application/sources/watched_folders.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;

struct SourceArguments {
  std::vector<fs::path> paths;
  std::string every;
};

struct DiscoverArguments {
  bool isConfirmed = false;
};

/// "12h" and the like; nothing for anything else, and for what is shorter than a minute or longer than a year.
std::optional<seconds> parseInterval(std::string_view text) {
  int count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  constexpr int most = 600'000;
  if (error != std::errc{} || end + 1 != text.data() + text.size() || count <= 0 || count > most) {
    return std::nullopt;
  }
  std::optional<seconds> interval;
  switch (*end) {
    case 'm':
      interval = std::chrono::minutes{count};
      break;
    case 'h':
      interval = std::chrono::hours{count};
      break;
    case 'd':
      interval = std::chrono::days{count};
      break;
    case 'w':
      interval = std::chrono::weeks{count};
      break;
    default:
      break;
  }
  constexpr std::chrono::days year{366};
  return interval && *interval <= year ? interval : std::nullopt;
}

std::string countedUnits(std::int64_t count, const char* unit) {
  return std::to_string(count) + " " + unit + (count == 1 ? "" : "s");
}

/// What follows "every", in the largest unit that leaves no rest: "12 hours", and "day" for a single one.
std::string intervalInWords(seconds interval) {
  const auto inUnits = [interval](seconds unit, const char* name) {
    const auto count = interval / unit;
    return count == 1 ? std::string{name} : countedUnits(count, name);
  };
  if (interval % std::chrono::days{1} == seconds{0}) {
    return inUnits(std::chrono::days{1}, "day");
  }
  if (interval % std::chrono::hours{1} == seconds{0}) {
    return inUnits(std::chrono::hours{1}, "hour");
  }
  return inUnits(std::chrono::minutes{1}, "minute");
}

std::string ago(Instant then, Instant now) {
  const auto passed = now - then;
  if (passed < std::chrono::minutes{1}) {
    return "just now";
  }
  if (passed < std::chrono::hours{1}) {
    return countedUnits(passed / std::chrono::minutes{1}, "minute") + " ago";
  }
  if (passed < std::chrono::days{2}) {
    return countedUnits(passed / std::chrono::hours{1}, "hour") + " ago";
  }
  constexpr std::chrono::days month{30};
  return passed < month ? countedUnits(passed / std::chrono::days{1}, "day") + " ago" : "on " + humanDateText(then);
}

std::string inWords(const RememberedSource& source, Instant asOf) {
  auto last = source.lastSucceededAt ? "read " + ago(*source.lastSucceededAt, asOf) : "never read";
  switch (stateOf(source, asOf)) {
    case SourceState::current:
      return "fresh, " + last;
    case SourceState::stale:
      return "stale, " + last;
    case SourceState::neverRead:
      return last;
    case SourceState::failing:
      return "failing, " + last;
  }
  return last;
}

Json nullableTime(const std::optional<Instant>& instant) {
  return instant ? Json(formatInternetDateTime(*instant)) : Json(nullptr);
}

Json toJson(const RememberedSource& source, Instant asOf) {
  return {{"number", source.number},
          {"kind", nameOf(source.kind)},
          {"path", source.path.string()},
          {"sourceAccountID", source.account.id},
          {"state", nameOf(stateOf(source, asOf))},
          {"fault", source.lastFault ? Json(*source.lastFault) : Json(nullptr)},
          {"lastSucceededAt", nullableTime(source.lastSucceededAt)},
          {"lastTriedAt", nullableTime(source.lastTriedAt)},
          {"usualIntervalSeconds", source.usualInterval.count()}};
}

void runListSources(const CommandContext& context) {
  const auto sources = context.session.readableStore().read(rememberedSources);
  if (context.output == OutputForm::json) {
    Json rows = Json::array();
    for (const auto& source : sources) {
      rows.push_back(toJson(source, context.asOf));
    }
    printJson({{"sources", rows}});
    return;
  }
  const HumanOutput output;
  if (sources.empty()) {
    output.line("No source is remembered yet; 'orvan sources discover' looks for mail and calendars.");
  }
  for (const auto& source : sources) {
    const auto kind = std::string{nameOf(source.kind)};
    output.line(std::to_string(source.number) + "  " + kind + std::string(10 - kind.size(), ' ') +
                printableText(source.path.string()));
    output.line("   " + inWords(source, context.asOf) + "; usually every " + intervalInWords(source.usualInterval));
    if (source.lastFault) {
      output.line("   " + printableText(*source.lastFault));
    }
  }
}

Json toJson(const WatchedFolder& folder) {
  return {{"path", folder.path.string()}, {"names", folder.names ? Json(*folder.names) : Json(nullptr)}};
}

void tell(const WatchedFolder& folder, const HumanOutput& output) {
  output.line(printableText(folder.path.string()));
  if (folder.names) {
    for (const auto& name : *folder.names) {
      output.line("   " + printableText(name));
    }
  }
}

void runFolders(const CommandContext& context) {
  const auto sources = context.session.readableStore().read(rememberedSources);
  const auto folders = watchedFoldersOf(sources);
  if (context.output == OutputForm::json) {
    Json rows = Json::array();
    for (const auto& folder : folders) {
      rows.push_back(toJson(folder));
    }
    printJson({{"remembered", sources.size()}, {"folders", rows}});
    return;
  }
  const HumanOutput output;
  if (folders.empty()) {
    output.line("There is no folder to look at; 'orvan sources list' shows what is remembered.");
  }
  for (const auto& folder : folders) {
    tell(folder, output);
  }
}

/// Remembers sources and tells of each what became of it.
class AddingRun {
 public:
  AddingRun(const CommandContext& context, std::optional<seconds> interval)
      : context_(context), store_(context.session.writableStore()), interval_(interval) {}

  void add(const fs::path& path) {
    try {
      for (const auto& source : recognizeSources(path)) {
        remember(source);
      }
    } catch (const Error& error) {
      auto sentence = sentenceOnSourceToAdd(error.code());
      if (!sentence) {
        throw;
      }
      refuse(path, *sentence);
    }
  }

  void finish(Json found = nullptr) const {
    if (context_.output == OutputForm::json) {
      Json document;
      if (!found.is_null()) {
        document["found"] = std::move(found);
      }
      document["sources"] = entries_;
      printJson(document);
    } else if (countAdded_ > 0) {
      HumanOutput{}.line("'orvan refresh' brings in what is in " + std::string{countAdded_ == 1 ? "it." : "them."});
    }
    if (!failures_.empty()) {
      std::string text;
      for (const auto& failure : failures_) {
        text += (text.empty() ? "" : "\n") + failure;
      }
      throw CommandFailure(ExitCode::failed, text);
    }
  }

 private:
  void remember(const RecognizedSource& source) {
    const auto told = store_.write([&](Connection& connection) { return rememberIn(source, connection); });
    const bool isNew = told.outcome == AddedSource::Outcome::added;
    const bool isRefused = told.outcome == AddedSource::Outcome::refused;
    entries_.push_back({{"path", source.path.string()},
                        {"kind", nameOf(source.kind)},
                        {"number", told.number},
                        {"isNew", isNew},
                        {"error", isRefused ? Json(told.sentence) : Json(nullptr)}});
    countAdded_ += isNew ? 1 : 0;
    if (isRefused) {
      failures_.push_back(printableText(source.path.string()) + ": " + told.sentence);
    } else if (context_.output == OutputForm::human) {
      HumanOutput{}.line(printableText(source.path.string()) + ": " + told.sentence);
    }
  }

  struct Told {
    AddedSource::Outcome outcome;
    std::int64_t number;
    std::string sentence;
  };

  Told rememberIn(const RecognizedSource& source, Connection& connection) const {
    auto result = addSource(source, interval_.value_or(usualUsualInterval), context_.asOf, connection);
    const auto number = std::to_string(result.number);
    switch (result.outcome) {
      case AddedSource::Outcome::added:
        return {result.outcome, result.number,
                "remembered as source " + number + ", " + std::string{nameOf(source.kind)}};
      case AddedSource::Outcome::known:
        return {result.outcome, result.number,
                "remembered already as source " + number + again(result.number, connection)};
      case AddedSource::Outcome::refused:
        break;
    }
    return {result.outcome, result.number, std::move(result.refusal)};
  }

  /// Sets the interval of a source that is remembered already, and says so.
  std::string again(std::int64_t number, Connection& connection) const {
    const auto sources = rememberedSources(connection);
    const auto known = std::ranges::find(sources, number, &RememberedSource::number);
    if (!interval_ || *interval_ == known->usualInterval) {
      return "";
    }
    setUsualInterval(number, *interval_, connection);
    return "; from now on usually read every " + intervalInWords(*interval_);
  }

  void refuse(const fs::path& path, const std::string& sentence) {
    entries_.push_back(
        {{"path", path.string()}, {"kind", nullptr}, {"number", nullptr}, {"isNew", false}, {"error", sentence}});
    failures_.push_back(printableText(path.string()) + ": " + sentence);
  }

  const CommandContext& context_;
  DatabaseQueue& store_;
  std::optional<seconds> interval_;
  Json entries_ = Json::array();
  std::size_t countAdded_ = 0;
  std::vector<std::string> failures_;
};

void runAddSource(const CommandContext& context, const SourceArguments& arguments) {
  std::optional<seconds> interval;
  if (!arguments.every.empty()) {
    interval = parseInterval(arguments.every);
    if (!interval) {
      throw CommandFailure(ExitCode::wrongCommandLine,
                           "--every takes a number of minutes, hours, days or weeks, such as 30m, 12h, 1d or 2w.");
    }
  }
  AddingRun run(context, interval);
  for (const auto& path : arguments.paths) {
    run.add(path);
  }
  run.finish();
}

/// By its number, or by its path, which need not be there any more.
std::optional<RememberedSource> sourceCalled(const std::string& text, Connection& connection) {
  std::error_code unreachable;
  const auto path = fs::weakly_canonical(fs::absolute(text), unreachable);
  for (auto& source : rememberedSources(connection)) {
    if (std::to_string(source.number) == text || source.path == text || source.path == path) {
      return std::move(source);
    }
  }
  return std::nullopt;
}

void runRemoveSource(const CommandContext& context, const std::string& text) {
  const auto removed = context.session.writableStore().write([&](Connection& connection) {
    const auto source = sourceCalled(text, connection);
    if (source) {
      forgetSource(source->number, connection);
    }
    return source;
  });
  if (!removed) {
    throw CommandFailure(ExitCode::failed, "No source has that number or path; 'orvan sources list' shows them.");
  }
  if (context.output == OutputForm::json) {
    printJson({{"removed", toJson(*removed, context.asOf)}});
    return;
  }
  HumanOutput{}.line(printableText(removed->path.string()) + ": taken off the list; what was imported from it stays.");
}

std::string sizeInWords(std::uintmax_t bytes) {
  constexpr std::uintmax_t kilobyte = 1024;
  constexpr std::uintmax_t megabyte = kilobyte * 1024;
  constexpr std::uintmax_t gigabyte = megabyte * 1024;
  if (bytes >= gigabyte) {
    const auto tenths = bytes * 10 / gigabyte;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " GB";
  }
  return bytes >= megabyte ? std::to_string(bytes / megabyte) + " MB"
                           : std::to_string((bytes + kilobyte - 1) / kilobyte) + " kB";
}

/// Those of what was found that are not brought in already.
std::vector<DiscoveredSource> newAmong(const std::vector<DiscoveredSource>& found,
                                       const std::vector<RememberedSource>& known) {
  std::vector<DiscoveredSource> fresh;
  std::ranges::copy_if(found, std::back_inserter(fresh),
                       [&known](const DiscoveredSource& source) { return !isBroughtIn(source, known); });
  return fresh;
}

Json toJson(const Discovery& discovery, const std::vector<DiscoveredSource>& fresh) {
  Json found = Json::array();
  for (const auto& source : discovery.sources) {
    const bool isNew = std::ranges::find(fresh, source.path, &DiscoveredSource::path) != fresh.end();
    found.push_back({{"kind", nameOf(source.kind)},
                     {"path", source.path.string()},
                     {"keeper", source.keeper},
                     {"bytes", source.bytes},
                     {"isInUse", source.isInUse},
                     {"isRemembered", !isNew}});
  }
  return found;
}

std::string described(const DiscoveredSource& source) {
  return source.keeper + ": " + std::string{nameOf(source.kind)} + " in " + printableText(source.path.string()) + " (" +
         sizeInWords(source.bytes) + ")";
}

void tell(const Discovery& discovery, const std::vector<DiscoveredSource>& fresh) {
  const HumanOutput output;
  if (discovery.sources.empty()) {
    output.line(
        "Nothing was found where mail programs and calendars usually keep their files; 'orvan sources add "
        "PATH' remembers what lies elsewhere.");
  } else if (fresh.empty()) {
    output.line("All that was found is remembered already.");
  }
  for (const auto& source : fresh) {
    output.line(described(source));
    if (source.isInUse) {
      output.line("  is in use by its program, and can be read all the same");
    }
  }
  for (const auto& trouble : discovery.troubles) {
    output.line(printableText(trouble.name) + ": " + trouble.sentence);
  }
  if (discovery.isInThunderbirdsDatabases) {
    output.line(
        "Thunderbird keeps its own calendar and address book in databases; export them there as .ics and .vcf files "
        "and add those.");
  }
}

/// What the user agrees to.
std::vector<DiscoveredSource> agreedAmong(std::vector<DiscoveredSource> fresh, bool isConfirmedAlready) {
  if (isConfirmedAlready || fresh.empty()) {
    return fresh;
  }
  if (fresh.size() > 1 && isConfirmed("Remember and read all " + std::to_string(fresh.size()) + "?")) {
    return fresh;
  }
  std::erase_if(fresh, [](const DiscoveredSource& source) {
    return !isConfirmed("Remember and read " + described(source) + "?");
  });
  return fresh;
}

void runDiscover(const CommandContext& context, const DiscoverArguments& arguments) {
  const auto known = context.session.readableStore().read(rememberedSources);
  const auto discovery = discoverSources(UserPlaces::ofThisUser());
  const auto fresh = newAmong(discovery.sources, known);
  if (context.output == OutputForm::human) {
    tell(discovery, fresh);
  }
  const auto agreed = agreedAmong(fresh, arguments.isConfirmed);
  if (!agreed.empty()) {
    AddingRun run(context, std::nullopt);
    for (const auto& source : agreed) {
      run.add(source.path);
    }
    run.finish(toJson(discovery, fresh));
  } else if (context.output == OutputForm::json) {
    printJson({{"found", toJson(discovery, fresh)}, {"sources", Json::array()}});
  } else if (!fresh.empty() && !canAsk()) {
    HumanOutput{}.line(
        "Nothing was read yet; 'orvan sources discover --yes' remembers all of these, 'orvan sources "
        "add PATH' one of them.");
  }
}

} // namespace

void addSourcesCommands(CommandSet& commands) {
  auto& sources = commands.add(
      {"sources", "To begin", "Say which mail and calendars are kept up to date", "orvan sources discover"},
      runListSources);

  const auto adding = std::make_shared<SourceArguments>();
  auto& add = commands.addTo(sources,
                             {"add", nullptr, "Remember mail, calendars or contact cards, for 'orvan refresh'",
                              "orvan sources add ~/Maildir ~/calendar.ics --every 12h"},
                             [adding](const auto& context) { runAddSource(context, *adding); });
  add.add_option("PATH", adding->paths, "An mbox file, a Maildir, a folder of these, an .ics or .vcf file or a folder")
      ->type_name("")
      ->required()
      ->check(notEmpty());
  add.add_option("--every", adding->every, "How often it is usually refreshed: 30m, 12h, 1d, 2w (default: 1d)")
      ->type_name("TIME")
      ->check(notEmpty());

  commands.addTo(sources, {"list", nullptr, "Show what is remembered and how fresh it is", "orvan sources list"},
                 runListSources);

  commands.addTo(sources,
                 {"folders", nullptr, "Show in which folders something new shows", "orvan sources folders --json"},
                 runFolders);

  const auto removed = std::make_shared<std::string>();
  commands
      .addTo(sources, {"remove", nullptr, "Keep a source up to date no longer", "orvan sources remove 2"},
             [removed](const auto& context) { runRemoveSource(context, *removed); })
      .add_option("SOURCE", *removed, "A source's number or path")
      ->type_name("")
      ->required()
      ->check(notEmpty());

  const auto discovering = std::make_shared<DiscoverArguments>();
  commands
      .addTo(sources,
             {"discover", nullptr, "Look where mail programs and calendars keep their files", "orvan sources discover"},
             [discovering](const auto& context) { runDiscover(context, *discovering); })
      .add_flag("--yes,-y", discovering->isConfirmed, "Remember all that is found, without asking");
}

} // namespace orvan
