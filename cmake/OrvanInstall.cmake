# The library as a package: what an embedding program finds with find_package(OrvanRelationshipAttention).
# The application and its importers are no part of it; the command line is a component of its own.

include(CMakePackageConfigHelpers)

set(package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/OrvanRelationshipAttention")

# The headers that lie right in a library's folder are its users'. Of the folders within, internal/ is for the library's
# own sources, and any other is a library of its own.
function(orvan_install_headers folder)
  # Read when the package is installed: listing the folder while configuring would have every build look for new files.
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}"
    COMPONENT library FILES_MATCHING PATTERN "*.h" REGEX "/${folder}/[^/.]+$" EXCLUDE)
endfunction()

get_property(libraries GLOBAL PROPERTY ORVAN_LIBRARIES)
foreach(library IN LISTS libraries)
  get_property(folder TARGET ${library} PROPERTY ORVAN_FOLDER)
  if(NOT folder MATCHES "^(application|bench|tests)(/|$)")
    install(TARGETS ${library} EXPORT OrvanRelationshipAttentionTargets COMPONENT library)
    orvan_install_headers(${folder})
  endif()
endforeach()
install(TARGETS orvan_relationship_attention EXPORT OrvanRelationshipAttentionTargets COMPONENT library)
if(TARGET orvan)
  install(TARGETS orvan COMPONENT command_line)
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
