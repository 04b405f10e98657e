# panels.tcl --
#   The Object tab, the objects panel, menus and options with real mouse and keys: what they do to
#   the model, and that each is one undo record.

source [file join [file dirname [info script]] support.tcl]

proc key {args} {
    exec xdotool key --delay 30 {*}$args
    ::test::pause 250
}
proc type {text} {
    exec xdotool type --delay 12 $text
    ::test::pause 150
}
proc point_at {w {x ""} {y ""}} {
    if {$x eq ""} {set x [expr {[winfo width $w] / 2}]}
    if {$y eq ""} {set y [expr {[winfo height $w] / 2}]}
    exec xdotool mousemove [expr {[winfo rootx $w] + $x}] [expr {[winfo rooty $w] + $y}]
    ::test::pause 60
}
proc click {w {x ""} {y ""}} {
    point_at $w $x $y
    exec xdotool click 1
    ::test::pause 300
}
proc near {list wanted {tolerance 1e-4}} {
    foreach a $list b $wanted {
        if {abs($a - $b) > $tolerance} {return 0}
    }
    return [expr {[llength $list] == [llength $wanted]}]
}
proc centre {} {return [vesk get_selection_centre]}
proc size {} {return [vesk get_selection_size]}
proc row {id} {
    set tree $::vesk::objects::tree
    $tree see $id
    update
    lassign [$tree bbox $id #0] x y width height
    return [list [expr {$x + 60}] [expr {$y + $height / 2}]]
}
proc fresh {} {
    vesk clear_all
    vesk set_select_mode object
    vesk new_cube
    vesk select_all
    vesk scale 1 2 3
    set ::cube [vesk get_selected_objects]
    set ::records $::undo_count
    ::test::pause 300
}
# one_record --
#   Whether exactly one record was made since `fresh`, and undo brings the numbers back.
proc one_record {{label ""}} {
    set made [expr {$::undo_count - $::records}]
    set told [vesk undo_name]
    vesk undo
    ::test::pause 200
    return [expr {$made == 1 && ($label eq "" || $told eq $label)
        && [near [size] {1 2 3}] && [near [centre] {0 0 0}]}]
}

::test::run {
    set tab .main.right.tabs.object
    .main.right.tabs select $tab
    foreach {what field text to_centre to_size label} {
        move position 2.5 {2.5 0 0} {1 2 3} "move to"
        size size 4 {0 0 0} {4 2 3} "size selection"
        turn rotate 90 {0 0 0} {1 3 2} rotate
    } {
        fresh
        click $tab.${field}x.value
        key ctrl+a
        type $text
        key Return
        ::test::check "a typed $what" {[near [centre] $to_centre] && [near [size] $to_size]}
        ::test::check "is one undo record" {[one_record $label]}
    }
    fresh
    click $tab.mode.by
    click $tab.positiony.value
    key ctrl+a
    type 0.5
    key Return
    ::test::check "\"by\" moves so far" {[near [centre] {0 0.5 0}] && [one_record move]}
    click $tab.mode.to
    fresh
    click $tab.mirrorx
    ::test::check "mirror" {[near [size] {1 2 3}] && [one_record mirror]}

    # The letter of a field drags its number.
    foreach {field axis dx label} {position z 60 move size x 60 resize rotate z 90 rotate} {
        fresh
        point_at $tab.$field$axis.letter
        exec xdotool mousedown 1
        for {set i 0} {$i < 6} {incr i} {
            exec xdotool mousemove_relative -- [expr {$dx / 6}] 0
            ::test::pause 60
        }
        ::test::check "dragging $axis of $field changes the model at once" {
            ![near [concat [centre] [size]] {0 0 0 1 2 3}] && $::undo_count == $::records
        }
        exec xdotool mouseup 1
        ::test::pause 300
        ::test::check "and is one record" {[one_record $label]}
    }
    fresh
    point_at $tab.positionx.letter
    exec xdotool mousedown 1 mousemove_relative -- 20 0 mousemove_relative -- 20 0
    ::test::pause 200
    key Escape
    exec xdotool mouseup 1
    ::test::pause 200
    ::test::check "Escape takes the number back" {
        [centre] eq "0 0 0" && $::undo_count == $::records
    }

    # Properties.
    foreach key {name url data} {
        fresh
        set before [dict get [vesk object_info $::cube] $key]
        click $tab.$key
        key ctrl+a
        type "new $key"
        key Return
        ::test::check "$key is typed" {[dict get [vesk object_info $::cube] $key] eq "new $key"}
        vesk undo
        ::test::check "and undone" {[dict get [vesk object_info $::cube] $key] eq $before}
    }
    fresh
    click $tab.flags.locked
    ::test::check "locked is set" {[dict get [vesk object_info $::cube] locked] == 1}
    vesk undo
    ::test::check "and undone" {[dict get [vesk object_info $::cube] locked] == 0}

    # The objects panel.
    vesk clear_all
    foreach i {1 2 3} {vesk create box 0 $i 0 0 [expr {$i + 0.5}] 1 1}
    set ids [vesk object_get_children [vesk get_world]]
    ::test::pause 400
    set tree $::vesk::objects::tree
    # drag_row --
    #   Drags a row to a share of another row's height.
    proc drag_row {from to share} {
        set tree $::vesk::objects::tree
        point_at $tree {*}[row $from]
        exec xdotool mousedown 1
        lassign [$tree bbox $to #0] x y width height
        foreach step {0.5 0.8 1} {
            lassign [$tree bbox $from #0] x0 y0
            point_at $tree [expr {$x + 60}] \
                [expr {round($y0 + $height / 2 + ($y + $share * $height - $y0 - $height / 2) * $step)}]
        }
        if {$share == 0.1} {::test::shot panels-drag}
        exec xdotool mouseup 1
        ::test::pause 400
    }
    lassign $ids a b c
    drag_row $c $a 0.1
    ::test::check "a row dragged up stands before the other" {
        [vesk object_get_children [vesk get_world]] eq [list $c $a $b]
        && [vesk undo_name] eq "move in the tree"
    }
    vesk undo
    ::test::check "and undo puts it back" {
        [vesk object_get_children [vesk get_world]] eq [list $a $b $c]
    }
    vesk objects_select $a
    vesk group
    ::test::pause 400
    set group [lindex [vesk object_get_children [vesk get_world]] 0]
    drag_row $c $group 0.5
    ::test::check "a row dragged into a group is its child" {
        $c in [vesk object_get_children $group]
    }
    drag_row $group $c 0.9
    ::test::check "a group does not go into itself" {
        [vesk object_get_children [vesk get_world]] eq [list $group $b]
    }
    vesk objects_select $group
    vesk set_select_mode tree
    vesk ungroup
    vesk set_select_mode object
    ::test::pause 400
    set ids [vesk object_get_children [vesk get_world]]
    click $tree {*}[row [lindex $ids 1]]
    key l
    ::test::check "L locks the row" {[dict get [vesk object_info [lindex $ids 1]] locked] == 1}
    ::test::check "a badge tells it" {[winfo ismapped .status.locked]}
    click .status.locked
    ::test::check "a click on the badge unlocks" {
        [dict get [vesk object_info [lindex $ids 1]] locked] == 0
    }
    click $tree {*}[row [lindex $ids 1]]
    key h
    ::test::check "H hides it" {[vesk object_is_hidden [lindex $ids 1]] eq "1"}
    vesk unhide
    click $tree {*}[row [lindex $ids 0]]
    key Delete
    ::test::check "Delete deletes it" {[llength [vesk object_get_children [vesk get_world]]] == 2}

    # Menus: what does not fit the selection is grey.
    fresh
    proc state {menu words} {
        set rows [::vesk::menus::rows $menu]
        set place [lsearch -exact $rows [::vesk::menus::find $menu $words]]
        set path [dict get $::vesk::menus::paths $menu]
        ::vesk::menus::refresh $menu $path
        return [$path entrycget $place -state]
    }
    ::test::check "one object: no merge, no ungroup, but group" {
        [state object object_merge] eq "disabled" && [state object ungroup] eq "disabled"
        && [state object group] eq "normal" && [state surface extrude] eq "disabled"
    }
    vesk set_select_mode surface
    ::test::check "surfaces: extrude, no group" {
        [state surface extrude] eq "normal" && [state object group] eq "disabled"
    }
    vesk clear_selection
    ::test::check "nothing: nothing" {
        [state surface surface_make_hole] eq "disabled" && [state edit delete] eq "disabled"
    }

    # Options show their result at once.
    fresh
    set ::prefs_hole_percent 50
    set before $::undo_count
    ::vesk::menus::invoke [::vesk::menus::find surface surface_make_hole]
    ::test::pause 700
    ::test::check "the hole is there while its options are open" {
        [lindex [vesk get_counts] 3] > 6
    }
    ::test::shot panels-options
    point_at $::vesk::view::area_path.options.in.f0
    key ctrl+a
    type 30
    ::test::pause 500
    ::test::check "and follows the number" {$::undo_count == $before + 1 && $::prefs_hole_percent == 30}
    key Escape
    ::test::check "Escape takes it back" {
        [lindex [vesk get_counts] 3] == 6 && $::undo_count == $before
    }
    ::vesk::menus::invoke [::vesk::menus::find surface surface_make_hole]
    ::test::pause 500
    key Return
    ::test::check "Return keeps it" {
        [lindex [vesk get_counts] 3] > 6 && $::undo_count == $before + 1
        && ![winfo exists $::vesk::view::area_path.options]
    }

    # A selection that no step made: each try works on it, and taking back keeps it.
    fresh
    vesk group
    vesk clear_selection
    vesk objects_select $::cube
    set count [lindex [vesk get_counts] 3]
    ::vesk::menus::invoke [::vesk::menus::find surface surface_make_hole]
    ::test::pause 500
    point_at $::vesk::view::area_path.options.in.f0
    key ctrl+a
    type 40
    ::test::pause 500
    set tried [lindex [vesk get_counts] 3]
    key Escape
    ::test::check "options work on what was selected by hand, and keep it" {
        $tried > $count && [lindex [vesk get_counts] 3] == $count
        && [vesk get_selected_objects] eq $::cube
    }

    # The numbers of the operations.
    key ctrl+e
    ::test::check "the operation settings open" {[winfo ismapped .operations]}
    ::test::shot panels-operations
    key ctrl+a
    type 40
    key Return
    ::test::check "and set preferences" {$::prefs_hole_percent == 40}
    key Escape
    ::test::check "and close" {![winfo exists .operations]}

    # The tip of the start in a small window.
    wm geometry . 800x600
    ::test::pause 500
    show_tip
    ::test::pause 300
    ::test::shot panels-tip
    ::test::check "the tip has a line of its own and covers no view" {
        ![winfo exists .tips] && [winfo ismapped .tipstrip]
        && [winfo rooty .tipstrip] + [winfo height .tipstrip] <= [winfo rooty .main]
    }
    ::test::check "and the operation settings can be reached" {
        [winfo ismapped .opt.settings] && [winfo rootx .opt.settings] + [winfo width .opt.settings]
            <= [winfo rootx .opt.search] + 8
    }
    destroy .tipstrip
    wm geometry . 1280x800
    ::test::pause 500

    # Ten thousand objects.
    vesk clear_all
    set file [file join $::env(VESK_TEST_WORK) many.vesk]
    set stream [open $file w]
    puts $stream "VESKb\nOBJECT world\nkids 10000"
    for {set i 0} {$i < 10000} {incr i} {
        puts $stream "OBJECT poly\nname \"object $i\"\nnumvert 1\n$i 0 0\nkids 0"
    }
    close $stream
    vesk load_file $file
    vesk clear_selection
    ::vesk::ops::refresh
    update
    set ::vesk::objects::flat {}
    set took [lindex [time {::vesk::objects::refresh; update idletasks}] 0]
    puts "10,000 rows in [expr {$took / 1000}] ms"
    ::test::check "ten thousand rows" {[llength [$tree children {}]] == 10000 && $took < 600000}
}
