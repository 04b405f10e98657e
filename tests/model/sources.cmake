target_sources(vesk_tests PRIVATE
    model/flat_mesh_test.cpp
    model/list_test.cpp
    model/matrix_test.cpp
    model/object_test.cpp
    model/palette_test.cpp
)
