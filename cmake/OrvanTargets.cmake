# One target per folder. A target's headers are reached through a directory of its own that holds nothing but a link
# to the folder, so an include of a folder that the target does not link fails to build.

include(GNUInstallDirs)

# What programs call a target, in our build and in the installed package alike: orvan_test_support is Orvan::TestSupport.
function(orvan_name_for_programs target)
  string(REGEX REPLACE "^orvan_" "" name ${target})
  string(REGEX MATCHALL "[a-z]+" words ${name})
  set(name "")
  foreach(word IN LISTS words)
    string(SUBSTRING ${word} 0 1 initial)
    string(SUBSTRING ${word} 1 -1 rest)
    string(TOUPPER ${initial} initial)
    string(APPEND name ${initial}${rest})
  endforeach()
  add_library(Orvan::${name} ALIAS ${target})
  set_property(TARGET ${target} PROPERTY EXPORT_NAME ${name})
endfunction()

# orvan_library(NAME target FOLDER path/from/the/root SOURCES ... [PUBLIC ...] [PRIVATE ...])
function(orvan_library)
  cmake_parse_arguments(ARG "" "NAME;FOLDER" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${ARG_NAME} STATIC ${ARG_SOURCES})
  orvan_name_for_programs(${ARG_NAME})
  set(include_root "${CMAKE_BINARY_DIR}/include/${ARG_NAME}")
  cmake_path(GET ARG_FOLDER PARENT_PATH parent)
  file(MAKE_DIRECTORY "${include_root}/${parent}")
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${ARG_FOLDER}" "${include_root}/${ARG_FOLDER}" SYMBOLIC)
  target_include_directories(${ARG_NAME} PUBLIC
    $<BUILD_INTERFACE:${include_root}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${ARG_NAME} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} $<BUILD_INTERFACE:orvan_warnings>)
  set_property(TARGET ${ARG_NAME} PROPERTY ORVAN_FOLDER ${ARG_FOLDER})
  set_property(GLOBAL APPEND PROPERTY ORVAN_LIBRARIES ${ARG_NAME})
endfunction()

# orvan_program(NAME target SOURCES ... LINKS ...)
function(orvan_program)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LINKS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LINKS} orvan_warnings)
endfunction()

# orvan_compile_qml_at_once(target): what Qt makes of the target's QML is compiled as one source. Each of them takes in
# the same headers, which is nearly all that it costs. What is found in them is not ours to mend.
function(orvan_compile_qml_at_once target)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "/qmlcache/.*_qml\\.cpp$")
  list(TRANSFORM sources REPLACE "(.+)" "#include \"\\1\"\n" OUTPUT_VARIABLE includes)
  string(JOIN "" includes ${includes})
  set(all "${CMAKE_CURRENT_BINARY_DIR}/${target}_all_qml.cpp")
  file(CONFIGURE OUTPUT "${all}" CONTENT "${includes}" @ONLY)
  # They are still made before anything of the target is compiled.
  set_source_files_properties(${sources} PROPERTIES HEADER_FILE_ONLY ON)
  target_sources(${target} PRIVATE "${all}")
  set_source_files_properties("${all}" PROPERTIES COMPILE_OPTIONS -w SKIP_AUTOGEN ON OBJECT_DEPENDS "${sources}")
endfunction()
