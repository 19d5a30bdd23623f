include(GoogleTest)

# orvan_test(NAME target SOURCES ... LINKS ... [SINGLE_THREADED]): one GoogleTest program, each of its tests known to
# CTest by name. ThreadSanitizer has nothing to tell of one that starts no thread.
function(orvan_test)
  cmake_parse_arguments(ARG "SINGLE_THREADED" "NAME" "SOURCES;LINKS" ${ARGN})
  if(ARG_SINGLE_THREADED AND CMAKE_CXX_FLAGS MATCHES "-fsanitize=thread")
    return()
  endif()
  orvan_program(NAME ${ARG_NAME} SOURCES ${ARG_SOURCES} LINKS ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  # A test spends its time in the libraries, which keep their optimisation; its own files compile in half the time.
  target_compile_options(${ARG_NAME} PRIVATE -O0)
  if(NOT CMAKE_UNITY_BUILD)
    # Half of what is left goes into GoogleTest's headers.
    set_target_properties(${ARG_NAME} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 4)
  endif()
  gtest_discover_tests(${ARG_NAME} TEST_PREFIX "${ARG_NAME}." DISCOVERY_TIMEOUT 60 PROPERTIES
    TIMEOUT 300
    ENVIRONMENT "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/checks/tsan-suppressions")
endfunction()
