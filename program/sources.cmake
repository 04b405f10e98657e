# Files of program/: the command tables and start-up.
target_sources(vesk_core PRIVATE
    program/command_handlers.cpp
    program/command_table.cpp
    program/command_watch.cpp
    program/commands_check.cpp
    program/commands_copies.cpp
    program/commands_edges.cpp
    program/commands_files.cpp
    program/commands_history.cpp
    program/commands_model.cpp
    program/commands_panels.cpp
    program/commands_prefs.cpp
    program/commands_recovery.cpp
    program/commands_topology.cpp
    program/commands_uv.cpp
    program/object_rows.cpp
    program/startup.cpp
)
