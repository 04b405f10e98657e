target_sources(vesk_tests PRIVATE
    view/camera_test.cpp
    view/drag_axis_test.cpp
    view/drag_test.cpp
    view/echo_test.cpp
    view/cut_tools_test.cpp
    view/extra_tool_test.cpp
    view/highlight_test.cpp
    view/keys_test.cpp
    view/monkey_test.cpp
    view/operation_tools_test.cpp
    view/pick_index_test.cpp
    view/pick_test.cpp
    view/projection_test.cpp
    view/tool_test.cpp
    view/undo_walk_test.cpp
    view/uv_view_test.cpp
)
