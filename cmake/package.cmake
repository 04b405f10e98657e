# Desktop integration, and the Debian packages that `cpack -G DEB` makes: vesk and vesk-dev.
set(VESK_DESKTOP ${CMAKE_SOURCE_DIR}/packaging/desktop)
install(FILES ${VESK_DESKTOP}/vesk.desktop DESTINATION share/applications)
install(FILES ${VESK_DESKTOP}/vesk.xml DESTINATION share/mime/packages)
install(FILES ${VESK_DESKTOP}/vesk.thumbnailer DESTINATION share/thumbnailers)
install(FILES ${VESK_DESKTOP}/vesk.metainfo.xml DESTINATION share/metainfo
    RENAME io.github.vesk.vesk.metainfo.xml)
install(FILES ${VESK_DESKTOP}/vesk.svg DESTINATION share/icons/hicolor/scalable/apps)
find_program(GZIP gzip REQUIRED)
set(VESK_ZIPPED ${CMAKE_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${VESK_ZIPPED})
foreach(page vesk.1 changelog)
    add_custom_command(OUTPUT ${VESK_ZIPPED}/${page}.gz
        COMMAND ${GZIP} -9nc ${CMAKE_SOURCE_DIR}/packaging/${page} > ${VESK_ZIPPED}/${page}.gz
        DEPENDS ${CMAKE_SOURCE_DIR}/packaging/${page}
        VERBATIM)
endforeach()
add_custom_target(vesk_zipped ALL DEPENDS ${VESK_ZIPPED}/vesk.1.gz ${VESK_ZIPPED}/changelog.gz)
install(FILES ${VESK_ZIPPED}/vesk.1.gz DESTINATION share/man/man1)
install(FILES ${VESK_ZIPPED}/changelog.gz DESTINATION share/doc/vesk)
install(FILES ${VESK_ZIPPED}/changelog.gz DESTINATION share/doc/vesk-dev COMPONENT sdk)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/copyright DESTINATION share/doc/vesk)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/copyright DESTINATION share/doc/vesk-dev
    COMPONENT sdk)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vesk)
set(CPACK_PACKAGE_VENDOR "The VESK developers")
set(CPACK_PACKAGE_CONTACT "The VESK developers <developers@vesk.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "polygon modeller for real-time 3D content")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Unspecified sdk)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_UNSPECIFIED_PACKAGE_NAME vesk)
set(CPACK_DEBIAN_UNSPECIFIED_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_UNSPECIFIED_DESCRIPTION "Four views, five select modes, numbers for everything that the mouse
can do, textures and their coordinates, undo of every step. Scripts in
Tcl run with a window or without one, plug-ins add commands and formats.")
# Togl's library lies where only its own package looks, so it is named here.
set(CPACK_DEBIAN_UNSPECIFIED_PACKAGE_DEPENDS "libtogl2, libgl1-mesa-dri, libegl1, fonts-dejavu-core")
set(CPACK_DEBIAN_UNSPECIFIED_PACKAGE_RECOMMENDS "fonts-inter, fonts-noto-core, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_SDK_DESCRIPTION "headers for plug-ins of the VESK polygon modeller")
set(CPACK_DEBIAN_SDK_PACKAGE_NAME vesk-dev)
set(CPACK_DEBIAN_SDK_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_SDK_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_SDK_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_SDK_PACKAGE_DEPENDS vesk)
set(CPACK_DEBIAN_SDK_DESCRIPTION "The public interface for plug-ins in C and C++, with its CMake package,
pkg-config file and examples.")
include(CPack)
