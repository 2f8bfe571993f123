# What `cmake --install` puts where: the program and its manual page (component "program"), and the protocol library for
# the desktop application (component "development").
include(CMakePackageConfigHelpers)

install(TARGETS orvane-mcp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
install(FILES docs/orvane-mcp.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)

set(header_directory ${CMAKE_INSTALL_INCLUDEDIR}/orvane-mcp)
set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/OrvaneMCPProtocol)

# Under the directory of their name, so that they are included here and by users alike.
install(FILES protocol/mcp_mutation.h protocol/mcp_socket_path.h
        DESTINATION ${header_directory}/protocol COMPONENT development)
install(FILES core/json.h core/json_reader.h core/json_writer.h
        DESTINATION ${header_directory}/core COMPONENT development)

# The headers use C++20; a user's target must be told.
target_compile_features(OrvaneMCPProtocol PUBLIC cxx_std_20)
add_library(OrvaneMCPProtocol::OrvaneMCPProtocol ALIAS OrvaneMCPProtocol)

install(TARGETS OrvaneMCPProtocol orvane_core orvane_platform orvane_platform_shared
        EXPORT OrvaneMCPProtocolTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        INCLUDES DESTINATION ${header_directory})
install(EXPORT OrvaneMCPProtocolTargets NAMESPACE OrvaneMCPProtocol::
        DESTINATION ${package_directory} COMPONENT development)

configure_package_config_file(cmake/OrvaneMCPProtocolConfig.cmake.in
  ${PROJECT_BINARY_DIR}/OrvaneMCPProtocolConfig.cmake INSTALL_DESTINATION ${package_directory})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvaneMCPProtocolConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OrvaneMCPProtocolConfig.cmake
        ${PROJECT_BINARY_DIR}/OrvaneMCPProtocolConfigVersion.cmake cmake/Findutf8proc.cmake
        DESTINATION ${package_directory} COMPONENT development)

add_custom_target(uninstall
  COMMAND ${CMAKE_COMMAND} -D build=${PROJECT_BINARY_DIR} -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake VERBATIM)
