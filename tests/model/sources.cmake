target_sources(vesk_tests PRIVATE
    model/alloc_test.cpp
    model/deferred_records_test.cpp
    model/ear_cut_test.cpp
    model/flat_mesh_test.cpp
    model/frame_test.cpp
    model/list_test.cpp
    model/matrix_test.cpp
    model/moved_vertices_test.cpp
    model/object_test.cpp
    model/palette_test.cpp
    model/record_maker_test.cpp
    model/textures/image_test.cpp
    model/textures/image_writer.cpp
    model/textures/texture_test.cpp
)
