# What authors of plug-ins need, installed under a prefix: the headers that plugin/vesk.h gathers, a
# CMake package and a pkg-config file.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Adds `header` and everything it includes of the project to VESK_PUBLIC_HEADERS.
function(vesk_gather_headers header)
    get_property(known GLOBAL PROPERTY VESK_PUBLIC_HEADERS)
    if(header IN_LIST known)
        return()
    endif()
    set_property(GLOBAL APPEND PROPERTY VESK_PUBLIC_HEADERS ${header})
    set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY
        CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${header})
    file(STRINGS ${CMAKE_SOURCE_DIR}/${header} lines REGEX "^#include \"")
    foreach(line ${lines})
        string(REGEX REPLACE "^#include \"(.*)\".*$" "\\1" name "${line}")
        vesk_gather_headers(${name})
    endforeach()
endfunction()
vesk_gather_headers(plugin/vesk.h)

get_property(headers GLOBAL PROPERTY VESK_PUBLIC_HEADERS)
foreach(header ${headers})
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${CMAKE_SOURCE_DIR}/${header} DESTINATION include/vesk/${folder} COMPONENT sdk)
endforeach()

set(VESK_CMAKEDIR lib/cmake/vesk)
set_target_properties(vesk_plugin PROPERTIES EXPORT_NAME plugin)
install(TARGETS vesk_plugin EXPORT vesk-targets COMPONENT sdk)
install(EXPORT vesk-targets NAMESPACE vesk:: DESTINATION ${VESK_CMAKEDIR} COMPONENT sdk)
configure_package_config_file(${CMAKE_SOURCE_DIR}/packaging/vesk-config.cmake.in
    ${CMAKE_BINARY_DIR}/sdk/vesk-config.cmake INSTALL_DESTINATION ${VESK_CMAKEDIR}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/sdk/vesk-config-version.cmake
    COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES ${CMAKE_BINARY_DIR}/sdk/vesk-config.cmake
    ${CMAKE_BINARY_DIR}/sdk/vesk-config-version.cmake ${CMAKE_SOURCE_DIR}/cmake/vesk_plugin.cmake
    DESTINATION ${VESK_CMAKEDIR} COMPONENT sdk)
configure_file(${CMAKE_SOURCE_DIR}/packaging/vesk.pc.in ${CMAKE_BINARY_DIR}/sdk/vesk.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/sdk/vesk.pc DESTINATION share/pkgconfig COMPONENT sdk)
