# session.tcl --
#   What a session leaves to the next one: where the window stands, what is folded, what is alone.

source [file join [file dirname [info script]] support.tcl]

::test::run {
    set area [::vesk::view::area]
    set note [file join $::env(VESK_TEST_WORK) place]
    if {$::env(VESK_TEST_SESSION) eq "leave"} {
        set id [exec xdotool search --name untitled]
        exec xdotool windowmove [lindex $id 0] 140 120 windowsize [lindex $id 0] 1000 700
        ::test::pause 500
        set ::vesk::panel_shown 0
        ::vesk::main::show_panel
        ::test::pause 300
        ::test::click zy 1 50 50
        ::test::key ctrl+space
        ::test::check "a view fills the place" {$::viewsetting eq "zy"}
        set ::vesk::console_shown 1
        ::vesk::console::show
        ::test::pause 300
    } else {
        ::test::check "the window is as large" {[winfo width .] == 1000 && [winfo height .] == 700}
        ::test::check "the panel is folded" {![winfo ismapped .main.right] && !$::vesk::panel_shown}
        ::test::check "one view is alone" {$::viewsetting eq "zy" && ![winfo ismapped $area.xy]}
        ::test::check "the console is open" {[winfo ismapped .main.console]}
        ::test::check "and the window is where it was" {
            [wm geometry .] eq [read [set f [open $note]]]
        }
        close $f
    }
    set f [open $note w]
    puts -nonewline $f [wm geometry .]
    close $f
    # As Quit does, without its question.
    ::vesk::main::remember
    vesk save_settings
}
