# Installation: headers under include/olmo, the three shared libraries and
# libolmomain.a, olmo.pc for pkg-config, and a CMake package whose target
# Olmo::Olmo brings everything a ported program links.
include(CMakePackageConfigHelpers)

# Olmo::Olmo: main() first, then the libraries top-down.
add_library(olmo_all INTERFACE)
target_link_libraries(olmo_all INTERFACE olmomain olmouser olmogdi olmokernel olmo_headers)
set_target_properties(olmo_all PROPERTIES EXPORT_NAME Olmo)
add_library(Olmo::Olmo ALIAS olmo_all)

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/olmo
        FILES_MATCHING PATTERN "*.h")
install(TARGETS olmokernel olmogdi olmouser olmomain olmo_headers olmo_all
        EXPORT OlmoTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# Resource scripts: olmo_add_resources() for CMake users, olmo-rc for the
# rest.
install(FILES cmake/OlmoResources.cmake DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Olmo)
install(PROGRAMS tools/olmo-rc DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT OlmoTargets NAMESPACE Olmo::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Olmo)

configure_package_config_file(cmake/OlmoConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/OlmoConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Olmo)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/OlmoConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OlmoConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/OlmoConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Olmo)

# pkg-config file.  Sanitized builds name their runtime so that a consumer
# linked through pkg-config resolves the instrumented libraries.
string(JOIN " " OLMO_PC_SANITIZE ${OLMO_SANITIZE_FLAGS})
configure_file(cmake/olmo.pc.in ${CMAKE_CURRENT_BINARY_DIR}/olmo.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/olmo.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
