target_sources(vesk_tests PRIVATE
    edit/clipboard_test.cpp
    edit/extrude_test.cpp
    edit/geometry_test.cpp
    edit/journal_test.cpp
    edit/group_test.cpp
    edit/mesh_change_test.cpp
    edit/primitives_test.cpp
    edit/model_check_test.cpp
    edit/revolve_test.cpp
    edit/selection_test.cpp
    edit/snap_test.cpp
    edit/subdivide_test.cpp
    edit/text_objects_test.cpp
    edit/transform_test.cpp
    edit/undo_test.cpp
    edit/weld_test.cpp
)
