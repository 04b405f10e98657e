# Files of plugin/.
target_sources(vesk_core PRIVATE
    plugin/dialogs.cpp
    plugin/loader.cpp
)
