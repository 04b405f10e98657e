target_sources(vesk_tests PRIVATE
    draw/depth_order_test.cpp
    draw/material_ball_test.cpp
    draw/mesh_layout_test.cpp
    draw/selection_marks_test.cpp
)
