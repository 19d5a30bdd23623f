#include <CLI/CLI.hpp>
#include <QFile>
#include <QGuiApplication>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QSignalBlocker>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <iostream>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/bus/bus_connection.h"
#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/ui/attention_views.h"
#include "application/desktop/corrections_model.h"
#include "application/desktop/desktop_appearance.h"
#include "application/desktop/ending_signals.h"
#include "application/desktop/first_start_model.h"
#include "application/desktop/follow_ups_model.h"
#include "application/desktop/overview_model.h"
#include "application/desktop/person_link.h"
#include "application/desktop/qt_executor.h"
#include "application/desktop/reminder_in_front.h"
#include "application/desktop/settings_model.h"
#include "application/desktop/single_instance.h"
#include "application/desktop/store_thread.h"
#include "application/desktop/user_language.h"
#include "application/desktop/window_model.h"
#include "application/desktop/window_place.h"
#include "application/desktop/window_reminders.h"
#include "application/process/process_privacy.h"
#include "application/reminder_service/running_service.h"
#include "application/session/session_settings.h"

// Generated from the classes of this folder. Naming it keeps a linker from leaving it out of a program.
void qml_register_types_Orvan_Desktop();

namespace orvan {
namespace {

constexpr auto activationVariable = "XDG_ACTIVATION_TOKEN";

struct Invocation {
  std::string store;
  std::string keyFile;
  std::string person;
  std::string link;
  std::string asOf;
  /// What the desktop gave this program to come to the front with.
  std::string activationToken;

  SingleInstance::Wish wish() const { return {link.empty() ? person : link, activationToken}; }
};

std::optional<int> exitCodeOfReading(Invocation& invocation, int argc, char** argv) {
  CLI::App program{"Whom to get back in touch with now, and why, in a window.", "orvan-desktop"};
  program.set_version_flag("--version", std::string{"orvan-desktop "} + ORVAN_VERSION);
  program.add_option("--store", invocation.store, "The store file (default: in your data folder)")->type_name("FILE");
  program.add_option("--key-file", invocation.keyFile, "The file with the store's key")->type_name("FILE");
  program.add_option("--person", invocation.person, "Whom to show: a key, a name or an address")->type_name("PERSON");
  program.add_option("LINK", invocation.link, "A link to a person: orvan://person/KEY")
      ->type_name("")
      ->check([](const std::string& text) {
        return personKeyIn(text) ? std::string{} : std::string{"that is no link such as orvan://person/p-2l7i7jza"};
      });
  program.add_option("--as-of", invocation.asOf, "Take this moment for now, in whole seconds: 2026-03-04T09:15:00Z")
      ->type_name("RFC3339")
      ->check([](const std::string& text) {
        return parseInternetDateTime(text) ? std::string{}
                                           : std::string{"that is no moment such as 2026-03-04T09:15:00Z"};
      });
  try {
    program.parse(argc, argv);
    return std::nullopt;
  } catch (const CLI::ParseError& found) {
    constexpr int wrongCommandLine = 2;
    return program.exit(found) == 0 ? 0 : wrongCommandLine;
  }
}

bool asksAboutProgram(std::span<char* const> words) {
  return std::ranges::any_of(
      words, [](std::string_view word) { return word == "--help" || word == "-h" || word == "--version"; });
}

SessionSettings settingsOf(const Invocation& invocation) {
  auto settings = SessionSettings::defaults();
  if (!invocation.store.empty()) {
    settings.store = std::filesystem::absolute(invocation.store);
  }
  if (!invocation.keyFile.empty()) {
    settings.keyFile = std::filesystem::absolute(invocation.keyFile);
  }
  return settings;
}

/// Drawing with a graphics card that the processor has to imitate takes three times the memory and the time to start,
/// and gives nothing for it.
void chooseHowToDraw() {
  const bool isChosen = qEnvironmentVariableIsSet("QT_QUICK_BACKEND") || qEnvironmentVariableIsSet("QSG_RHI_BACKEND");
  const bool hasCard =
      QFile::exists(QStringLiteral("/dev/dri/renderD128")) && !qEnvironmentVariableIsSet("LIBGL_ALWAYS_SOFTWARE");
  if (!isChosen && !hasCard) {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  }
}

std::unique_ptr<BusConnection> userBus(QtLoop& loop) {
  try {
    return BusConnection::toUserBus(loop.executor());
  } catch (const Error&) {
    return nullptr;
  }
}

/// While it lives, the reminder service is the process's notification centre. Nothing is asked of it before it is
/// needed; at the end, what is to be withdrawn is on its way for good.
class NotificationCenterOfService {
 public:
  /// `clicked` is called, on a thread of the centre's, with the follow-up of a reminder that the user clicked on and
  /// the service leaves to us; with "" when it stood for several.
  NotificationCenterOfService(const SessionSettings& settings, std::function<void(const std::string&)> clicked) {
    auto options = centerOptionsFor(settings);
    options.activated = [clicked = std::move(clicked)](const std::string& followUpID, const std::string& action) {
      if (action == agent_protocol::clickAction) {
        clicked(followUpID);
      }
    };
    NotificationCenter::setCurrent(AgentNotificationCenter::make(std::move(options)));
  }
  ~NotificationCenterOfService() { NotificationCenter::setCurrent(nullptr); }
  NotificationCenterOfService(const NotificationCenterOfService&) = delete;
  NotificationCenterOfService& operator=(const NotificationCenterOfService&) = delete;
};

/// Qt looks for it in the environment alone, when a window asks to be activated, and takes it out of there afterwards.
/// Nothing else of ours changes the environment while it runs; where Qt does not look, this does not, either.
void takeLeaveToComeToTheFront(const std::string& activationToken) {
  if (!activationToken.empty() && QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) {
    qputenv(activationVariable, QByteArray::fromStdString(activationToken));
  }
}

/// A desktop that goes takes its programs along: Qt calls exit() from within its event loop then, and nothing that
/// lives in run() comes to its end. While this lives, what the user decided is saved all the same.
class SavingAtExit {
 public:
  SavingAtExit(WindowModel& model, StoreThread& store) : model_(model), store_(store) {
    current = this;
    // What is done at an exit is done in the reverse order: this has to come before the cryptography that the store
    // needs goes, and so be said after that has come.
    QObject::connect(
        &model, &WindowModel::listRead, &model, [] { std::atexit(saveIfThereIsAnything); }, Qt::SingleShotConnection);
  }
  ~SavingAtExit() { current = nullptr; }
  SavingAtExit(const SavingAtExit&) = delete;
  SavingAtExit& operator=(const SavingAtExit&) = delete;

 private:
  static void saveIfThereIsAnything() {
    if (current != nullptr) {
      current->save();
    }
  }
  void save() {
    constexpr std::chrono::seconds longest{10};
    // What Qt needs to show anything is gone by now.
    const QSignalBlocker quiet(model_);
    const QSignalBlocker quietList(*model_.list());
    model_.saveAtEnd();
    const auto saved = std::make_shared<std::promise<void>>();
    store_.post([saved](Session&) { saved->set_value(); });
    saved->get_future().wait_for(longest);
  }

  static inline SavingAtExit* current = nullptr;
  WindowModel& model_;
  StoreThread& store_;
};

/// While the window is in front, it answers for its reminders.
void standInFront(const QQuickWindow& window, const std::shared_ptr<NotificationCenterDelegate>& delegate) {
  NotificationCenter::current()->setDelegate(window.isActive() ? delegate : nullptr);
}

/// Shows the window once it is known how it is to look and that it is the only one, and then opens the store.
class Opening {
 public:
  Opening(QQuickWindow& window, WindowModel& model, SingleInstance::Wish wish)
      : window_(window), model_(model), wish_(std::move(wish)) {}

  void appearanceSettled() {
    isSettled_ = true;
    goOn();
  }
  void claimed(SingleInstance::Claim claim) {
    if (claim == SingleInstance::Claim::notAnswered) {
      std::cerr << "orvan-desktop: another window shows this store and does not answer; close it and try again.\n";
    }
    if (claim != SingleInstance::Claim::first) {
      QGuiApplication::exit(claim == SingleInstance::Claim::handedOver ? 0 : 1);
      return;
    }
    isFirst_ = true;
    goOn();
  }
  void show(const SingleInstance::Wish& wish) {
    takeLeaveToComeToTheFront(wish.activationToken);
    window_.show();
    window_.raise();
    window_.requestActivate();
    if (!wish.person.empty()) {
      model_.chooseCalled(QString::fromStdString(wish.person));
    }
  }

 private:
  void goOn() {
    if (isSettled_ && isFirst_) {
      keepMemoryOutOfCrashDumps();
      window_.show();
      if (!wish_.activationToken.empty()) {
        window_.requestActivate();
      }
      model_.start(QString::fromStdString(wish_.person));
    }
  }

  QQuickWindow& window_;
  WindowModel& model_;
  SingleInstance::Wish wish_;
  bool isSettled_ = false;
  bool isFirst_ = false;
};

/// All that the window shows and does, each part knowing what another one changed.
struct Models {
  Models(QtLoop& loop, StoreThread& store, WindowReminders& reminders, const Clock& clock, std::optional<Instant> asOf)
      : window(loop, store, clock, asOf),
        firstStart(loop, store, clock, asOf, window),
        overview(loop, store, clock, asOf),
        followUps(loop, store, reminders, window, clock, asOf),
        settings(loop, store, clock, asOf),
        corrections(loop, store, window) {
    const auto bringRemindersInLine = [&reminders] { reminders.bringInLine(); };
    QObject::connect(&corrections, &CorrectionsModel::visibilityChanged, &window, bringRemindersInLine);
    QObject::connect(&window, &WindowModel::visibilityChanged, &window, bringRemindersInLine);
    QObject::connect(&settings, &SettingsModel::remindersConcerned, &window, bringRemindersInLine);
    QObject::connect(&settings, &SettingsModel::storeChanged, &window, &WindowModel::readAgain);
    QObject::connect(&settings, &SettingsModel::mustBeRead, firstStart.reading(), &ReadingModel::readNew);
    QObject::connect(firstStart.reading(), &ReadingModel::ended, settings.sources(), &SourcesModel::lookForNew);
    QObject::connect(&window, &WindowModel::listRead, settings.sources(), &SettingsPart::look);
    QObject::connect(&window, &WindowModel::listRead, &overview, &OverviewModel::readAgain);
  }

  /// What the QML of the window asks for.
  QVariantMap properties() {
    return {{"model", QVariant::fromValue(&window)},      {"firstStart", QVariant::fromValue(&firstStart)},
            {"overview", QVariant::fromValue(&overview)}, {"followUps", QVariant::fromValue(&followUps)},
            {"settings", QVariant::fromValue(&settings)}, {"corrections", QVariant::fromValue(&corrections)}};
  }

  WindowModel window;
  FirstStartModel firstStart;
  OverviewModel overview;
  FollowUpsModel followUps;
  SettingsModel settings;
  CorrectionsModel corrections;
};

int run(const Invocation& invocation, QGuiApplication& application) {
  // Each needs those before it until it is gone.
  QtLoop loop;
  const auto bus = userBus(loop);
  const SystemClock clock;
  const auto settings = settingsOf(invocation);
  std::function<void(const std::string&)> reminderClicked;
  const NotificationCenterOfService center(settings, [&](const std::string& followUpID) {
    loop.post([&reminderClicked, followUpID] { reminderClicked(followUpID); });
  });
  WindowReminders reminders(settings, [settings] { return usableService(settings); });
  StoreThread store(settings);
  DesktopAppearance appearance(bus.get()); // NOLINT(misc-const-correctness): QML takes no pointer to a constant.
  Models models(loop, store, reminders, clock, parseInternetDateTime(invocation.asOf));
  auto& model = models.window;

  QQmlApplicationEngine engine;
  addAttentionViews(engine);
  qml_register_types_Orvan_Desktop();
  auto properties = models.properties();
  properties.insert("appearance", QVariant::fromValue(&appearance));
  engine.setInitialProperties(properties);
  engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Orvan/Desktop/Main.qml")));
  auto* window = engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(engine.rootObjects().first());
  if (window == nullptr) {
    std::cerr << "orvan-desktop: the window could not be made; the packages of Qt Quick may be missing.\n";
    return 1;
  }

  rememberPlaceOf(*window);
  Opening opening(*window, model, invocation.wish());
  reminderClicked = [&](const std::string& followUpID) {
    opening.show({});
    models.followUps.showPersonOf(followUpID);
  };
  const auto inFront = std::make_shared<ReminderInFront>(loop, settings, models.followUps);
  // A window that goes tells so, too, and then there is nobody to stand in front any more.
  const QObject running;
  QObject::connect(window, &QQuickWindow::activeChanged, &running, [&] { standInFront(*window, inFront); });
  const SavingAtExit savingAtExit(model, store);
  const EndingSignals ending;
  QObject::connect(&ending, &EndingSignals::asked, &application, [] { QGuiApplication::exit(0); });
  QObject::connect(&application, &QGuiApplication::commitDataRequest, &model, [&model] { model.saveAtEnd(); });
  QObject::connect(&appearance, &DesktopAppearance::settled, &application, [&opening] { opening.appearanceSettled(); });
  std::optional<SingleInstance> instance;
  if (bus == nullptr) {
    opening.claimed(SingleInstance::Claim::first);
  } else {
    instance.emplace(*bus, store.settings().store);
    instance->onShow([&opening](const SingleInstance::Wish& wish) { opening.show(wish); });
    instance->claim(invocation.wish(), [&opening](auto claim) { opening.claimed(claim); });
  }
  const int code = QGuiApplication::exec();
  model.saveAtEnd();
  return code;
}

} // namespace
} // namespace orvan

int main(int argc, char** argv) try {
  orvan::Invocation invocation;
  // Help needs no desktop to be read on.
  if (orvan::asksAboutProgram({argv, static_cast<std::size_t>(argc)})) {
    return orvan::exitCodeOfReading(invocation, argc, argv).value_or(0);
  }
  QGuiApplication::setApplicationName(QStringLiteral("orvan"));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Orvan"));
  QGuiApplication::setDesktopFileName(QStringLiteral("org.orvan.Orvan"));
  orvan::chooseHowToDraw();
  // Before Qt may take it.
  invocation.activationToken = qgetenv(orvan::activationVariable).toStdString();
  // Takes Qt's own options off the command line.
  QGuiApplication application(argc, argv);
  if (const auto code = orvan::exitCodeOfReading(invocation, argc, argv)) {
    return *code;
  }
  orvan::speakLanguageOfUser(application);
  return orvan::run(invocation, application);
} catch (...) {
  std::fputs("orvan-desktop: Something unexpected went wrong; 'orvan doctor' may tell what.\n", stderr);
  return 1;
}
