# What `cmake --install` and the Debian package contain; included when this project is built on its own.

install(TARGETS orvbrowser make_demo orvtool RUNTIME)
install(TARGETS roimaker RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/orvbrowser)    # where body.cpp looks for it
install(FILES data/orvbrowser.1 data/make_demo.1 data/orvtool.1 data/roimaker.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

install(FILES data/orvtool.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME orvtool)

install(FILES data/orvbrowser.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/orvbrowser-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME orvbrowser.xml)
install(FILES data/icons/orvbrowser.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES data/icons/orvbrowser.png DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/128x128/apps)

install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)    # where Debian looks for it
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

# ---- Debian package: cmake --build --preset release --target package

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvbrowser)
set(CPACK_PACKAGE_VENDOR "The Nuclear Detector developers")
set(CPACK_PACKAGE_CONTACT "The Nuclear Detector developers <maintainers@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
# The X11 platform plugin and the JPEG reader live in the library package that the program's own needs name.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS qt6-wayland)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Nuclear Detector shows one image of a 4D recording (x, y, focal plane, time)
with the outlines of the detected cell nuclei drawn over it, steps through
time points and focal planes, and saves the corrected outlines.")
include(CPack)
