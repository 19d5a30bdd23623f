include(GoogleTest)

# orvan_test(NAME target SOURCES ... LINKS ...): one GoogleTest program, each of its tests known to CTest by name.
# ABANDONS_TASKS: the leak check reports it and the cause is not known yet (parked coroutines are suspected); the other
# checks stay.
function(orvan_test)
  cmake_parse_arguments(ARG "ABANDONS_TASKS" "NAME" "SOURCES;LINKS" ${ARGN})
  set(environment "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/checks/tsan-suppressions")
  if(ARG_ABANDONS_TASKS)
    set(environment "ASAN_OPTIONS=detect_leaks=0")
  endif()
  orvan_program(NAME ${ARG_NAME} SOURCES ${ARG_SOURCES} LINKS ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${ARG_NAME} TEST_PREFIX "${ARG_NAME}." DISCOVERY_TIMEOUT 60 PROPERTIES
    TIMEOUT 300
    ENVIRONMENT "${environment}")
endfunction()
