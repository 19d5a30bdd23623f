#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/work_executor.h"
#include "application/desktop/check_list_model.h"
#include "application/desktop/failure_in_words.h"
#include "application/desktop/qt_executor.h"
#include "application/desktop/reading_model.h"
#include "application/desktop/store_thread.h"
#include "application/desktop/window_model.h"
#include "application/sources/own_address_proposal.h"
#include "application/sources/source_discovery.h"
#include "application/sources/source_recognizer.h"

namespace orvan {

/// The way from nothing to a list: where the store is to lie, what is to be read, which addresses are the user's; then
/// the store is made and the reading begins. Goes on from where things are: what is remembered already stays so.
///
/// Belongs to Qt's thread. What looks for files has a thread of its own, and what asks the store uses the store's.
/// Nothing is written, and no mail is read, before the user asks for it. Destroy it before what it is given; that waits
/// until a look at files, or the writing of what was read, has ended.
class FirstStartModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The program makes it.")
  Q_PROPERTY(orvan::ReadingModel* reading READ reading CONSTANT FINAL)
  Q_PROPERTY(orvan::CheckListModel* sources READ sources CONSTANT FINAL)
  Q_PROPERTY(orvan::CheckListModel* addresses READ addresses CONSTANT FINAL)
  Q_PROPERTY(Step step READ step NOTIFY stepChanged FINAL)
  Q_PROPERTY(QString storePlace READ storePlace CONSTANT FINAL)
  Q_PROPERTY(bool hasStore READ hasStore NOTIFY placeChanged FINAL)
  /// Whether there is a key already; a store to be made uses that.
  Q_PROPERTY(bool hasKey READ hasKey NOTIFY placeChanged FINAL)
  Q_PROPERTY(Keyring keyring READ keyring NOTIFY placeChanged FINAL)
  Q_PROPERTY(bool isKeyForKeyring READ isKeyForKeyring WRITE setIsKeyForKeyring NOTIFY placeChanged FINAL)
  Q_PROPERTY(QString keyFilePlace READ keyFilePlace CONSTANT FINAL)
  /// What was found and cannot be read, and why: lines.
  Q_PROPERTY(QString remarks READ remarks NOTIFY remarksChanged FINAL)
  /// What is wrong with what the user added last; empty when nothing is.
  Q_PROPERTY(QString pathFault READ pathFault NOTIFY pathFaultChanged FINAL)
  Q_PROPERTY(QString addressFault READ addressFault NOTIFY addressFaultChanged FINAL)
  /// Why it could not begin; empty when nothing went wrong.
  Q_PROPERTY(QString failure READ failure NOTIFY failureChanged FINAL)

 public:
  enum Step {
    /// Where mail, calendars and contacts lie.
    Looking,
    Choosing,
    /// In the chosen mail, for the user's addresses.
    LookingForAddresses,
    ChoosingAddresses,
    /// The store is being made.
    Beginning,
    Begun
  };
  Q_ENUM(Step)
  enum Keyring { KeyringNotAsked, NoKeyring, LockedKeyring, OpenKeyring };
  Q_ENUM(Keyring)

  FirstStartModel(QtLoop& loop, StoreThread& store, const Clock& clock, std::optional<Instant> asOf,
                  WindowModel& window, UserPlaces places = UserPlaces::ofThisUser(), QObject* parent = nullptr);

  ReadingModel* reading() noexcept { return &reading_; }
  CheckListModel* sources() noexcept { return &sources_; }
  CheckListModel* addresses() noexcept { return &addresses_; }
  Step step() const noexcept { return step_; }
  QString storePlace() const;
  bool hasStore() const noexcept { return hasStore_; }
  bool hasKey() const noexcept { return hasKey_; }
  Keyring keyring() const noexcept { return keyring_; }
  bool isKeyForKeyring() const noexcept { return isKeyForKeyring_; }
  void setIsKeyForKeyring(bool isForKeyring);
  QString keyFilePlace() const;
  const QString& remarks() const noexcept { return remarks_; }
  const QString& pathFault() const noexcept { return pathFault_; }
  const QString& addressFault() const noexcept { return addressFault_; }
  const QString& failure() const noexcept { return failure_; }

  /// Looks for what can be read, unless that was done and not used yet.
  Q_INVOKABLE void look();
  /// Adds what lies at a path as the user writes it, or at a "file:" address.
  Q_INVOKABLE void addPath(const QString& written);
  /// Looks for the user's addresses in the mail that is chosen.
  Q_INVOKABLE void goOn();
  /// True when it is added, or was there.
  Q_INVOKABLE bool addAddress(const QString& written);
  /// Makes the store and its key where there are none, remembers what is chosen, and begins to read.
  Q_INVOKABLE void begin();
  /// Reads what is new; see ReadingModel.
  Q_INVOKABLE void readNew() { reading_.readNew(); }

 Q_SIGNALS:
  void stepChanged();
  void placeChanged();
  void remarksChanged();
  void pathFaultChanged();
  void addressFaultChanged();
  void failureChanged();
  /// The store is there and has neither people nor sources, so that the user has to begin here.
  void needed();

 private:
  struct Known;
  struct Wish;

  Instant now() const;
  void setStep(Step step);
  void start(Task<void> task) { startOn(loop_, std::move(task)); }
  Task<void> lookAround();
  Task<void> lookForKeyring();
  Task<void> recognize(std::string path);
  Task<void> lookForAddresses();
  Task<void> makeAndRemember();
  Task<void> seeWhatIsLeft();
  Task<Known> askWhatIsKnown();

  void show(const Known& known);
  void offer(const DiscoveredSource& source);
  void offerAddresses(const std::vector<ProposedAddress>& proposed);
  void addRemark(const QString& line);
  void addSource(RecognizedSource source, CheckListRow row);
  bool isOffered(const std::filesystem::path& path) const;
  std::vector<std::filesystem::path> chosenMail() const;
  Wish wish() const;
  /// For the exception that is being handled.
  QString whyItCouldNotBegin() const;
  void endReading();

  QtLoop& loop_;
  StoreThread& store_;
  const Clock& clock_;
  std::optional<Instant> asOf_;
  WindowModel& window_;
  UserPlaces places_;

  Step step_ = Looking;
  bool isLooking_ = false;
  bool hasLooked_ = false;
  bool hasSeenWhatIsLeft_ = false;
  bool hasStore_ = false;
  bool hasKey_ = false;
  Keyring keyring_ = KeyringNotAsked;
  bool isKeyForKeyring_ = false;
  QString remarks_;
  QString pathFault_;
  QString addressFault_;
  QString failure_;

  CheckListModel sources_;
  std::vector<RememberedSource> known_;
  /// As the rows have them.
  std::vector<RecognizedSource> offered_;
  CheckListModel addresses_;
  ReadingModel reading_;
  WorkExecutor looker_;
};

} // namespace orvan
