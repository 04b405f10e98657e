# viewwindows.tcl --
#   Views with windows of their own: drawn, used and brought back; exchanged; remembered.

source [file join [file dirname [info script]] support.tcl]

proc on_screen {view} {
    set togl [widget $view]
    return [list [winfo rootx $togl] [winfo rooty $togl] [winfo width $togl] [winfo height $togl]]
}

run {
    set area $::vesk::view::area_path
    vesk clear_all
    vesk create box 2 -1 -1 -1 1 1 1
    vesk fit_all
    set before [on_screen xyz]
    set wide [winfo width [widget xz]]
    at xy 150 150
    ::vesk::view::post_chip xyz
    pick 2 $area.xyz.chip.menu
    check "the label's menu detaches a view" {
        $::vesk::view::detached eq "xyz" && [winfo toplevel [widget xyz]] eq "$area.xyz"
    }
    check "the view beside takes its place" {[winfo width [widget xz]] > 1.5 * $wide}
    wm geometry $area.xyz 500x400+700+560
    check "it is drawn in its new size" {
        [winfo width [widget xyz]] > 480 && [winfo width [widget xyz]] < 500
        && [dict get [picture xyz] width] == [winfo width [widget xyz]]
        && [share [picture xyz] {85 85 85}] < 0.99
    }
    shot viewwindows
    vesk set_select_mode object
    vesk clear_selection
    press [widget xyz]
    check "a click in it selects" {[llength [vesk get_selected_objects]] == 1}
    key Delete
    check "its keys work" {[llength [vesk object_tree]] == 0}
    key ctrl+z
    check "and those of the window" {[llength [vesk object_tree]] == 7}
    foreach name {xy zy} {::vesk::view::detach $name}
    ::vesk::view::detach xz
    check "the last view stays" {$::vesk::view::detached eq "xyz xy zy"}
    check "and has the whole place" {
        [winfo width $area.xz] == [winfo width $area] && [winfo height $area.xz] == [winfo height $area]
    }
    ::vesk::view::note_windows
    foreach name {xy zy xyz} {::vesk::view::attach $name}
    check "back in their places" {$::vesk::view::detached eq "" && [on_screen xyz] eq $before}
    check "and drawn there" {[dict get [picture xyz] width] == [winfo width [widget xyz]]}
    ::vesk::view::restore_windows
    check "the next session detaches them again" {
        [lsort $::vesk::view::detached] eq "xy xyz zy" && [wm geometry $area.xyz] eq "500x400+700+560"
    }
    foreach name {xy zy xyz} {::vesk::view::attach $name}
    settle

    set place [winfo rootx $area.xy]
    ::vesk::view::exchange xy xyz
    check "another kind of view in a place" {
        [winfo rootx $area.xyz] == $place && [winfo rooty $area.xyz] < [winfo rooty $area.xz]
    }
    ::vesk::view::exchange xyz xy
    ::vesk::view::set_shares 0.3 0.7
    settle
    # The border between the left and the right column.
    press $area [winfo x $area.zy] 60 1 2
    check "a double click on a divider makes them equal" {
        abs([winfo width $area.xy] - [winfo width $area.zy]) < 3
        && abs([winfo height $area.xy] - [winfo height $area.xz]) < 3
    }
    at zy 100 100
    key ctrl+space
    check "Control+Space maximises the view" {
        $::viewsetting eq "zy" && [::vesk::settings::get view_shown] eq "zy"
        && [winfo width $area.zy] == [winfo width $area]
    }
    key ctrl+space
    press $area.zy.chip 12 "" 1 2
    check "and so does a double click on its label" {$::viewsetting eq "zy"}
    press $area.zy.chip 12 "" 1 2
    check "and back" {$::viewsetting eq "all"}
}
