target_sources(vesk_tests PRIVATE
    base/atomic_file_test.cpp
    base/big_vector_test.cpp
    base/desktop_test.cpp
    base/prefs_test.cpp
    base/progress_test.cpp
    base/text_test.cpp
    base/worker_test.cpp
)
