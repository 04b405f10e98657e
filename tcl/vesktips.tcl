# vesktips.tcl --
#   The last script: it starts the interface.

proc show_tip {} {::vesk::tips::at_start}

# init --
#   Builds the window, names the Togl widgets and shows it once it is styled.
proc ::vesk::init {} {
    wm withdraw .
    # An input context costs two round trips to the X server for each window that gets an event.
    # With input methods off while the window is built, widgets without text do not get one.
    tk useinputmethods 0
    foreach name {coors size} {set ::$name ""}
    ::vesk::prefs::take
    ::vesk::theme::init $::vesk::theme_name [::vesk::settings::number interface_scale 75 300]
    if {$::vesk::theme_name in {contrast safe}} {
        ::vesk::prefs::use_view_colours $::vesk::theme_name
    }
    ::vesk::main::build
    ::vesk::textures::build
    ::vesk::prefs::watch
    if {[::vesk::settings::get keys] ne ""} ::vesk::keys::restore
    vesk plugins_skip {*}[::vesk::settings::get plugins_off]
    ::vesk::tools::refresh .main.tools
    ::vesk::ops::listen any ::vesk::files::started
    ::vesk::ops::listen model ::vesk::files::note_changes
    ::vesk::files::show_title
    ::vesk::status::hint
    ::vesk::view::focus_last
    update idletasks
    if {[::vesk::settings::number maximised 0 1]} {wm attributes . -zoomed 1}
    wm deiconify .
    update
    ::vesk::main::keep_on_screen
    ::vesk::view::restore_windows
    tk useinputmethods 1
}

::vesk::init
