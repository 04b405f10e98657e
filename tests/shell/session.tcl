# session.tcl --
#   What a session leaves to the next one: where the window stands, what is folded, what is alone.

source [file join [file dirname [info script]] support.tcl]

run {
    set area [::vesk::view::area]
    set note [work place]
    if {$::env(VESK_TEST_SESSION) eq "leave"} {
        set id [lindex [exec xdotool search --name untitled] 0]
        xdo windowmove $id 140 120 windowsize $id 1000 700
        wait_until {[string match 1000x700* [wm geometry .]]}
        set ::vesk::panel_shown 0
        ::vesk::main::show_panel
        settle
        click zy 1 50 50
        key ctrl+space
        check "a view fills the place" {$::viewsetting eq "zy"}
        show_console 1
    } else {
        check "the window is as large" {[winfo width .] == 1000 && [winfo height .] == 700}
        check "the panel is folded" {![winfo ismapped .main.right] && !$::vesk::panel_shown}
        check "one view is alone" {$::viewsetting eq "zy" && ![winfo ismapped $area.xy]}
        check "the console is open" {[winfo ismapped .main.console]}
        check "and the window is where it was" {[wm geometry .] eq [contents $note]}
    }
    write $note [wm geometry .]
    # As Quit does, without its question.
    ::vesk::main::remember
    vesk save_settings
}
