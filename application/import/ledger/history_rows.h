#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// One message or meeting as the canonical tables hold it. The interaction and its source event share their id.
struct InteractionRow {
  std::string id;
  std::string threadID;
  /// Who wrote it; absent for the user and for meetings.
  std::optional<std::string> senderIdentityID;
  /// Words of the schema, which live as long as the program.
  std::string_view direction;
  std::string_view kind;
  std::string_view conversationKind;
  std::string occurredAt;
  /// Everybody but the user whose history it belongs to.
  std::vector<std::string> participantIdentityIDs;
  /// What a mail program finds a mail by, and where a meeting takes place; empty when it is not to be kept.
  std::string messageID = {};
  std::string location = {};
  /// Of a meeting: it has no time of day.
  bool isAllDay = false;
};

/// Collects the rows of a batch and writes each table in the order of its key, so that the pages of the store are
/// visited in order and once.
class HistoryRows {
 public:
  /// Makes room for `count` interactions and their threads.
  void reserve(std::size_t count);
  void add(InteractionRow row) { interactions_.push_back(std::move(row)); }
  /// The thread and the object that a reminder about it names. Of mail the first subject told stays; a calendar may
  /// change its title.
  void addThread(std::string threadID, std::string_view sourceType, std::string subject);

  /// Writes within the caller's transaction and forgets the rows. An interaction that is there already takes over what
  /// a changed calendar may change: its time, its place and whether it is between two.
  void write(const std::string& sourceAccountID, std::string_view now, Connection& connection);

 private:
  struct Thread {
    std::string id;
    /// The order of arrival: the first of several subjects is kept.
    std::size_t order;
    std::string_view sourceType;
    std::string subject;
  };

  void sort();
  void writeThreads(std::string_view now, Connection& connection);
  void writeInteractions(const std::string& sourceAccountID, Connection& connection);
  void writeParticipants(Connection& connection);
  void writeMessageTexts(Connection& connection);
  void writeMeetingTexts(Connection& connection);

  std::vector<InteractionRow> interactions_;
  /// The same in the order of their ids, while they are written.
  std::vector<const InteractionRow*> sorted_;
  std::vector<Thread> threads_;
};

} // namespace orvan
