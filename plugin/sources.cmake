target_sources(vesk_core PRIVATE
    plugin/dialogs.cpp
    plugin/importers.cpp
    plugin/loader.cpp
)
