# Install and export, so that find_package(OrvexCoreGeometry) works from another project.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ORVEX_INCLUDE_PREFIX "${CMAKE_INSTALL_INCLUDEDIR}/OrvexCoreGeometry")
set(ORVEX_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/OrvexCoreGeometry")

install(TARGETS OrvexFoundation OrvexCoreGeometry EXPORT OrvexCoreGeometryTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        INCLUDES DESTINATION "${ORVEX_INCLUDE_PREFIX}")
install(TARGETS orvex-step-worker
        RUNTIME DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/OrvexCoreGeometry")
install(EXPORT OrvexCoreGeometryTargets NAMESPACE Orvex:: DESTINATION "${ORVEX_PACKAGE_DIR}")

# A header is public exactly if it exports something or is listed as a plain record.
foreach(header IN LISTS ORVEX_PUBLIC_HEADERS)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES "src/${header}" DESTINATION "${ORVEX_INCLUDE_PREFIX}/${folder}")
endforeach()

configure_package_config_file(cmake/OrvexCoreGeometryConfig.cmake.in
  "${CMAKE_CURRENT_BINARY_DIR}/OrvexCoreGeometryConfig.cmake"
  INSTALL_DESTINATION "${ORVEX_PACKAGE_DIR}")
write_basic_package_version_file(
  "${CMAKE_CURRENT_BINARY_DIR}/OrvexCoreGeometryConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/OrvexCoreGeometryConfig.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/OrvexCoreGeometryConfigVersion.cmake"
        DESTINATION "${ORVEX_PACKAGE_DIR}")
