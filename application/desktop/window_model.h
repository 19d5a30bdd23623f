#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QVariantList>
#include <QtQmlIntegration>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "application/desktop/catch_up_list_model.h"
#include "application/desktop/decision_to_save.h"
#include "application/desktop/failure_in_words.h"
#include "application/desktop/person_model.h"
#include "application/desktop/qt_executor.h"
#include "application/desktop/search_model.h"
#include "application/desktop/store_readings.h"
#include "application/desktop/store_thread.h"
#include "application/desktop/store_watch.h"
#include "application/desktop/undo_period.h"
#include "application/desktop/undoable.h"

namespace orvan {

/// How much is written to the store.
enum class StoreUse { usual, busy };

/// All that the window shows and does, without how it looks. Belongs to Qt's thread, and never waits for the store:
/// what it asks of the store's thread comes back through the loop.
///
/// Destroy it before the store's thread, and that before the loop: see saveAtEnd().
class WindowModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The program makes it.")
  Q_PROPERTY(orvan::CatchUpListModel* list READ list CONSTANT FINAL)
  Q_PROPERTY(orvan::PersonModel* person READ person CONSTANT FINAL)
  Q_PROPERTY(orvan::SearchModel* found READ found CONSTANT FINAL)
  Q_PROPERTY(Page page READ page NOTIFY pageChanged FINAL)
  Q_PROPERTY(QString failureTitle READ failureTitle NOTIFY pageChanged FINAL)
  Q_PROPERTY(QString failureText READ failureText NOTIFY pageChanged FINAL)
  Q_PROPERTY(QString failureCommands READ failureCommands NOTIFY pageChanged FINAL)
  Q_PROPERTY(QString freshness READ freshness NOTIFY freshnessChanged FINAL)
  Q_PROPERTY(QString chosen READ chosen NOTIFY chosenChanged FINAL)
  Q_PROPERTY(int olderCount READ olderCount NOTIFY listRead FINAL)
  Q_PROPERTY(QString olderHeading READ olderHeading CONSTANT FINAL)
  Q_PROPERTY(bool isOlderOpen READ isOlderOpen WRITE setIsOlderOpen NOTIFY isOlderOpenChanged FINAL)
  /// Whether the store knows of anybody at all.
  Q_PROPERTY(bool hasPeople READ hasPeople NOTIFY listRead FINAL)
  Q_PROPERTY(Notice notice READ notice NOTIFY noticeChanged FINAL)
  Q_PROPERTY(QString noticeText READ noticeText NOTIFY noticeChanged FINAL)
  Q_PROPERTY(int secondsToUndo READ secondsToUndo NOTIFY secondsToUndoChanged FINAL)

 public:
  enum Page {
    Opening,
    /// There is no store yet.
    NoStore,
    Showing,
    Failing
  };
  Q_ENUM(Page)
  enum Notice { NoNotice, CanUndo, CouldNotSave, Told };
  Q_ENUM(Notice)

  /// With `asOf`, the window takes that moment for now, however long it is open. Everything given must outlive this.
  WindowModel(QtLoop& loop, StoreThread& store, const Clock& clock, std::optional<Instant> asOf,
              QObject* parent = nullptr);

  CatchUpListModel* list() noexcept { return &list_; }
  PersonModel* person() noexcept { return &person_; }
  SearchModel* found() noexcept { return &found_; }
  Page page() const noexcept { return page_; }
  const QString& failureTitle() const noexcept { return failure_.title; }
  const QString& failureText() const noexcept { return failure_.text; }
  const QString& failureCommands() const noexcept { return failure_.commands; }
  QString freshness() const;
  const QString& chosen() const noexcept { return chosen_; }
  int olderCount() const;
  static QString olderHeading();
  bool isOlderOpen() const noexcept { return isOlderOpen_; }
  void setIsOlderOpen(bool isOpen);
  bool hasPeople() const noexcept { return reading_ && hasPeopleIn(reading_->list); }
  Notice notice() const;
  QString noticeText() const;
  int secondsToUndo() const;

  /// The moment that the window takes for now.
  Instant now() const;

  /// Opens the store and reads the list; after a failure, anew. Whom `person` names by key, name or address is chosen.
  void start(const QString& person = {});
  Q_INVOKABLE void tryAgain();
  /// After something was written to the store by another part of this program.
  Q_INVOKABLE void readAgain() { readListSoon(); }
  /// While another part of the program writes much, the list is read again now and then only.
  void setIsWrittenTo(StoreUse use);
  /// Shows a person at the right, on the list or not.
  Q_INVOKABLE void choose(const QString& personKey);
  /// The same for whom the user names, by key, name or address, or with a link; then personCalled() follows.
  void chooseCalled(const QString& person);
  Q_INVOKABLE void searchFor(const QString& text);
  /// Tells of the first one that the search finds: at once, or once it has looked. Searching for something else forgets
  /// it.
  Q_INVOKABLE void openFirstFound();

  /// Ends of a snooze to offer, as maps with "label", "date" and "day"; and the day of today.
  Q_INVOKABLE QVariantList snoozeChoices() const;
  Q_INVOKABLE QString today() const;

  // Each is about the chosen person while they are on the list, takes them off it at once, and is saved when it cannot
  // be undone any more.
  /// Until a day in the form 2026-03-04 begins; nothing happens when that is past.
  Q_INVOKABLE void snoozeUntil(const QString& day);
  Q_INVOKABLE void dismiss();
  Q_INVOKABLE void resolve();

  Q_INVOKABLE void undo();
  /// Tries to save again what could not be saved.
  Q_INVOKABLE void saveAgain();
  Q_INVOKABLE void forgetNotice();
  /// Ends one of the shown person's follow-ups, as can be undone and is saved like a decision.
  void endFollowUp(const QString& followUpID, FollowUpToEnd::End end);
  /// Called on the store's thread with each follow-up that has ended, so that its reminder goes, too.
  void onFollowUpEnded(std::function<void(const std::string& followUpID)> handler);

  /// Says what something came to, until the user decides something else.
  Q_INVOKABLE void tell(const QString& text);

  /// What was decided is given to the store's thread now, before anything that is asked of it next: it cannot be undone
  /// any more. What was told is forgotten.
  void saveBeforeAnotherAction();
  /// For ten seconds, or until the user does something else. The list is read again.
  void offerUndo(SavedCorrection correction);
  /// Chooses somebody near, if the person is chosen and on the list: they are about to leave it.
  void chooseNeighbourOf(const QString& personKey);

  /// Whether the window may close now. If not, what is left is being saved, and readyToClose() follows; or it could not
  /// be saved, which the window tells, and then it may close when asked again.
  Q_INVOKABLE bool mayClose();
  /// For a program that ends however it may: what was decided and not saved yet is on its way to the store's thread
  /// afterwards, which does it before it ends.
  void saveAtEnd();

  /// Whether the user looks at the window; what depends on the time alone is not brought up to date otherwise.
  Q_INVOKABLE void setIsSeen(bool isSeen);

 Q_SIGNALS:
  void pageChanged();
  void freshnessChanged();
  void chosenChanged();
  void listRead();
  void isOlderOpenChanged();
  void noticeChanged();
  void secondsToUndoChanged();
  void readyToClose();
  /// Somebody is shown because they were asked for from without.
  void personCalled();
  /// Nobody goes by that name, or several do.
  void nobodyCalled(const QString& text);
  void firstFound();
  /// Taking something back hid somebody, or showed them again.
  void visibilityChanged();

 private:
  /// A decision that was given to the store's thread.
  struct Saving {
    explicit Saving(DecisionToSave toSave) : decision(std::move(toSave)) {}

    DecisionToSave decision;
    enum class State { underWay, saved, failed } state = State::underWay;
    /// How many readings of the list had begun when it was saved: later ones know of it.
    std::uint64_t readingsBefore = 0;
    /// For the store's thread alone: it may be asked twice, and does it once.
    bool isDone = false;
  };

  static bool hasPeopleIn(const CatchUpList& list) { return !list.rows.empty() || !list.notShown.empty(); }

  void begin(Task<void> task);
  void readListSoon();
  Task<void> readListUntilCurrent();
  Task<void> lookForChanges();
  Task<void> readChosen(QString personKey);
  Task<void> findCalled(QString person);
  Task<void> findPeople(QString text);
  void take(ListReading reading, std::uint64_t number);
  /// For the exception that is being handled.
  void fail();
  void setPage(Page page);
  void showRows();
  /// After the row at that place is gone.
  void chooseNear(int row);
  bool isDecidedOn(const QString& itemKey) const;
  bool isEnding(const ListedFollowUp& followUp) const;
  void awaitDue(std::optional<Instant> nextDueAt);
  QString absenceOf(const PersonReading& reading) const;
  FoundPerson inWords(const ListedPerson& person) const;

  void decide(const AttentionItemAction& action);
  void beginUndoPeriod(const DecisionToSave& decision);
  /// The decision that can be undone, if it is one that can.
  const DecisionToSave* decisionToUndo() const;
  void save(DecisionToSave decision);
  /// A correction is saved as it is.
  void saveDecisionIn(Undoable undoable);
  Task<void> takeBack(SavedCorrection correction);
  QString noteOnUndecided(const QString& personKey) const;
  void give(const std::shared_ptr<Saving>& saving);
  void ended(const std::shared_ptr<Saving>& saving, SavingEnd end);
  static QString lapsedInWords(const DecisionToSave& decision);
  void endUndoPeriod();
  void goOnClosing();
  bool hasUnsaved() const;

  QtLoop& loop_;
  StoreThread& store_;
  const Clock& clock_;
  std::optional<Instant> asOf_;
  CatchUpListModel list_;
  PersonModel person_;
  SearchModel found_;
  StoreWatch watch_;

  Page page_ = Opening;
  FailureInWords failure_;
  std::optional<ListReading> reading_;
  std::unordered_map<std::string, NotShown> notShown_;
  bool isOlderOpen_ = false;
  bool isReading_ = false;
  bool mustReadAgain_ = false;
  std::uint64_t readingsBegun_ = 0;

  QString chosen_;
  QString searched_;
  /// What was searched for when `found_` was filled.
  QString foundFor_;
  bool opensFirstFound_ = false;

  UndoPeriod<Undoable> undoPeriod_;
  std::vector<std::shared_ptr<Saving>> savings_;
  std::function<void(const std::string&)> followUpEnded_;
  QString told_;
  bool isClosing_ = false;
  bool hasTriedToClose_ = false;

  QTimer second_;
  QTimer minute_;
  QTimer due_;
};

} // namespace orvan
