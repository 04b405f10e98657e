target_sources(vesk_tests PRIVATE
    tests/support/main.cpp
    tests/support/scene_test.cpp
)
