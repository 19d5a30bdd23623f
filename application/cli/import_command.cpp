#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <ranges>
#include <set>
#include <string>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/source_failure.h"
#include "application/import/address/normal_address.h"
#include "application/import/ledger/own_addresses.h"
#include "application/import/mail/maildir_source.h"
#include "application/import/mail/mbox_source.h"
#include "application/import/recognition/source_recognition.h"

namespace orvan {
namespace {

/// One line on the terminal that is written over; nothing when standard error is no terminal.
class ProgressLine {
 public:
  ~ProgressLine() { clear(); }

  void show(const MailReport& report, std::uint64_t bytesRead, std::uint64_t bytesTotal) {
    if (!isTerminal_) {
      return;
    }
    const auto percent = bytesTotal == 0 ? 100 : std::min<std::uint64_t>(bytesRead * 100 / bytesTotal, 100);
    std::cerr << "\r\033[K" << report.read << " messages, " << percent << " %" << std::flush;
    isShown_ = true;
  }

  void clear() {
    if (isShown_) {
      std::cerr << "\r\033[K" << std::flush;
      isShown_ = false;
    }
  }

 private:
  bool isTerminal_ = isatty(STDERR_FILENO) != 0;
  bool isShown_ = false;
};

std::string ownAddress(const std::string& written) {
  if (auto address = normalAddress(written)) {
    return *std::move(address);
  }
  throw CommandFailure(ExitCode::wrongCommandLine, "--me takes mail addresses, such as robin@example.org.");
}

/// Those given and those that earlier imports were told, whichever calendar or mailbox they were told with.
std::vector<std::string> ownAddressesFor(const ImportArguments& arguments, Instant now, DatabaseQueue& store) {
  std::vector<std::string> given;
  given.reserve(arguments.ownAddresses.size());
  for (const auto& written : arguments.ownAddresses) {
    given.push_back(ownAddress(written));
  }
  const auto all = store.write(
      [&](Connection& connection) { return rememberOwnAddresses(given, formatInternetDateTime(now), connection); });
  if (all.empty()) {
    throw CommandFailure(ExitCode::wrongCommandLine, "Say which addresses are yours: --me ADDRESS...");
  }
  return {all.begin(), all.end()};
}

/// Imports one source after the other and tells of each. One that cannot be read does not keep the others away.
class ImportRun {
 public:
  ImportRun(const CommandContext& context, DatabaseQueue& store, std::vector<std::string> ownAddresses)
      : context_(context), store_(store), import_{std::move(ownAddresses), context.asOf} {}

  void mbox(const std::filesystem::path& path) {
    take(path, mail_, [&] {
      requireMbox(path);
      MboxSource source(path);
      return mail(source, path);
    });
  }

  void maildir(const std::filesystem::path& path) {
    take(path, mail_, [&] {
      MaildirSource source(path);
      return mail(source, path);
    });
  }

  void calendar(const std::filesystem::path& path) {
    take(path, calendars_, [&] {
      requireCalendar(path);
      return meetings(path);
    });
  }

  /// Throws CommandFailure when a source was not imported.
  void finish() const {
    if (context_.output == OutputForm::json) {
      printJson({{"mail", mail_}, {"calendars", calendars_}});
    }
    if (failures_.empty()) {
      return;
    }
    // A line for each.
    std::string sentences = failures_.front();
    for (const auto& failure : failures_ | std::views::drop(1)) {
      sentences += "\n" + failure;
    }
    if (failures_.size() < mail_.size() + calendars_.size()) {
      sentences += "\nEverything else was imported.";
    }
    throw CommandFailure(ExitCode::failed, sentences);
  }

 private:
  /// `import` brings in the source at `path` and gives its report. What fails in the store ends the run.
  template <typename Import>
  void take(const std::filesystem::path& path, Json& reports, Import import) {
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
    ProgressLine progress;
    MailImporter importer(store_, import_);
    const auto report =
        importer.import(source, [&](const MailReport& soFar, std::uint64_t bytesRead, std::uint64_t bytesTotal) {
          progress.show(soFar, bytesRead, bytesTotal);
        });
    progress.clear();
    if (context_.output == OutputForm::human) {
      HumanOutput{}.mailReport(path.string(), report);
    }
    return toJson(report);
  }

  Json meetings(const std::filesystem::path& path) {
    const std::set<std::string> own{import_.ownAddresses.begin(), import_.ownAddresses.end()};
    CalendarSource source(path, importWindow(import_.now), own);
    MeetingImporter importer(store_, import_, path);
    const auto report = importer.import(source);
    if (context_.output == OutputForm::human) {
      HumanOutput{}.meetingReport(path.string(), report);
    }
    return toJson(report);
  }

  const CommandContext& context_;
  DatabaseQueue& store_;
  ImportContext import_;
  Json mail_ = Json::array();
  Json calendars_ = Json::array();
  /// A sentence for each source that was not imported, behind its path.
  std::vector<std::string> failures_;
};

} // namespace

void runImport(const CommandContext& context, const ImportArguments& arguments) {
  if (arguments.mboxes.empty() && arguments.maildirs.empty() && arguments.calendars.empty()) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "Say what to import: --mbox FILE, --maildir FOLDER or --ics FILE.");
  }
  auto& store = context.session.writableStore();
  ImportRun run(context, store, ownAddressesFor(arguments, context.asOf, store));
  for (const auto& path : arguments.mboxes) {
    run.mbox(path);
  }
  for (const auto& path : arguments.maildirs) {
    run.maildir(path);
  }
  for (const auto& path : arguments.calendars) {
    run.calendar(path);
  }
  run.finish();
}

} // namespace orvan
