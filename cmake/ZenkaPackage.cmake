# What `cmake --install` puts where, and the Debian package that CPack makes of it (scripts/package).
include(GNUInstallDirs)
set(ZENKA_RELEASE_DATE "2026-11-22" CACHE STRING "Day of the release, for the software catalogue")

install(TARGETS zenka zenka-lumix-helper RUNTIME)

# The icons are painted by the program's own code.
add_executable(zenka_icons "${CMAKE_SOURCE_DIR}/packaging/icons.cpp")
target_link_libraries(zenka_icons PRIVATE zenka_warnings zenka_painting)
set(icons "${CMAKE_BINARY_DIR}/packaging/hicolor")
add_custom_command(OUTPUT "${icons}/.made"
                   COMMAND zenka_icons "${icons}"
                   COMMAND "${CMAKE_COMMAND}" -E touch "${icons}/.made"
                   COMMENT "Painting the icons"
                   VERBATIM)
add_custom_target(zenka_icon_files ALL DEPENDS "${icons}/.made")
install(DIRECTORY "${icons}" DESTINATION "${CMAKE_INSTALL_DATADIR}/icons" PATTERN .made EXCLUDE)

set(packaging "${CMAKE_SOURCE_DIR}/packaging")
set(made "${CMAKE_BINARY_DIR}/packaging")
configure_file("${packaging}/zenka.1.in" "${made}/zenka.1" @ONLY)
configure_file("${packaging}/zenka-lumix-helper.1.in" "${made}/zenka-lumix-helper.1" @ONLY)
configure_file("${packaging}/org.zenka.Zenka.metainfo.xml.in" "${made}/org.zenka.Zenka.metainfo.xml" @ONLY)
configure_file("${packaging}/changelog.in" "${made}/changelog" @ONLY)
# Manuals and change logs are compressed on Debian, without a time in them, so that each build makes the same.
find_program(ZENKA_GZIP gzip REQUIRED)
function(zenka_gzip input output)
  add_custom_command(OUTPUT "${made}/${output}"
                     COMMAND "${CMAKE_COMMAND}" "-DGZIP=${ZENKA_GZIP}" "-DINPUT=${input}" "-DOUTPUT=${made}/${output}"
                             -P "${CMAKE_SOURCE_DIR}/cmake/Gzip.cmake"
                     DEPENDS "${input}" VERBATIM)
endfunction()
zenka_gzip("${made}/zenka.1" zenka.1.gz)
zenka_gzip("${made}/zenka-lumix-helper.1" zenka-lumix-helper.1.gz)
zenka_gzip("${made}/changelog" changelog.gz)
add_custom_target(zenka_manuals ALL DEPENDS "${made}/zenka.1.gz" "${made}/zenka-lumix-helper.1.gz"
                                            "${made}/changelog.gz")
install(FILES "${made}/zenka.1.gz" "${made}/zenka-lumix-helper.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")

install(FILES "${packaging}/zenka.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${made}/org.zenka.Zenka.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES "${packaging}/zenka.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/mime/packages")
# Where udev and systemd look, whatever the libraries' folder is.
install(FILES "${packaging}/70-zenka-cameras.rules" DESTINATION lib/udev/rules.d)
install(FILES "${packaging}/zenka-speech.service" DESTINATION lib/systemd/user)
install(FILES "${made}/changelog.gz" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(FILES "${packaging}/copyright" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zenka)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "The Zenka developers <developers@zenka.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "photographs a solar eclipse from one laptop")
set(CPACK_PACKAGE_DESCRIPTION
    "Zenka computes the contacts of a solar eclipse for your site, runs a script of
shots timed against them, and fires every camera at its instant. It logs each
frame, gets back cameras that come loose while the others go on firing, speaks
to people who look at the sky, and says afterwards which frames really reached
the card.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What no library's symbol asks for: the modules of the QML, programs and data.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "qml6-module-qtqml, qml6-module-qtqml-models, qml6-module-qtqml-workerscript, qml6-module-qtquick, \
qml6-module-qtquick-controls, qml6-module-qtquick-dialogs, qml6-module-qtquick-layouts, \
qml6-module-qtquick-templates, qml6-module-qtquick-window, qml6-module-qt-labs-folderlistmodel, \
fonts-dejavu-core, gphoto2, tzdata")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "qt6-wayland, ca-certificates, elfutils, libcanberra-pulse, sound-theme-freedesktop, \
speech-dispatcher, speech-dispatcher-espeak-ng, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${packaging}/postinst;${packaging}/postrm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
