# Which compilers build our own code, and with which warnings.

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  message(FATAL_ERROR
    "GCC ${CMAKE_CXX_COMPILER_VERSION} destroys temporaries twice in coroutines that await within the same expression; "
    "use Clang 19 (the presets do) or GCC 13 and later.")
endif()

add_library(orvan_warnings INTERFACE)
target_compile_options(orvan_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion
  # Where several sources are compiled as one, it would tell of names in another source.
  $<$<NOT:$<BOOL:${CMAKE_UNITY_BUILD}>>:-Wshadow>
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  $<$<BOOL:${ORVAN_WARNINGS_AS_ERRORS}>:-Werror>)
