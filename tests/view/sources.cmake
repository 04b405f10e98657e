target_sources(vesk_tests PRIVATE
    view/pick_test.cpp
)
