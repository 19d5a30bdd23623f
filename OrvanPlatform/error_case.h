#pragma once

#include <system_error>

namespace orvan {

/// Whether `code` is a case of the error enumeration.
template <typename Enumeration>
bool belongsTo(const std::error_code& code) {
  return code.category() == make_error_code(Enumeration{}).category();
}

} // namespace orvan
