# Files of draw/: pictures of the model: the core's files first, then those that call GL.
target_sources(vesk_core PRIVATE
    draw/coarse_job.cpp
    draw/coarse_mesh.cpp
    draw/depth_order.cpp
    draw/draw_slices.cpp
    draw/layout_job.cpp
    draw/material_ball.cpp
    draw/mesh_changes.cpp
    draw/mesh_layout.cpp
    draw/selection_marks.cpp
)
target_sources(vesk PRIVATE
    draw/cluster_view_gl.cpp
    draw/coarse_lists_gl.cpp
    draw/crowding_gl.cpp
    draw/draw_3d_gl.cpp
    draw/draw_buffers_gl.cpp
    draw/draw_device_gl.cpp
    draw/draw_grid_gl.cpp
    draw/draw_layers_gl.cpp
    draw/draw_marks_gl.cpp
    draw/draw_orth_gl.cpp
    draw/draw_reach_gl.cpp
    draw/draw_overlay_gl.cpp
    draw/draw_scene_gl.cpp
    draw/draw_scene_lines_gl.cpp
    draw/draw_text_gl.cpp
    draw/draw_textures_gl.cpp
    draw/draw_uv_gl.cpp
    draw/draw_view_gl.cpp
    draw/font_atlas.cpp
    draw/gpu_buffer_gl.cpp
    draw/offscreen_gl.cpp
    draw/scene_detail_gl.cpp
    draw/selected_parts_gl.cpp
    draw/thumbnail_gl.cpp
)
