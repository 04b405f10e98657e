# interface.tcl --
#   The interface as a person uses it, with real mouse and keys: objects panel, numbers, undo,
#   views, console, search, themes, saving and the question about unsaved changes.

source [file join [file dirname [info script]] support.tcl]

set errors {}
rename ::vesk::ops::failed ::vesk::ops::failed_really
proc ::vesk::ops::failed {message options} {
    lappend ::errors $message
    puts stderr [dict get $options -errorinfo]
}

# key, type --
#   Keys go to the window below the pointer.
proc key {args} {
    exec xdotool key --delay 40 {*}$args
    ::test::pause 350
}
proc type {text} {
    exec xdotool type --delay 12 $text
    ::test::pause 250
}
# click --
#   Clicks into a widget, at a place of it or in its middle.
proc click {w {x ""} {y ""} {count 1}} {
    if {$x eq ""} {set x [expr {[winfo width $w] / 2}]}
    if {$y eq ""} {set y [expr {[winfo height $w] / 2}]}
    exec xdotool mousemove [expr {[winfo rootx $w] + $x}] [expr {[winfo rooty $w] + $y}]
    ::test::pause 60
    exec xdotool click --repeat $count --delay 60 1
    ::test::pause 450
}
proc row {id} {
    set tree $::vesk::objects::tree
    $tree see $id
    update
    lassign [$tree bbox $id #0] x y width height
    return [list [expr {$x + 50}] [expr {$y + $height / 2}]]
}

::test::run {
    set tree $::vesk::objects::tree
    set all {}
    foreach {id parent type name surfaces visible locked} [vesk object_tree] {lappend all $id}
    set first [lindex $all 0]
    ::test::check "the panel has a row for every object" {
        [llength [lsearch -all -inline -not [lmap id $all {$tree exists $id}] 0]] == [llength $all]
    }
    ::test::check "a file read at the start is not unsaved" {
        !$::unsaved_changes && [string match "shapes.vesk - *" [wm title .]]
    }
    ::test::check "and cannot be undone" {[vesk undo_name] eq ""}

    vesk clear_selection
    click $tree {*}[row $first]
    ::test::check "a click on a row selects in the model" {
        $first in [vesk get_selected_objects] && [$tree selection] eq [vesk get_selected_objects]
    }
    key F2
    type "a \[exit\] \"b\" \$x"
    key Return
    ::test::check "F2 renames, whatever is typed" {
        [dict get [vesk object_info $first] name] eq "a \[exit\] \"b\" \$x"
    }
    ::test::check "and that is a change" {
        $::unsaved_changes && [string match "shapes.vesk\\* - *" [wm title .]]
    }

    set before [vesk get_selection_centre]
    click .main.right.tabs.object.positionx.value
    type "1/2+2"
    key Return
    ::test::check "a typed sum moves the selection" {
        abs([lindex [vesk get_selection_centre] 0] - 2.5) < 1e-5
    }
    key ctrl+z
    ::test::check "undo works from the field" {
        abs([lindex [vesk get_selection_centre] 0] - [lindex $before 0]) < 1e-4
    }
    type "+=abc"
    key Return
    ::test::check "what is no number is refused" {
        [.main.right.tabs.object.positionx instate invalid] &&
        abs([lindex [vesk get_selection_centre] 0] - [lindex $before 0]) < 1e-4
    }
    key Escape

    set strip $::vesk::objects::strip
    click $strip [::vesk::theme::px 13] [lindex [row $first] 1]
    ::test::check "the eye hides" {[vesk object_is_hidden $first] eq "1"}
    click .status.hidden
    ::test::check "the badge shows all" {[vesk object_is_hidden $first] eq "0"}
    set ::vesk::objects::filter "no such name"
    ::test::pause 300
    ::test::check "the filter hides other rows" {[llength [$tree children {}]] == 0}
    set ::vesk::objects::filter ""
    ::test::pause 300

    # The history window and the kinds that only the command makes.
    set before [vesk model_state]
    set count [llength [vesk object_tree]]
    ::vesk::menus::invoke [::vesk::menus::find atorigin {create cone}]
    ::vesk::menus::invoke [::vesk::menus::find atorigin {create ico}]
    ::test::check "shapes at the origin" {[llength [vesk object_tree]] == $count + 14}
    ::vesk::history::open
    ::test::pause 300
    set states [.history.list children {}]
    ::test::check "the history lists the states, the last is present" {
        [.history.list selection] eq [lindex $states end] && ![::vesk::history::can_redo]
    }
    lassign [.history.list bbox [lindex $states end-2]] x y width height
    click .history.list [expr {$x + 20}] [expr {$y + $height / 2}]
    ::test::check "a click goes back" {
        [llength [vesk object_tree]] == $count && [::vesk::history::can_redo]
    }
    ::test::check "the list shows where" {[.history.list selection] eq [lindex $states end-2]}
    destroy .history
    set ids [lrange [lmap {id parent type name surfaces visible locked} [vesk object_tree] {
        if {$parent != [vesk get_world]} continue
        set id
    }] 0 2]
    $tree selection set $ids
    ::test::pause 200
    ::test::check "many rows are selected at once" {
        [lsort [vesk get_selected_objects]] eq [lsort $ids]
    }

    click $::vesk::view::area_path.xz.chip 12 "" 2
    ::test::check "a double click on a label shows the view alone" {$::viewsetting eq "xz"}
    key ctrl+space
    ::test::check "Control+Space brings the others back" {$::viewsetting eq "all"}
    set area $::vesk::view::area_path
    set width [winfo width $area.xy]
    exec xdotool mousemove [expr {[winfo rootx $area] + $width}] [expr {[winfo rooty $area] + 60}] \
        mousedown 1 mousemove_relative -- -60 0 mousemove_relative -- -60 0 mouseup 1
    ::test::pause 400
    ::test::check "the divider drags" {[winfo width $area.xy] < $width - 80}
    ::vesk::view::equal

    click [::test::widget xy] 200 200
    key F12
    type "vesk new_cube"
    set count [llength [vesk object_tree]]
    key Return
    ::test::check "the console shows its last line" {
        [$::vesk::console::path.text bbox end-1c] ne ""
    }
    ::test::check "the console runs commands" {[llength [vesk object_tree]] > $count}
    ::test::check "and the panel follows" {
        [llength [$tree children {}]] == [llength [vesk object_get_children [vesk get_world]]]
    }
    type "set no_such_variable"
    key Return
    ::test::check "errors of typed lines stay in the console" {
        [string match "*no such variable*" [.main.console.text get 1.0 end]]
    }
    key F12

    exec xdotool mousemove [expr {[winfo rootx .] + 300}] [expr {[winfo rooty .] + 300}]
    key F3
    type "light"
    ::test::check "the search finds" {[winfo exists .search] && [llength $::vesk::search::hits] > 0}
    ::test::shot interface-search
    key Escape
    ::test::check "and goes" {![winfo exists .search]}

    foreach theme {light contrast dark} {
        set ::vesk::theme_name $theme
        ::vesk::main::set_theme
        ::test::pause 400
        ::test::shot interface-$theme
        ::test::check "theme $theme" {[.main.right.objects.strip cget -background]
            eq [::vesk::theme::colour field]}
    }
    ::test::check "the views have their colours back" {$::prefs_col_background == 0x555555}

    set world [llength [vesk object_tree]]
    after 900 {::test::shot interface-question; exec xdotool key Escape}
    ::vesk::files::new
    ::test::check "Escape at the question keeps the scene" {[llength [vesk object_tree]] == $world}
    set file [file join $::env(VESK_TEST_WORK) "my [file tail saved].vesk"]
    after 900 [list exec xdotool type --delay 12 $file]
    after 2600 {exec xdotool key Return}
    ::test::check "Save as writes the typed name" {[::vesk::files::save_as] && [file exists $file]}
    ::test::check "and nothing is unsaved" {
        !$::unsaved_changes && $::vesk::files::target eq $file && [lindex [::vesk::files::recent] 0] eq $file
    }
    ::vesk::files::open_file $file
    ::test::check "the saved scene opens again" {[llength [vesk object_tree]] == $world}
    ::vesk::files::new
    ::test::pause 200
    ::test::check "new empties" {[vesk object_tree] eq "" && [$tree children {}] eq ""}

    foreach size {800x600 1280x800} {
        wm geometry . $size
        ::test::pause 500
        ::test::shot interface-$size
        ::test::check "the panel folds in a narrow window only, $size" {
            [winfo ismapped .main.right] == ($size eq "1280x800")
        }
    }
    # As narrow as it gets and wide again: what was left out comes back.
    foreach {size there} {600x500 {0 0} 1280x800 {1 1} 760x600 {} 1280x800 {1 1}} {
        wm geometry . $size
        ::test::pause 400
        if {$there eq ""} {continue}
        ::test::check "snap and pivot in the option bar, $size" {
            [list [winfo ismapped .opt.snap] [winfo ismapped .opt.pivot]] eq $there
        }
    }
    ::test::check "no script failed" {$::errors eq {}}
}
