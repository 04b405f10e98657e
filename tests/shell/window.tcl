# window.tcl --
#   The main window: variables linked with the program, a new size, settings, the end.

source [file join [file dirname [info script]] support.tcl]

::test::run {
    ::test::check "the version is linked" {$::vesk_version_string eq "VESK v3.6"}
    ::test::check "and cannot be written" {[catch {set ::vesk_version_number 4}]}
    ::test::check "settings are linked by kind" {
        $::prefs_grid == 0.1 && $::prefs_col_line == 0xAAAAAA && $::prefs_show_vertices == 1 &&
        $::prefs_fontpath eq "font.vesk"
    }
    ::test::check "a number setting refuses a text" {[catch {set ::prefs_grid abc}]}
    set ::prefs_default_dir "a \"quoted\" name"
    ::test::check "text settings can be replaced" {$::prefs_default_dir eq "a \"quoted\" name"}

    ::test::check "libraries are found after a change of directory" {
        ![catch {cd /; clock format 0 -gmt 1}]
    }
    set width [winfo width [::test::widget xyz]]
    wm geometry . 900x640
    ::test::pause 500
    ::test::check "views follow a new window size" {[winfo width [::test::widget xyz]] < $width}
    set picture [::test::picture xyz]
    ::test::check "and are drawn in it" {
        [dict get $picture width] == [winfo width [::test::widget xyz]]
    }
    ::test::shot window-small
    set ::viewsetting xyz
    ::test::pause 500
    ::test::check "one view alone takes the whole place" {[winfo width [::test::widget xyz]] > 500}
    ::test::shot window-one-view
    set ::viewsetting all
    ::test::pause 300
    set ::viewsetting nonsense
    ::test::check "fitting an unknown layout changes nothing" {[vesk fit_all] eq ""}
    set ::viewsetting all

    # A first start has no settings file: the window must have room for the panels.
    wm geometry . 800x600
    ::test::pause 500
    set settings [file join $::env(VESK_TEST_WORK) veskprefs.txt]
    ::vesk::main::first_size
    ::test::pause 300
    ::test::check "with a settings file the size stays" {[winfo width .] == 800}
    file rename $settings $settings.away
    ::vesk::main::first_size
    ::test::pause 500
    file rename $settings.away $settings
    ::test::check "without one there is room for the panels" {
        [winfo width .] >= 1230 && [winfo height .] == 800 && [winfo ismapped .main.right]
    }

    # Errors inside callbacks are told and the loop goes on.
    set ::boxes {}
    proc ::tk_messageBox args {lappend ::boxes [dict get $args -message]; return ok}
    vesk load_file /nowhere/at/all.vesk
    ::test::check "a message box carries its text" {[llength $::boxes] > 0}
    vesk save_settings
    set stream [open [file join $::env(VESK_TEST_WORK) veskprefs.txt]]
    set text [read $stream]
    close $stream
    ::test::check "settings are saved with the windows' sizes" {
        [string match "*\n3dwin_width [winfo width [::test::widget xyz]]\n*" $text]
    }
}
