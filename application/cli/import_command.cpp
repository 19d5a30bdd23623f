#include <set>
#include <string>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/interruption.h"
#include "application/cli/json_output.h"
#include "application/cli/own_address_option.h"
#include "application/cli/progress_line.h"
#include "application/cli/source_failure.h"
#include "application/import/mail/maildir_source.h"
#include "application/import/mail/mbox_source.h"
#include "application/import/recognition/source_recognition.h"

namespace orvan {
namespace {

/// Imports one source after the other and tells of each. One that cannot be read does not keep the others away. A
/// signal ends the run, after what was read so far is in the store.
class ImportRun {
 public:
  ImportRun(const CommandContext& context, DatabaseQueue& store, std::vector<std::string> ownAddresses)
      : context_(context), store_(store), import_{std::move(ownAddresses), context.asOf, &watch_} {}

  void mbox(const std::filesystem::path& path) {
    take(path, mail_, [&] {
      requireMbox(path);
      MboxSource source(path, ownAddresses());
      return mail(source, path);
    });
  }

  void maildir(const std::filesystem::path& path) {
    take(path, mail_, [&] {
      MaildirSource source(path, ownAddresses());
      return mail(source, path);
    });
  }

  void calendar(const std::filesystem::path& path) {
    take(path, calendars_, [&] {
      requireCalendar(path);
      return meetings(path);
    });
  }

  void cards(const std::filesystem::path& path) {
    take(path, cards_, [&] {
      requireCards(path);
      return contactCards(path);
    });
  }

  /// Throws CommandFailure when a source was not imported, or the run was interrupted.
  void finish() const {
    if (context_.output == OutputForm::json) {
      printJson({{"mail", mail_}, {"calendars", calendars_}, {"cards", cards_}});
    }
    const auto signal = interruption_.signal();
    auto lines = failures_;
    if (signal) {
      lines.emplace_back(isAnythingLeft_ ? "Stopped. What was read so far is in the store; import the same again for "
                                           "the rest."
                                         : "Stopped, after everything was read.");
    } else if (!failures_.empty() && failures_.size() < mail_.size() + calendars_.size() + cards_.size()) {
      lines.emplace_back("Everything else was imported.");
    }
    if (!lines.empty()) {
      throw CommandFailure(signal ? exitCodeFor(*signal) : ExitCode::failed, joined(lines));
    }
  }

 private:
  static std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
      text += (text.empty() ? "" : "\n") + line;
    }
    return text;
  }

  std::set<std::string> ownAddresses() const { return {import_.ownAddresses.begin(), import_.ownAddresses.end()}; }

  /// `import` brings in the source at `path` and gives its report. What fails in the store ends the run.
  template <typename Import>
  void take(const std::filesystem::path& path, Json& reports, Import import) {
    if (watch_.isStopRequested()) {
      isAnythingLeft_ = true;
      return;
    }
    Json entry{{"source", path.string()}, {"error", nullptr}};
    try {
      entry.update(import());
    } catch (const Error& error) {
      const auto sentence = sourceFailureSentence(error.code());
      if (!sentence) {
        throw;
      }
      entry["error"] = *sentence;
      failures_.push_back(printableText(path.string()) + ": " + *sentence);
    }
    reports.push_back(std::move(entry));
  }

  Json mail(MailSource& source, const std::filesystem::path& path) {
    const auto report = [&] {
      const ProgressLine progress(watch_, "messages");
      return MailImporter(store_, import_).import(source);
    }();
    isAnythingLeft_ |= report.isStopped;
    if (context_.output == OutputForm::human) {
      HumanOutput{}.mailReport(path.string(), report);
    }
    return toJson(report);
  }

  Json meetings(const std::filesystem::path& path) {
    CalendarSource source(path, importWindow(import_.now), ownAddresses());
    const auto report = [&] {
      const ProgressLine progress(watch_, "events");
      return MeetingImporter(store_, import_, path).import(source);
    }();
    isAnythingLeft_ |= report.isStopped;
    if (context_.output == OutputForm::human) {
      HumanOutput{}.meetingReport(path.string(), report);
    }
    return toJson(report);
  }

  Json contactCards(const std::filesystem::path& path) {
    CardSource source(path);
    const auto report = [&] {
      const ProgressLine progress(watch_, "contact cards");
      return CardImporter(store_, import_).import(source);
    }();
    isAnythingLeft_ |= report.isStopped;
    if (context_.output == OutputForm::human) {
      HumanOutput{}.cardReport(path.string(), report);
    }
    return toJson(report);
  }

  const CommandContext& context_;
  DatabaseQueue& store_;
  ImportWatch watch_;
  Interruption interruption_{watch_};
  bool isAnythingLeft_ = false;
  ImportContext import_;
  Json mail_ = Json::array();
  Json calendars_ = Json::array();
  Json cards_ = Json::array();
  /// A sentence for each source that was not imported, behind its path.
  std::vector<std::string> failures_;
};

} // namespace

void runImport(const CommandContext& context, const ImportArguments& arguments) {
  if (arguments.mboxes.empty() && arguments.maildirs.empty() && arguments.calendars.empty() &&
      arguments.cards.empty()) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "Say what to import: --mbox FILE, --maildir FOLDER, --ics FILE or --vcard PATH.");
  }
  auto& store = context.session.writableStore();
  ImportRun run(context, store, ownAddressesWith(arguments.ownAddresses, context.asOf, store));
  for (const auto& path : arguments.mboxes) {
    run.mbox(path);
  }
  for (const auto& path : arguments.maildirs) {
    run.maildir(path);
  }
  for (const auto& path : arguments.calendars) {
    run.calendar(path);
  }
  // Once the mail is there: whom the user deals with most is who the others become.
  for (const auto& path : arguments.cards) {
    run.cards(path);
  }
  run.finish();
}

} // namespace orvan
