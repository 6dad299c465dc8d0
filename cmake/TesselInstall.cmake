# SPDX-License-Identifier: BSD-3-Clause
# What an install prefix holds: the library, its headers, and what find_package(Tessel) and pkg-config ask for.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Tessel)
install(TARGETS tessel EXPORT TesselTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT TesselTargets NAMESPACE Tessel:: DESTINATION ${package_dir})

configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/TesselConfig.cmake.in
  ${PROJECT_BINARY_DIR}/packaging/TesselConfig.cmake INSTALL_DESTINATION ${package_dir})
# Before 1.0.0 a minor version may change what a host is compiled against.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/TesselConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/packaging/TesselConfig.cmake
  ${PROJECT_BINARY_DIR}/packaging/TesselConfigVersion.cmake
  DESTINATION ${package_dir})

# The .pc file finds its prefix from where it lies, so that an installed tree can be moved.
file(RELATIVE_PATH TESSEL_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/packaging/tessel.pc.in ${PROJECT_BINARY_DIR}/packaging/tessel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/tessel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
