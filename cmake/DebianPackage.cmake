# The Debian package, made from the build that is already there:
#   cpack -G DEB --config <build>/CPackConfig.cmake   (or: cmake --build <build> --target package)
# gives quelmo_<version>-<revision>_<arch>.deb with what `cmake --install` puts under /usr.
# Library dependencies come from dpkg-shlibdeps; the QML modules the popover imports and the
# platform plugin are loaded at run time, so they are added by name (QmlPackageDepends.cmake).

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quelmo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Quelmo developers")
set(CPACK_PACKAGE_CONTACT "The Quelmo developers <dev@quelmo.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://quelmo.org/)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "tray utility that shows how busy the computer is and tidies up unused apps
Quelmo puts an item in the desktop's tray that shows the computer's CPU and
memory use. A click opens a popover with the machine's load, power and a
cleanup card that offers to close processes that hog resources or that have
been left idle. Nothing is closed until the user presses Cut, and a cut asks
the application to close normally, never forcibly.
.
A small language model running on the same computer, when one is installed,
can add a note on each candidate. No data leaves the machine.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The X11 platform plugin, and Hangul in the Korean interface.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, fonts-noto-cjk")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The program is installed stripped. (CPack's separate -dbgsym package lists its files under
# the wrong paths in md5sums and carries no copyright file, which lintian rejects.)
set(CPACK_STRIP_FILES ON)

set(QUELMO_QML_ROOT ${PROJECT_SOURCE_DIR}/src/app)
set(QUELMO_QML_IMPORT_SCANNER ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_LIBEXECS}/qmlimportscanner)
set(QUELMO_QML_IMPORT_PATH ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_QML})
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/QmlPackageDepends.cmake)
set(CPACK_QUELMO_QML_ROOT ${QUELMO_QML_ROOT})
set(CPACK_QUELMO_QML_IMPORT_SCANNER ${QUELMO_QML_IMPORT_SCANNER})
set(CPACK_QUELMO_QML_IMPORT_PATH ${QUELMO_QML_IMPORT_PATH})

include(CPack)
