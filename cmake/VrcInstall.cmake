# Installation: the shared library, the public headers, a CMake package (vrcw32::vrcw32) and a
# pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS vrcw32 EXPORT vrcw32Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET vrxsim)
  install(TARGETS vrxsim LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/vrcw32 DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")
install(EXPORT vrcw32Targets NAMESPACE vrcw32:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vrcw32)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/vrcw32Config.cmake.in
  ${PROJECT_BINARY_DIR}/vrcw32Config.cmake INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vrcw32)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vrcw32ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vrcw32Config.cmake ${PROJECT_BINARY_DIR}/vrcw32ConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vrcw32)

configure_file(${PROJECT_SOURCE_DIR}/cmake/vrcw32.pc.in ${PROJECT_BINARY_DIR}/vrcw32.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vrcw32.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
