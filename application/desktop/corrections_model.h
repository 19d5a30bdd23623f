#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/work_executor.h"
#include "application/corrections/person_suggestions.h"
#include "application/desktop/qt_executor.h"
#include "application/desktop/search_model.h"
#include "application/desktop/store_thread.h"
#include "application/desktop/window_model.h"

namespace orvan {

/// What the user puts right about people and their reasons. Each is in the store as soon as the store's thread comes to
/// it, then the window offers to undo it and reads the list again; what keeps it from being done is told as a notice.
/// Decisions that can still be undone are saved first. Belongs to Qt's thread.
///
/// Destroy it before the window's model. That waits for a message that is being handed over, two seconds at most.
class CorrectionsModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The program makes it.")
  /// With whom the person that lookForSame() was told of can be made one.
  Q_PROPERTY(orvan::SearchModel* others READ others CONSTANT FINAL)

 public:
  /// Everything given must outlive this.
  CorrectionsModel(QtLoop& loop, StoreThread& store, WindowModel& window, QObject* parent = nullptr);

  SearchModel* others() noexcept { return &others_; }

  Q_INVOKABLE void hide(const QString& personKey, const QString& displayName);
  Q_INVOKABLE void showAgain(const QString& personKey, const QString& displayName);
  /// The conversation that the item is about.
  Q_INVOKABLE void hideConversation(const QString& personKey, const QString& displayName, const QString& itemKey);
  /// Of what is hidden, by its key.
  Q_INVOKABLE void showThingAgain(const QString& personKey, const QString& displayName, const QString& thing);

  /// The other becomes the person, with all there is of them.
  Q_INVOKABLE void makeOne(const QString& personKey, const QString& displayName, const QString& otherKey,
                           const QString& otherName);
  /// Makes the address a person of its own.
  Q_INVOKABLE void splitOff(const QString& personKey, const QString& address);
  /// An empty name gives back the one from the mails.
  Q_INVOKABLE void rename(const QString& personKey, const QString& displayName, const QString& name);

  /// That what was taken for a question is none, or that the conversation waits for nothing.
  Q_INVOKABLE void sayWrong(const QString& personKey, const QString& displayName, const QString& itemKey);
  /// Ends a snooze.
  Q_INVOKABLE void bringBack(const QString& personKey, const QString& displayName);

  /// Fills `others` with whom `text` finds; without any, those who may be the same come first.
  Q_INVOKABLE void lookForSame(const QString& personKey, const QString& text);

  /// Opens the mail that the item is about in the user's mail program.
  Q_INVOKABLE void openMessage(const QString& itemKey);

 Q_SIGNALS:
  /// Somebody was hidden, or is shown again.
  void visibilityChanged();

 private:
  /// On the store's thread. Gives the number of the journal's entry; nothing when there was nothing to do.
  using Work = std::function<std::optional<std::int64_t>(Session&, Instant)>;

  struct Wording {
    QString done;
    /// When there was nothing to do.
    QString wasSo;
  };

  /// What else follows: where the person leaves the list, somebody near is chosen in their place.
  enum class Effect { none, mayLeave, hides, shows };

  void correct(const QString& personKey, Wording wording, Effect effect, Work work);
  Task<void> run(QString personKey, Wording wording, Effect effect, Work work);
  Task<void> takeSnoozeBack(QString personKey, QString displayName);
  Task<void> findOthers(QString personKey, QString text);
  Task<void> handOver(QString itemKey);

  QtLoop& loop_;
  StoreThread& store_;
  WindowModel& window_;
  SearchModel others_;
  QString personOfOthers_;
  QString textOfOthers_;
  /// The mail program takes its time. Made when it is first needed.
  std::optional<WorkExecutor> desktop_;
};

} // namespace orvan
