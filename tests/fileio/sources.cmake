target_sources(vesk_tests PRIVATE
    fileio/writer_test.cpp
)
