# Files of view/: the core's first, then the shell's.
target_sources(vesk_core PRIVATE
    view/axis_cross.cpp
    view/background.cpp
    view/camera.cpp
    view/camera_eye.cpp
    view/drag_echo.cpp
    view/drag_offset.cpp
    view/draw_budget.cpp
    view/extrude_preview.cpp
    view/fit.cpp
    view/grid.cpp
    view/image_bmp.cpp
    view/image_decode.cpp
    view/image_gif.cpp
    view/image_sgi.cpp
    view/interaction.cpp
    view/keys.cpp
    view/material_ball.cpp
    view/mesh_layout.cpp
    view/pick.cpp
    view/pick_edge.cpp
    view/handles.cpp
    view/near_snap.cpp
    view/number_field.cpp
    view/overlay.cpp
    view/projection.cpp
    view/redraw.cpp
    view/ruler.cpp
    view/screen_ray.cpp
    view/selection_marks.cpp
    view/texture_preview.cpp
    view/texture_search.cpp
    view/textures.cpp
    view/tool_create.cpp
    view/tool_extra.cpp
    view/tool_insert.cpp
    view/tool_left.cpp
    view/tool_measure.cpp
    view/tool_select.cpp
    view/view_picture.cpp
    view/tool_transform.cpp
    view/uv_drag.cpp
    view/uv_view.cpp
    view/views.cpp
)
target_sources(vesk PRIVATE
    view/draw_3d_gl.cpp
    view/draw_buffers_gl.cpp
    view/draw_device_gl.cpp
    view/draw_grid_gl.cpp
    view/draw_marks_gl.cpp
    view/draw_orth_gl.cpp
    view/draw_overlay_gl.cpp
    view/draw_scene_gl.cpp
    view/draw_text_gl.cpp
    view/draw_textures_gl.cpp
    view/draw_view_gl.cpp
    view/draw_uv_gl.cpp
    view/font_atlas.cpp
    view/offscreen_gl.cpp
    view/thumbnail_gl.cpp
    view/uv_window_tk.cpp
    view/view_commands_tk.cpp
    view/views_tk.cpp
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
