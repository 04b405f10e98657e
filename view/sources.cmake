# Files of view/: views and the tools of the mouse.
target_sources(vesk_core PRIVATE
    view/axis_cross.cpp
    view/background.cpp
    view/camera.cpp
    view/camera_eye.cpp
    view/drag_echo.cpp
    view/drag_offset.cpp
    view/drag_resize.cpp
    view/draw_budget.cpp
    view/extrude_preview.cpp
    view/fit.cpp
    view/grid.cpp
    view/handles.cpp
    view/highlight.cpp
    view/interaction.cpp
    view/keys.cpp
    view/near_snap.cpp
    view/number_field.cpp
    view/overlay.cpp
    view/pick.cpp
    view/pick_edge.cpp
    view/pick_index.cpp
    view/pick_outline.cpp
    view/projection.cpp
    view/ruler.cpp
    view/screen_ray.cpp
    view/shown_elements.cpp
    view/tool_band.cpp
    view/tool_create.cpp
    view/tool_insert.cpp
    view/tool_knife.cpp
    view/tool_loop_cut.cpp
    view/tool_measure.cpp
    view/tool_operations.cpp
    view/tool_options.cpp
    view/tool_place.cpp
    view/tool_select.cpp
    view/tool_slice.cpp
    view/tool_transform.cpp
    view/tool_zoom.cpp
    view/tools.cpp
    view/uv_drag.cpp
    view/uv_view.cpp
    view/view_picture.cpp
    view/views.cpp
)

# The texts inside the views: fonts rasterised at build time.
find_package(Freetype REQUIRED)
find_file(INTER_REGULAR Inter-Regular.otf REQUIRED
    PATHS /usr/share/fonts/opentype/inter /usr/local/share/fonts)
find_file(INTER_BOLD Inter-Bold.otf REQUIRED
    PATHS /usr/share/fonts/opentype/inter /usr/local/share/fonts)
add_executable(make_font_atlas tools/make_font_atlas.cpp)
target_link_libraries(make_font_atlas PRIVATE Freetype::Freetype)
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/generated/font_atlas.inc
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/generated
    COMMAND make_font_atlas ${INTER_REGULAR} ${INTER_BOLD}
        > ${CMAKE_BINARY_DIR}/generated/font_atlas.inc
    DEPENDS make_font_atlas VERBATIM)
add_custom_target(font_atlas DEPENDS ${CMAKE_BINARY_DIR}/generated/font_atlas.inc)
add_dependencies(vesk font_atlas)
target_include_directories(vesk PRIVATE ${CMAKE_BINARY_DIR}/generated)
