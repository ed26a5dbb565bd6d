# What an installation needs beyond libraries and headers: the CMake package, and a pkg-config file.
include(CMakePackageConfigHelpers)
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/StnEvent")

install(EXPORT StnEventTargets NAMESPACE StnEvent:: DESTINATION "${package_dir}")
if(TARGET StnFrame)
  install(EXPORT StnFrameTargets NAMESPACE StnEvent:: DESTINATION "${package_dir}")
endif()
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/StnEventConfig.cmake.in" "${CMAKE_BINARY_DIR}/StnEventConfig.cmake"
                              INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/StnEventConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_BINARY_DIR}/StnEventConfig.cmake" "${CMAKE_BINARY_DIR}/StnEventConfigVersion.cmake"
        DESTINATION "${package_dir}")

file(RELATIVE_PATH pc_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
set(pc_root_include "${ROOT_INCLUDE_DIRS}")
set(pc_root_lib "${ROOT_LIBRARY_DIR}")
# A program finds the libraries in any prefix, as one that CMake builds does.
set(pc_root_rpath " -Wl,-rpath,\${libdir} -Wl,-rpath,${pc_root_lib}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/StnEvent.pc.in" "${CMAKE_BINARY_DIR}/StnEvent.pc" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/StnEvent.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
