target_sources(vesk_tests PRIVATE
    edit/selection_test.cpp
    edit/transform_test.cpp
    edit/undo_test.cpp
)
