# The library as a package: what an embedding program finds with find_package(OrvanRelationshipAttention).
# The application and its importers are no part of it; the command line is a component of its own.

include(CMakePackageConfigHelpers)

set(package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/OrvanRelationshipAttention")

# The headers that lie right in a library's folder are its users'. Of the folders within, internal/ is for the library's
# own sources, and any other is a library of its own.
function(orvan_install_headers folder component)
  # Read when the package is installed: listing the folder while configuring would have every build look for new files.
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}"
    COMPONENT ${component} FILES_MATCHING PATTERN "*.h" REGEX "/${folder}/[^/.]+$" EXCLUDE)
endfunction()

get_property(libraries GLOBAL PROPERTY ORVAN_LIBRARIES)
foreach(library IN LISTS libraries)
  get_property(folder TARGET ${library} PROPERTY ORVAN_FOLDER)
  if(library STREQUAL "orvan_ui")
    # Needs Qt: a program asks for it by name, find_package(OrvanRelationshipAttention COMPONENTS Ui).
    get_property(resource_targets GLOBAL PROPERTY ORVAN_UI_RESOURCE_TARGETS)
    install(TARGETS ${library} ${resource_targets} EXPORT OrvanRelationshipAttentionUiTargets COMPONENT ui
      OBJECTS DESTINATION "${CMAKE_INSTALL_LIBDIR}/OrvanRelationshipAttention")
    orvan_install_headers(${folder} ui)
    install(EXPORT OrvanRelationshipAttentionUiTargets NAMESPACE Orvan:: DESTINATION "${package_directory}" COMPONENT ui)
  elseif(NOT folder MATCHES "^(application|bench|tests)(/|$)")
    install(TARGETS ${library} EXPORT OrvanRelationshipAttentionTargets COMPONENT library)
    orvan_install_headers(${folder} library)
  endif()
endforeach()
install(TARGETS orvan_relationship_attention EXPORT OrvanRelationshipAttentionTargets COMPONENT library)
if(TARGET orvan)
  install(TARGETS orvan COMPONENT command_line)
endif()
if(TARGET orvan-agent)
  install(TARGETS orvan-agent COMPONENT agent)
  # They name the program where it will lie, so the prefix has to be the one that was configured.
  foreach(file orvan-agent.service org.orvan.Agent.service org.orvan.Agent.desktop)
    configure_file("${PROJECT_SOURCE_DIR}/packaging/agent/${file}.in" "${PROJECT_BINARY_DIR}/agent/${file}" @ONLY)
  endforeach()
  # Below the data folder they are found under any prefix that the session's bus and systemd know.
  install(FILES "${PROJECT_BINARY_DIR}/agent/orvan-agent.service"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/systemd/user" COMPONENT agent)
  install(FILES "${PROJECT_BINARY_DIR}/agent/org.orvan.Agent.service"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/dbus-1/services" COMPONENT agent)
  install(FILES "${PROJECT_BINARY_DIR}/agent/org.orvan.Agent.desktop"
    DESTINATION "${CMAKE_INSTALL_SYSCONFDIR}/xdg/autostart" COMPONENT agent)
endif()

install(EXPORT OrvanRelationshipAttentionTargets NAMESPACE Orvan:: DESTINATION "${package_directory}"
  COMPONENT library)
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/OrvanRelationshipAttentionConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/package/OrvanRelationshipAttentionConfig.cmake"
  INSTALL_DESTINATION "${package_directory}"
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/package/OrvanRelationshipAttentionConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/package/OrvanRelationshipAttentionConfig.cmake"
  "${PROJECT_BINARY_DIR}/package/OrvanRelationshipAttentionConfigVersion.cmake"
  DESTINATION "${package_directory}" COMPONENT library)
