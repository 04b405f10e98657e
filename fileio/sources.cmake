# Files of fileio/.
target_sources(vesk_core PRIVATE
    fileio/atomic_file.cpp
)
