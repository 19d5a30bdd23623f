#include <cstdlib>

#include "OrvanStore/connection.h"
#include "OrvanStore/store_error.h"

/// Opens the file it is given and writes to it. Ends with 0, or with 3 when the engine was refused.
int main(int count, char** arguments) {
  if (count != 2) {
    return 2;
  }
  try {
    orvan::Connection connection(arguments[1], {});
    connection.execute("CREATE TABLE note (text TEXT)");
    return EXIT_SUCCESS;
  } catch (const orvan::StoreError& error) {
    return error.code() == orvan::StoreFault::engineCannotEncrypt ? 3 : EXIT_FAILURE;
  }
}
