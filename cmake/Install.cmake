# Installing like any Linux program: the programs in bin, their data in
# share/satwalk (where an installed satwalk finds it, beside its own
# folder), man pages, the desktop entry, icons and AppStream metadata in
# their standard places; `cpack -G DEB` makes a Debian package of it.
include(GNUInstallDirs)

# The reverse-domain name a desktop knows the program by: the desktop
# entry's, the icon's and the metadata's file names.
set(SATWALK_APP_ID "org.satwalk.Satwalk")

install(TARGETS satwalk satwalk-tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# GDAL's module, opened by the programs when a map needs it (from
# ../lib/satwalk beside their bin folder). dpkg-shlibdeps reads its
# libraries too, so the package depends on GDAL's.
install(TARGETS satwalk_gdal LIBRARY DESTINATION lib/satwalk)

# The data the program reads at run time (not the scripts that made it).
set(_data ${CMAKE_INSTALL_DATADIR}/satwalk)
install(FILES resources/alarm.wav DESTINATION ${_data})
install(FILES resources/map/world-land-50m.txt DESTINATION ${_data}/map)
install(FILES resources/demo/demo-drive.nmea DESTINATION ${_data}/demo)
install(DIRECTORY resources/demo/map resources/demo/poi resources/demo/track
        DESTINATION ${_data}/demo FILES_MATCHING
        PATTERN "*.png" PATTERN "*.rpt" PATTERN "*.csv" PATTERN "*.gpx" PATTERN "*.log")

# Man pages from the programs' own --help, so that they list the options
# the programs take; compressed, as Debian keeps them.
set(_man ${CMAKE_BINARY_DIR}/man)
set(_pages "")
foreach(program satwalk satwalk-tool)
  set(_page ${_man}/${program}.1)
  add_custom_command(
    OUTPUT ${_page}.gz
    COMMAND ${CMAKE_COMMAND} -E make_directory ${_man}
    COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:${program}>
            -DTEMPLATE=${CMAKE_SOURCE_DIR}/docs/man/${program}.1.in -DOUTPUT=${_page}
            -DVERSION=${PROJECT_VERSION} -P ${CMAKE_SOURCE_DIR}/cmake/HelpToMan.cmake
    COMMAND gzip -9nf ${_page}
    DEPENDS ${program} ${CMAKE_SOURCE_DIR}/docs/man/${program}.1.in
            ${CMAKE_SOURCE_DIR}/cmake/HelpToMan.cmake
    COMMENT "Writing the man page of ${program}"
    VERBATIM)
  list(APPEND _pages ${_page}.gz)
endforeach()
add_custom_target(man_pages ALL DEPENDS ${_pages})
install(FILES ${_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# Desktop entry, icons, AppStream metadata.
configure_file(resources/desktop/satwalk.desktop.in ${SATWALK_APP_ID}.desktop @ONLY)
configure_file(resources/desktop/satwalk.metainfo.xml.in ${SATWALK_APP_ID}.metainfo.xml @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/${SATWALK_APP_ID}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_BINARY_DIR}/${SATWALK_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
set(_icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES resources/icons/satwalk.svg DESTINATION ${_icons}/scalable/apps
        RENAME ${SATWALK_APP_ID}.svg)
foreach(size 48 128)
  install(FILES resources/icons/satwalk-${size}.png DESTINATION ${_icons}/${size}x${size}/apps
          RENAME ${SATWALK_APP_ID}.png)
endforeach()

# The Debian package. dpkg-shlibdeps finds the libraries the programs link
# (Qt 6, expat, GeographicLib, and whatever else the build links).
set(CPACK_PACKAGE_NAME satwalk)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Satwalk developers")
set(CPACK_PACKAGE_CONTACT "The Satwalk developers <satwalk@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "GPS display, logging and map program")
set(CPACK_PACKAGE_DESCRIPTION
    "Satwalk reads an NMEA 0183 receiver (serial, USB, Bluetooth, gpsd or NMEA\n"
    "over TCP) and shows the fix on its GPS information, sky plot, compass,\n"
    "speedometer and map screens. It records NMEA and track logs, shows tracks\n"
    "over maps, imports points of interest and sounds a speed alarm.")
string(REPLACE ";" "" CPACK_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so no linked library names them: the platform
# plugins (xcb and offscreen) and the sound back end.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-cjk, qt6-translations-l10n, adwaita-icon-theme")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gpsd")
include(CPack)
