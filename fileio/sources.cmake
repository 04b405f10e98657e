# Files of fileio/.
target_sources(vesk_core PRIVATE
    fileio/atomic_file.cpp
    fileio/backup.cpp
    fileio/export_vrml2.cpp
    fileio/file_text.cpp
    fileio/image_png.cpp
    fileio/rescue.cpp
    fileio/state_writer.cpp
    fileio/tree_reader.cpp
    fileio/tree_reader_geometry.cpp
    fileio/tree_reader_keywords.cpp
    fileio/vesk_frames.cpp
    fileio/vesk_old.cpp
    fileio/vesk_old_writer.cpp
    fileio/vesk_reader.cpp
    fileio/vesk_reader_messages.cpp
    fileio/vesk_scan.cpp
    fileio/vesk_writer.cpp
)
