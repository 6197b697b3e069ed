# What is installed where, and the Debian package: cmake --install build/release; cpack --config build/release/CPackConfig.cmake

include(GNUInstallDirs)

# The decoder is looked for beside the programs.
install(TARGETS korvo korvo-desktop korvo-decoder RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES share/org.korvo.Korvo.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES share/org.korvo.Korvo.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES share/korvo.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES share/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/korvo)
foreach(page korvo.1 korvo-desktop.1 changelog)
  set(packed ${CMAKE_CURRENT_BINARY_DIR}/${page}.gz)
  add_custom_command(OUTPUT ${packed} DEPENDS share/${page}
    COMMAND gzip -9nc ${CMAKE_CURRENT_SOURCE_DIR}/share/${page} > ${packed})
  list(APPEND packedPages ${packed})
endforeach()
add_custom_target(packed_pages DEPENDS ${packedPages})
add_dependencies(korvo packed_pages)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/korvo.1.gz ${CMAKE_CURRENT_BINARY_DIR}/korvo-desktop.1.gz
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/korvo)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvo)
set(CPACK_PACKAGE_CONTACT "The Korvo developers <korvo@korvo.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libimage-exiftool-perl, libqt6svg6") # what is not linked: the icon is an SVG
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "udisks2")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-wayland, jq")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Korvo keeps a catalog of photos and videos that stay in their folders. It
rates, labels, files and describes them, adjusts them without touching the
originals, and writes descriptive metadata into the files.")
include(CPack)
