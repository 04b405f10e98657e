target_sources(vesk_tests PRIVATE
    draw/coarse_mesh_test.cpp
    draw/depth_order_test.cpp
    draw/draw_slices_test.cpp
    draw/material_ball_test.cpp
    draw/mesh_changes_test.cpp
    draw/mesh_layout_test.cpp
    draw/selection_marks_test.cpp
)
