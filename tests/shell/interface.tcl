# interface.tcl --
#   The interface as a person uses it, with real mouse and keys: objects panel, numbers, undo,
#   views, console, search, themes, saving and the question about unsaved changes.

source [file join [file dirname [info script]] support.tcl]

set tree $::vesk::objects::tree
proc row_place {id} {return [lindex [$::tree bbox $id #0] 1]}

run {
    set all [lmap {id parent type name surfaces visible locked} [vesk object_tree] {set id}]
    set first [lindex $all 0]
    check "the panel has a row for every object" {
        0 ni [lmap id $all {$tree exists $id}]
    }
    check "a file read at the start is not unsaved" {
        !$::unsaved_changes && [string match "shapes.vesk - *" [wm title .]]
    }
    check "and cannot be undone" {[vesk undo_name] eq ""}

    vesk clear_selection
    press_row $tree $first
    check "a click on a row selects in the model" {
        $first in [vesk get_selected_objects] && [$tree selection] eq [vesk get_selected_objects]
    }
    key F2
    type "a \[exit\] \"b\" \$x"
    key Return
    check "F2 renames, whatever is typed" {
        [info_of $first name] eq "a \[exit\] \"b\" \$x"
    }
    check "and that is a change" {
        $::unsaved_changes && [string match "shapes.vesk\\* - *" [wm title .]]
    }

    set before [centre]
    press .main.right.tabs.object.positionx.value
    type "1/2+2"
    key Return
    check "a typed sum moves the selection" {
        abs([lindex [centre] 0] - 2.5) < 1e-5
    }
    key ctrl+z
    check "undo works from the field" {
        abs([lindex [centre] 0] - [lindex $before 0]) < 1e-4
    }
    type "+=abc"
    key Return
    check "what is no number is refused" {
        [.main.right.tabs.object.positionx instate invalid] &&
        abs([lindex [centre] 0] - [lindex $before 0]) < 1e-4
    }
    key Escape
    check "Escape takes the text and its red frame away" {
        ![.main.right.tabs.object.positionx instate invalid]
        && [string is double -strict [.main.right.tabs.object.positionx.value get]]
    }

    set strip $::vesk::objects::strip
    press $strip [::vesk::theme::px 13] [expr {[row_place $first] + 8}]
    check "the eye hides" {[vesk object_is_hidden $first] eq "1"}
    press .status.hidden
    check "the badge shows all" {[vesk object_is_hidden $first] eq "0"}
    vesk clear_selection
    check "the numbers of the last box go with the selection" {
        [.status.size.w cget -text] eq "\u2013" && [.status.coors.x cget -text] eq "\u2013"
    }
    set ::vesk::objects::filter "no such name"
    check "the filter hides other rows" {[llength [$tree children {}]] == 0}
    set ::vesk::objects::filter ""
    wait_until {[$tree exists $first]}

    # The history window and the kinds that only the command makes.
    set count [llength [vesk object_tree]]
    ::vesk::menus::invoke [::vesk::menus::find atorigin {create cone}]
    ::vesk::menus::invoke [::vesk::menus::find atorigin {create ico}]
    check "shapes at the origin" {[llength [vesk object_tree]] == $count + 14}
    ::vesk::history::open
    settle
    set states [.history.list children {}]
    check "the history lists the states, the last is present" {
        [.history.list selection] eq [lindex $states end] && ![::vesk::history::can_redo]
    }
    press_row .history.list [lindex $states end-2]
    check "a click goes back" {
        [llength [vesk object_tree]] == $count && [::vesk::history::can_redo]
    }
    check "the list shows where" {[.history.list selection] eq [lindex $states end-2]}
    destroy .history
    set ids [lrange [lmap {id parent type name surfaces visible locked} [vesk object_tree] {
        if {$parent != [vesk get_world]} continue
        set id
    }] 0 2]
    $tree selection set $ids
    check "many rows are selected at once" {
        [lsort [vesk get_selected_objects]] eq [lsort $ids]
    }

    press $::vesk::view::area_path.xz.chip 12 "" 1 2
    check "a double click on a label shows the view alone" {$::viewsetting eq "xz"}
    key ctrl+space
    check "Control+Space brings the others back" {$::viewsetting eq "all"}
    set area $::vesk::view::area_path
    set width [winfo width $area.xy]
    hold $area $width 60 [expr {$width - 120}] 60
    release
    check "the divider drags" {[winfo width $area.xy] < $width - 80}
    ::vesk::view::equal

    click xy 1 200 200
    key F12
    type "vesk new_cube"
    set count [llength [vesk object_tree]]
    key Return
    check "the console shows its last line" {
        [$::vesk::console::path.text bbox end-1c] ne ""
    }
    check "the console runs commands" {[llength [vesk object_tree]] > $count}
    check "and the panel follows" {
        [llength [$tree children {}]] == [llength [top_objects]]
    }
    type "vesk new_cubr"
    key Return
    check "a command that is not there: the console names the nearest" {
        [string match "*Did you mean *new_cube*" [.main.console.text get 1.0 end]]
    }
    type "set no_such_variable"
    key Return
    check "errors of typed lines stay in the console" {
        [string match "*no such variable*" [.main.console.text get 1.0 end]]
    }
    key F12

    point_at . 300 300
    key F3
    type "light"
    check "the search finds" {[winfo exists .search] && [llength $::vesk::search::hits] > 0}
    shot interface-search
    key Escape
    check "and goes" {![winfo exists .search]}

    foreach theme {light contrast dark} {
        use_theme $theme
        shot interface-$theme
        check "theme $theme" {[.main.right.objects.strip cget -background]
            eq [::vesk::theme::colour field]}
    }
    check "the views have their colours back" {$::prefs_col_background == 0x555555}

    set world [llength [vesk object_tree]]
    when {[front .question]} {shot interface-question; key Escape}
    ::vesk::files::new
    check "Escape at the question keeps the scene" {[llength [vesk object_tree]] == $world}
    set file [work "my saved.vesk"]
    answer_file $file
    set saved [::vesk::files::save_as]
    check "Save as writes the typed name" {$saved && [file exists $file]}
    check "and nothing is unsaved" {
        !$::unsaved_changes && $::vesk::files::target eq $file && [lindex [::vesk::files::recent] 0] eq $file
    }
    ::vesk::files::open_file $file
    check "the saved scene opens again" {[llength [vesk object_tree]] == $world}
    ::vesk::files::new
    check "new empties" {[vesk object_tree] eq "" && [$tree children {}] eq ""}

    foreach size {800x600 1280x800} {
        resize $size
        shot interface-$size
        check "the panel folds in a narrow window only, $size" {
            [winfo ismapped .main.right] == ($size eq "1280x800")
        }
    }
    # As narrow as it gets and wide again: what was left out comes back.
    foreach {size there} {600x500 {0 0} 1280x800 {1 1} 760x600 {} 1280x800 {1 1}} {
        resize $size
        if {$there eq ""} {continue}
        check "snap and pivot in the option bar, $size" {
            [list [winfo ismapped .opt.snap] [winfo ismapped .opt.pivot]] eq $there
        }
    }
}
