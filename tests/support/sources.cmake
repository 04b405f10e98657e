target_sources(vesk_tests PRIVATE
    support/damage.cpp
    support/main.cpp
    support/mesh_test.cpp
    support/places.cpp
    support/random_mesh.cpp
    support/scene_test.cpp
)
