# Files of app/: the core's first, then the shell's.
target_sources(vesk_core PRIVATE
    app/added_check.cpp
    app/added_commands.cpp
    app/added_history.cpp
    app/added_safety.cpp
    app/command_handlers.cpp
    app/command_registry.cpp
    app/command_result.cpp
    app/command_table.cpp
    app/command_watch.cpp
    app/coor_display.cpp
    app/crash_guard.cpp
    app/current_file.cpp
    app/entry_guard.cpp
    app/filename.cpp
    app/home.cpp
    app/linked_vars.cpp
    app/messages.cpp
    app/numbers.cpp
    app/prefs.cpp
    app/prefs_file.cpp
    app/progress.cpp
    app/session_state.cpp
    app/startup.cpp
    app/tokens.cpp
    app/ui_port.cpp
    app/version.cpp
)
target_sources(vesk PRIVATE
    app/bridge_tk.cpp
    app/clipboard_tk.cpp
    app/bridge_port_tk.cpp
    app/icon_image_tk.cpp
    app/main.cpp
)
