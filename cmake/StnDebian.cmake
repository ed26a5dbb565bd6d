# cpack makes a Debian package that runs on a bare machine. Debian has no ROOT, so the package brings the one that it was
# built with, in /usr/lib/stnevent, where the RPATH of our libraries and programs finds it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME stnevent)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_CONTACT "The developers of StnEvent <stnevent@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_SOURCE_DIR}/build/package")
set(CPACK_STRIP_FILES OFF)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_COMPRESSION_TYPE zstd)
# ROOT's interpreter asks the compiler for the headers of C++.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "g++, libc6 (>= 2.36), libgcc-s1, libstdc++6 (>= 12), zlib1g")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, man-db, pkg-config")

set(libdir "${CMAKE_INSTALL_LIBDIR}")
list(REMOVE_ITEM CMAKE_INSTALL_RPATH "${ROOT_LIBRARY_DIR}")
list(JOIN CMAKE_INSTALL_RPATH ":" package_rpath)
set(pc_root_include "\${libdir}/stnevent/ROOT/include")
set(pc_root_lib "\${libdir}/stnevent/ROOT/lib")
# Not a folder in which the system looks.
set(pc_root_rpath " -Wl,-rpath,${pc_root_lib}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/StnEvent.pc.in" "${CMAKE_BINARY_DIR}/package/StnEvent.pc" @ONLY)
configure_file("${CMAKE_CURRENT_LIST_DIR}/bundle_root.cmake.in" "${CMAKE_BINARY_DIR}/package/bundle_root.cmake" @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_BINARY_DIR}/package/bundle_root.cmake")
include(CPack)
