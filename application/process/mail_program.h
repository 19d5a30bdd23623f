#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace orvan {

/// What became of a message's address.
enum class HandingOver {
  done,
  /// The desktop's xdg-open is not installed.
  noOpener,
  /// No program has been made the one for such addresses.
  noMailProgram,
  failed,
};

/// Has the desktop open a "mid:" address, as messageAddressOf() makes it, with the user's mail program, and waits until
/// the desktop says that it was handed over. Where xdg-open is the mail program's parent, that is when the mail program
/// ends; with `patience`, what runs for so long counts as handed over, and goes on whatever becomes of this process.
/// Whatever these programs print is dropped, for it may hold the address. From any thread.
HandingOver handToMailProgram(const std::string& address,
                              std::optional<std::chrono::milliseconds> patience = std::nullopt);

} // namespace orvan
