# vesk_core: everything but the shell, without Tk, a GL context or X. An OBJECT library, because
# from a static archive the linker drops the functions that only plug-ins call.
add_library(vesk_core OBJECT)
vesk_warnings(vesk_core)
target_include_directories(vesk_core PUBLIC ${CMAKE_SOURCE_DIR})
target_link_libraries(vesk_core PUBLIC Threads::Threads OpenGL::GLU PNG::PNG Qhull::qhull_r
    meshoptimizer::meshoptimizer Eigen3::Eigen)
# What headers declare for the project alone is hidden from plug-ins.
target_compile_definitions(vesk_core PUBLIC VESK_INTERNAL=1
    $<$<BOOL:${VESK_CHECK_MARKS}>:VESK_CHECK_MARKS=1>)
if(VESK_MIMALLOC)
    target_link_libraries(vesk_core PUBLIC mimalloc)
    target_compile_definitions(vesk_core PUBLIC VESK_MIMALLOC=1)
endif()

add_executable(vesk)
vesk_warnings(vesk)
target_link_libraries(vesk PRIVATE vesk_core ${TOGL_LIBRARY} ${TK_LIBRARY} ${TCL_LIBRARY}
    OpenGL::GL OpenGL::GLU Fontconfig::Fontconfig X11::Xrender X11::X11 X11::xcb PNG::PNG ${CMAKE_DL_LIBS})
target_include_directories(vesk SYSTEM PRIVATE ${TCL_INCLUDE_PATH} ${TK_INCLUDE_PATH}
    ${TOGL_INCLUDE_DIR})
set_target_properties(vesk PROPERTIES ENABLE_EXPORTS ON
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/home)

foreach(folder base model edit view draw fileio plugin program shell)
    include(${CMAKE_SOURCE_DIR}/${folder}/sources.cmake)
endforeach()

# The public interface alone: what plug-ins are built against, here and from an installed prefix.
add_library(vesk_plugin INTERFACE)
add_library(vesk::plugin ALIAS vesk_plugin)
target_include_directories(vesk_plugin INTERFACE $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}>
    $<INSTALL_INTERFACE:include/vesk>)
include(${CMAKE_SOURCE_DIR}/cmake/vesk_plugin.cmake)
