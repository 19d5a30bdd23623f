# Third-party libraries, each behind one imported target. All of them come from the system's package manager.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
find_package(ICU REQUIRED COMPONENTS i18n uc)
find_package(nlohmann_json 3.11 REQUIRED)
pkg_check_modules(LIBSYSTEMD REQUIRED IMPORTED_TARGET libsystemd)

# Linking libsqlite3 before SQLCipher would give a plaintext store without an error: SQLCipher is the only one we link.
# Its package carries the version of the SQLite inside: 3.36 came with SQLCipher 4.5.
pkg_check_modules(SQLCIPHER REQUIRED IMPORTED_TARGET sqlcipher>=3.36)

if(ORVAN_BUILD_APPLICATION)
  find_package(CLI11 REQUIRED)
  pkg_check_modules(GMIME REQUIRED IMPORTED_TARGET gmime-3.0)
  pkg_check_modules(LIBICAL REQUIRED IMPORTED_TARGET libical)
  pkg_check_modules(LIBSECRET REQUIRED IMPORTED_TARGET libsecret-1)
endif()
if(ORVAN_BUILD_DESKTOP)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Quick LinguistTools OPTIONAL_COMPONENTS Test)
endif()
if(ORVAN_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(ORVAN_BUILD_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
