target_sources(vesk_tests PRIVATE
    support/main.cpp
    support/scene_test.cpp
)
