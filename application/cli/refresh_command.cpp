#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/command_set.h"
#include "application/cli/human_output.h"
#include "application/cli/interruption.h"
#include "application/cli/json_output.h"
#include "application/cli/own_address_option.h"
#include "application/cli/progress_line.h"
#include "application/cli/sources_commands.h"
#include "application/sources/refresh.h"

namespace orvan {
namespace {

std::string_view caseName(Refreshment::Outcome outcome) noexcept {
  switch (outcome) {
    case Refreshment::Outcome::unchanged:
      return "unchanged";
    case Refreshment::Outcome::read:
      return "read";
    case Refreshment::Outcome::failed:
      return "failed";
    case Refreshment::Outcome::stopped:
      return "stopped";
  }
  return "failed";
}

Json toJson(const RememberedSource& source, const Refreshment& result) {
  Json troubles = Json::array();
  for (const auto& trouble : result.troubles) {
    troubles.push_back({{"name", trouble.name}, {"error", trouble.sentence}});
  }
  return {{"number", source.number},
          {"kind", nameOf(source.kind)},
          {"source", source.path.string()},
          {"outcome", caseName(result.outcome)},
          {"isInUse", result.isInUse},
          {"mail", result.mail ? orvan::toJson(*result.mail) : Json(nullptr)},
          {"meetings", result.meetings ? orvan::toJson(*result.meetings) : Json(nullptr)},
          {"cards", result.cards ? orvan::toJson(*result.cards) : Json(nullptr)},
          {"troubles", troubles},
          {"leftOut", result.leftOut},
          {"readAnew", result.readAnew}};
}

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (const auto& name : names) {
    text += (text.empty() ? "" : ", ") + printableText(name);
  }
  return text;
}

/// Tells of each source as it is done, and of all that failed at the end.
class RefreshRun {
 public:
  RefreshRun(const CommandContext& context, DatabaseQueue& store, std::vector<std::string> ownAddresses)
      : context_(context),
        refresh_(store, {std::move(ownAddresses), context.asOf, &watch_},
                 std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now())) {}

  void bringIn(const RememberedSource& source) {
    if (watch_.isStopRequested()) {
      isAnythingLeft_ = true;
      return;
    }
    const auto result = [&] {
      const ProgressLine progress(watch_, source.kind == SourceKind::mail ? "messages" : "events");
      return refresh_.bringIn(source);
    }();
    isAnythingLeft_ |= result.outcome == Refreshment::Outcome::stopped;
    ++count_;
    countFailed_ += result.outcome == Refreshment::Outcome::failed ? 1 : 0;
    if (context_.output == OutputForm::json) {
      reports_.push_back(toJson(source, result));
    } else {
      tell(source, result);
    }
    for (const auto& trouble : result.troubles) {
      const auto place = trouble.name.empty() ? source.path : source.path / trouble.name;
      failures_.push_back(printableText(place.string()) + ": " + trouble.sentence);
    }
  }

  /// Throws CommandFailure when a source could not be read, or the run was interrupted.
  void finish() const {
    if (context_.output == OutputForm::json) {
      printJson({{"sources", reports_}});
    }
    const auto signal = interruption_.signal();
    auto lines = failures_;
    if (signal) {
      lines.emplace_back(isAnythingLeft_ ? "Stopped. What was read so far is in the store; the next 'orvan refresh' "
                                           "goes on from there."
                                         : "Stopped, after everything was read.");
    } else if (countFailed_ > 0 && countFailed_ < count_) {
      lines.emplace_back("Everything else is up to date.");
    }
    if (lines.empty()) {
      return;
    }
    std::string text;
    for (const auto& line : lines) {
      text += (text.empty() ? "" : "\n") + line;
    }
    throw CommandFailure(signal ? exitCodeFor(*signal) : ExitCode::failed, text);
  }

 private:
  static void tell(const RememberedSource& source, const Refreshment& result) {
    const HumanOutput output;
    const auto path = source.path.string();
    if (result.mail && result.mail->read > 0) {
      output.mailReport(path, *result.mail);
    } else if (result.meetings) {
      output.meetingReport(path, *result.meetings);
    } else if (result.cards) {
      output.cardReport(path, *result.cards);
    } else if (result.outcome == Refreshment::Outcome::unchanged) {
      output.line(printableText(path) + ": nothing new");
    }
    if (!result.leftOut.empty() && result.mail && result.mail->read > 0) {
      output.line("  left out, as thrown away or not sent: " + listed(result.leftOut));
    }
    if (!result.readAnew.empty()) {
      output.line("  became smaller or was replaced, and was read from its beginning" +
                  (result.readAnew.front().empty() ? "" : ": " + listed(result.readAnew)));
    }
    if (result.isInUse) {
      output.line("  its mail program has it open; what that is writing now is read the next time");
    }
  }

  const CommandContext& context_;
  ImportWatch watch_;
  Interruption interruption_{watch_};
  Refresh refresh_;
  bool isAnythingLeft_ = false;
  std::size_t count_ = 0;
  std::size_t countFailed_ = 0;
  Json reports_ = Json::array();
  /// A sentence for each place that could not be read, behind its path.
  std::vector<std::string> failures_;
};

void runRefresh(const CommandContext& context, const std::vector<std::string>& given) {
  auto& store = context.session.writableStore();
  const auto sources = store.read(rememberedSources);
  if (sources.empty() && context.output == OutputForm::human) {
    HumanOutput{}.line(
        "No source is remembered yet; 'orvan sources discover' looks for mail and calendars, and 'orvan "
        "sources add PATH' remembers them.");
    return;
  }
  RefreshRun run(context, store, ownAddressesWith(given, context.asOf, store));
  for (const auto& source : sources) {
    run.bringIn(source);
  }
  run.finish();
}

} // namespace

void addRefreshCommand(CommandSet& commands) {
  const auto ownAddresses = std::make_shared<std::vector<std::string>>();
  auto& refresh =
      commands.add({"refresh", "To begin", "Bring in what is new in the sources; safe to stop and to repeat",
                    "orvan refresh --me you@example.org"},
                   [ownAddresses](const auto& context) { runRefresh(context, *ownAddresses); });
  takeOwnAddresses(refresh, *ownAddresses);
}

} // namespace orvan
