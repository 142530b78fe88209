# Settings of CPack for the Debian package, which make_package builds. Its version is the project's.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR Kestronics)
set(CPACK_PACKAGE_CONTACT ${maintainer})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "settings of the studio's immersive-audio host, in the tray")
set(CPACK_PACKAGE_DESCRIPTION
"Kest Settings is a tray agent for the K3DHost immersive-audio mixing system.
Its menu shows the status of the host and the settings that the user chooses:
solo mode, default bus, speaker configuration, monitoring facility, and how
the DAW is linked. It lists running and finished encodings with their progress.
.
The same menu is available in a terminal, full screen or as lines of text for
scripts.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP ${CMAKE_STRIP})
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/strip.cmake)
set(CPACK_INSTALL_CMAKE_PROJECTS
    "${PROJECT_BINARY_DIR};${PROJECT_NAME};ALL;/"
    "${PROJECT_BINARY_DIR};${PROJECT_NAME};autostart;/")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Recommends a session bus, for the tray. Only suggests xdg-utils, which opens output folders if no file manager is on
# that bus: every desktop has xdg-open, and a recommendation would install half a desktop on a machine without one.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "default-dbus-session-bus | dbus-session-bus")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gnome-shell-extension-appindicator, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/conffiles)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
