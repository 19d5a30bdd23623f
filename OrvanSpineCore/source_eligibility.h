#pragma once

#include <string>
#include <string_view>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// Which stored interactions may be used for what, as SQL to be spliced into a statement.
class SourceEligibility {
 public:
  enum class Policy {
    /// Every row there is.
    everything,
    /// Rows that the user or a source has not deleted.
    notDeleted,
    /// Of those, the rows that no exclusion rule of the user keeps from being shown.
    showable,
  };

  /// A condition on a timestamp column with one placeholder, and the text to bind to it.
  struct AsOfPredicate {
    std::string sql;
    std::string argument;
  };

  SourceEligibility() = delete;

  /// A condition without placeholders, true for an interaction that `policy` lets through. The four arguments are
  /// column expressions of the surrounding statement, sub-selects included; an expression that is NULL names nothing.
  ///
  /// Under `showable` an interaction is refused when an exclusion rule in force names its person, its thread, its
  /// source account or itself; under `showable` and `notDeleted` when a deletion tombstone names it, its thread, its
  /// source event or its person. Only restrictions of a kind that the store holds are looked for, so the condition
  /// holds for the transaction it is made in and no longer.
  static std::string interactionPredicateSQL(Policy policy, std::string_view interactionIDColumn,
                                             std::string_view threadIDColumn, std::string_view sourceEventIDColumn,
                                             std::string_view personIDColumn, Connection& connection);

  /// True for rows that had happened by `asOf`, that instant's whole second included.
  static AsOfPredicate occurredAtAsOfPredicate(Instant asOf, std::string_view occurredAtColumn);

  /// True when the row of `source_object` under `objectAlias` is gone: marked as such, or named by a deletion
  /// tombstone.
  static std::string sourceObjectTombstonedSQL(std::string_view objectAlias, Connection& connection);
};

} // namespace orvan
