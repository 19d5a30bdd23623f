#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// The "mid:" address (RFC 2392) under which a mail program finds the message with that Message-ID, given without its
/// angle brackets. It holds no character that a shell, a command line or an address would take for more than itself.
std::string messageAddressOf(std::string_view messageID);

} // namespace orvan
