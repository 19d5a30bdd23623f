#pragma once

#include <system_error>

namespace orvan {

enum class BusError {
  /// There is no bus to connect to.
  noBus = 1,
  /// The connection to the bus has been lost, or the caller had lost it before.
  disconnected,
  /// No answer came in time. What was asked may have been done all the same, or be done later.
  timedOut,
  /// Nobody on the bus has the name, and nobody could be started for it.
  noService,
  /// Whoever was asked left the bus without an answer. What was asked may have been done.
  serviceLeft,
  /// Whoever was asked answered with an error of its own.
  answeredWithError,
  /// A message is not of the form that was agreed on, or holds what cannot be sent (text that is not UTF-8).
  malformed,
};

const std::error_category& busErrorCategory() noexcept;
std::error_code make_error_code(BusError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::BusError> : std::true_type {};
