# window.tcl --
#   The main window: variables linked with the program, a new size, settings, the end.

source [file join [file dirname [info script]] support.tcl]

run {
    check "the version is linked" {$::vesk_version_string eq "VESK v3.6"}
    check "and cannot be written" {[catch {set ::vesk_version_number 4}]}
    check "settings are linked by kind" {
        $::prefs_grid == 0.1 && $::prefs_col_line == 0xAAAAAA && $::prefs_show_vertices == 1 &&
        $::prefs_fontpath eq "font.vesk"
    }
    check "a number setting refuses a text" {[catch {set ::prefs_grid abc}]}
    set ::prefs_default_dir "a \"quoted\" name"
    check "text settings can be replaced" {$::prefs_default_dir eq "a \"quoted\" name"}

    check "libraries are found after a change of directory" {
        ![catch {cd /; clock format 0 -gmt 1}]
    }
    set width [winfo width [widget xyz]]
    resize 900x640
    check "views follow a new window size" {[winfo width [widget xyz]] < $width}
    check "and are drawn in it" {[dict get [picture xyz] width] == [winfo width [widget xyz]]}
    shot window-small
    set ::viewsetting xyz
    check "one view alone takes the whole place" {[winfo width [widget xyz]] > 500}
    shot window-one-view
    set ::viewsetting nonsense
    check "fitting an unknown layout changes nothing" {[vesk fit_all] eq ""}
    set ::viewsetting all

    # A first start has no settings file: the window must have room for the panels.
    resize 800x600
    set settings [work veskprefs.txt]
    ::vesk::main::first_size
    settle
    check "with a settings file the size stays" {[winfo width .] == 800}
    file rename $settings $settings.away
    ::vesk::main::first_size
    settle
    file rename $settings.away $settings
    check "without one there is room for the panels" {
        [winfo width .] >= 1230 && [winfo height .] == 800 && [winfo ismapped .main.right]
    }

    # Errors inside callbacks are told and the loop goes on.
    set ::boxes {}
    proc ::tk_messageBox args {lappend ::boxes [dict get $args -message]; return ok}
    vesk load_file /nowhere/at/all.vesk
    check "a message box carries its text" {[llength $::boxes] > 0}
    vesk save_settings
    set text [contents $settings]
    check "settings are saved with the windows' sizes" {
        [string match "*\n3dwin_width [winfo width [widget xyz]]\n*" $text]
    }
}
