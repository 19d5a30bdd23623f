#pragma once

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
/// the desktop says that it was handed over; where xdg-open is the mail program's parent, that is when the mail program
/// ends. Whatever these programs print is dropped, for it may hold the address.
HandingOver handToMailProgram(const std::string& address);

} // namespace orvan
