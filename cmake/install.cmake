# What `cmake --install` puts where, for find_package(nuqi) and pkg-config.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/nuqi)
install(TARGETS nuqi nuqi_static nuqi_hpp nuqi_hpp_static EXPORT nuqi-targets)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY examples/families DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
install(EXPORT nuqi-targets NAMESPACE nuqi:: DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nuqi-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES cmake/nuqi-config.cmake ${PROJECT_BINARY_DIR}/nuqi-config-version.cmake
  DESTINATION ${package_dir})
# Found from where nuqi.pc lies, so that an installed tree can be moved.
file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/nuqi.pc.in ${PROJECT_BINARY_DIR}/nuqi.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/nuqi.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
