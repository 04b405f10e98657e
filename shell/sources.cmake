# Files of shell/: what calls Tcl, Tk, Togl and X.
target_sources(vesk PRIVATE
    shell/bridge_tk.cpp
    shell/clipboard_tk.cpp
    shell/icon_image_tk.cpp
    shell/interp_tk.cpp
    shell/main.cpp
    shell/pointer_tk.cpp
    shell/port_tk.cpp
    shell/programs_tk.cpp
    shell/stuck_tk.cpp
    shell/uv_window_tk.cpp
    shell/view_commands_tk.cpp
    shell/views_tk.cpp
)
