#pragma once

#include <system_error>

namespace orvan {

/// The one exception type of this code base. Its code() tells the case: compare it with the error enumerations
/// (`AttentionEvidenceCompilerError`, `CredentialVaultError`, ...), each of which is a std::error_code enumeration.
///
/// what() says what was attempted. It never holds a key or anything that came from the user's data.
class Error : public std::system_error {
 public:
  using std::system_error::system_error;
};

} // namespace orvan
