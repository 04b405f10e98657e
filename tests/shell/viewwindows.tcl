# viewwindows.tcl --
#   Views with windows of their own: drawn, used and brought back; exchanged; remembered.

source [file join [file dirname [info script]] support.tcl]

proc on_screen {view} {
    set togl [::test::widget $view]
    return [list [winfo rootx $togl] [winfo rooty $togl] [winfo width $togl] [winfo height $togl]]
}

::test::run {
    set area $::vesk::view::area_path
    vesk clear_all
    vesk create box 2 -1 -1 -1 1 1 1
    vesk fit_all
    set before [on_screen xyz]
    set wide [winfo width [::test::widget xz]]
    ::test::at xy 150 150
    ::vesk::view::post_chip xyz
    ::test::pause 200
    ::test::key Down Down Return
    ::test::check "the label's menu detaches a view" {
        $::vesk::view::detached eq "xyz" && [winfo toplevel [::test::widget xyz]] eq "$area.xyz"
    }
    ::test::check "the view beside takes its place" {
        [winfo width [::test::widget xz]] > 1.5 * $wide
    }
    wm geometry $area.xyz 500x400+700+560
    ::test::pause 500
    set picture [::test::picture xyz]
    ::test::check "it is drawn in its new size" {
        [dict get $picture width] == [winfo width [::test::widget xyz]]
        && [dict get $picture width] > 480 && [::test::share $picture {85 85 85}] < 0.99
    }
    ::test::shot viewwindows
    vesk set_select_mode object
    vesk clear_selection
    ::test::press [::test::widget xyz]
    ::test::check "a click in it selects" {[llength [vesk get_selected_objects]] == 1}
    set records $::undo_count
    ::test::key Delete
    ::test::check "its keys work" {[llength [vesk object_tree]] == 0}
    ::test::key ctrl+z
    ::test::check "and those of the window" {[llength [vesk object_tree]] == 7}
    foreach name {xy zy} {::vesk::view::detach $name}
    ::vesk::view::detach xz
    ::test::check "the last view stays" {$::vesk::view::detached eq "xyz xy zy"}
    ::test::pause 300
    ::test::check "and has the whole place" {
        [winfo width $area.xz] == [winfo width $area] && [winfo height $area.xz] == [winfo height $area]
    }
    ::vesk::view::note_windows
    foreach name {xy zy xyz} {::vesk::view::attach $name}
    ::test::pause 400
    ::test::check "back in their places" {
        $::vesk::view::detached eq "" && [on_screen xyz] eq $before
    }
    ::test::check "and drawn there" {
        [dict get [::test::picture xyz] width] == [winfo width [::test::widget xyz]]
    }
    ::vesk::view::restore_windows
    ::test::check "the next session detaches them again" {
        [lsort $::vesk::view::detached] eq "xy xyz zy" && [wm geometry $area.xyz] eq "500x400+700+560"
    }
    foreach name {xy zy xyz} {::vesk::view::attach $name}
    ::test::pause 300

    set place [winfo rootx $area.xy]
    ::vesk::view::exchange xy xyz
    ::test::pause 300
    ::test::check "another kind of view in a place" {
        [winfo rootx $area.xyz] == $place && [winfo rooty $area.xyz] < [winfo rooty $area.xz]
    }
    ::vesk::view::exchange xyz xy
    ::vesk::view::set_shares 0.3 0.7
    ::test::pause 300
    # The border between the left and the right column.
    exec xdotool mousemove [winfo rootx $area.zy] [expr {[winfo rooty $area] + 60}] \
        click --repeat 2 --delay 60 1
    ::test::pause 400
    ::test::check "a double click on a divider makes them equal" {
        abs([winfo width $area.xy] - [winfo width $area.zy]) < 3
        && abs([winfo height $area.xy] - [winfo height $area.xz]) < 3
    }
    ::test::at zy 100 100
    ::test::key ctrl+space
    ::test::check "Control+Space maximises the view" {
        $::viewsetting eq "zy" && [::vesk::settings::get view_shown] eq "zy"
        && [winfo width $area.zy] == [winfo width $area]
    }
    ::test::key ctrl+space
    ::test::press $area.zy.chip 12 "" 1 2
    ::test::check "and so does a double click on its label" {$::viewsetting eq "zy"}
    ::test::press $area.zy.chip 12 "" 1 2
    ::test::check "and back" {$::viewsetting eq "all"}
    ::test::check "no script failed" {$::test::errors eq {}}
}
