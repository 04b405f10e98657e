# Files of plugin/: what others extend.
target_sources(vesk_core PRIVATE
    plugin/dialogs.cpp
    plugin/exporters.cpp
    plugin/filters.cpp
    plugin/importers.cpp
    plugin/loader.cpp
    plugin/menus.cpp
    plugin/texture_commands.cpp
)
