target_sources(vesk_tests PRIVATE
    fileio/clipboard_test.cpp
    fileio/embedded_images_test.cpp
    fileio/export_test.cpp
    fileio/foreign_files.cpp
    fileio/helper_test.cpp
    fileio/import_dxf_test.cpp
    fileio/import_test.cpp
    fileio/import_vrml_test.cpp
    fileio/rescue_test.cpp
    fileio/text_objects_test.cpp
    fileio/vesk_reader_test.cpp
    fileio/vesk_roundtrip_test.cpp
    fileio/vrml2_test.cpp
    fileio/writer_test.cpp
)
add_dependencies(vesk_tests scene_helper)
