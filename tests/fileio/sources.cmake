target_sources(vesk_tests PRIVATE
    fileio/rescue_test.cpp
    fileio/vesk_reader_test.cpp
    fileio/vesk_roundtrip_test.cpp
    fileio/vrml2_test.cpp
    fileio/writer_test.cpp
)
