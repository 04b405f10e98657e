# drags.tcl --
#   Every tool of the left button with a real mouse and real keys, checked by the model: selecting
#   in each mode, moving, turning, sizing, extruding, creating, and every way of taking a drag back.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

# cube --
#   A cube of unit size in an empty scene, selected in a mode, no undo records.
proc cube {{mode object}} {
    fresh
    vesk set_select_mode $mode
}
proc counts {id} {
    set info [vesk object_info $id]
    return [list [dict get $info surfaces] [dict get $info vertices]]
}

run {
    # ---- selecting, in each mode: click, Shift, rubber bands both ways ----
    foreach {mode count all} {tree objects 1 object objects 1 surface surfaces 6 vertex vertices 8} {
        cube $mode
        vesk clear_selection
        click_at 0.5 0.5
        set one [vesk selection_get_num_$count]
        check "$mode: a click on the corner takes one" {$one == 1}
        click_at 0.5 0.5 shift
        check "$mode: Shift and a click change it" {
            [vesk selection_get_num_$count] != $one || $mode in {surface vertex}
        }
        click_at -1.5 1
        check "$mode: a click beside takes nothing" {[vesk selection_get_num_$count] == 0}
        from_to -1 -0.8 1 0.8
        check "$mode: a band from the left takes what is inside" {
            [vesk selection_get_num_$count] == $all
        }
        from_to -1 -0.8 0 0.8
        check "$mode: and not what is half inside" {
            [vesk selection_get_num_$count] == [dict get {tree 0 object 0 surface 1 vertex 4} $mode]
        }
        from_to 0 0.8 -1 -0.8
        check "$mode: a band from the right takes what it touches" {
            [vesk selection_get_num_$count] == [dict get {tree 1 object 1 surface 5 vertex 4} $mode]
        }
    }

    # ---- moving ----
    cube
    from_to 0 0 0.6 0.3
    check "a drag moves" {[near [centre] {0.6 0.3 0}]}
    check "with one undo record" {[made] == 1 && [vesk undo_name] eq "move"}
    vesk undo
    check "which takes it back" {[near [centre] {0 0 0} 1e-6]}
    begin 0 0 0.6 0.3
    key x
    release
    check "X locks" {[near [centre] {0.6 0 0}]}
    cube
    set ::prefs_grid 0.5
    from_to 0 0 0.63 0.3 ctrl
    check "Control snaps to the grid" {[near [centre] {0.5 0.5 0} 1e-5]}
    set ::prefs_grid 0.1
    cube
    set number $::vesk::view::area_path.xy.number
    begin 0 0 0.3 0.3
    key 2 Tab minus 1 period 5
    check "digits show at the pointer and move at once" {
        [winfo ismapped $number] && [$number.letter cget -text] eq "dY"
        && [near [centre] {2 -1.5 0} 1e-5]
    }
    shot drags-number
    key Return
    check "Return keeps them" {
        [near [centre] {2 -1.5 0} 1e-5] && ![winfo exists $number]
    }
    release
    check "as one record" {[made] == 1}

    # ---- taking a drag back ----
    foreach {how script} {
        Escape {key Escape}
        "the right button" {xdo click 3}
    } {
        cube
        set before [vesk model_state]
        set history [vesk history_list]
        begin 0 0 0.7 0.4
        {*}$script
        release
        check "$how takes the drag back" {
            [centre] eq "0 0 0" && [made] == 0 && [vesk history_list] eq $history
            && ![winfo exists .popup]
        }
    }
    cube
    begin 0 0 0.7 0.4
    key ctrl+z
    release
    check "Control+Z during a drag takes the drag back" {
        [centre] eq "0 0 0" && [made] <= 0
    }

    # ---- turning, sizing ----
    cube
    vesk keypress 0 r 0
    from_to 0.4 0 0.3 -0.27 shift
    check "Shift turns by 15 degrees" {
        [near [size] [list [expr {cos(acos(-1) / 4) * 2}] [expr {cos(acos(-1) / 4) * 2}] 1]]
        && [vesk undo_name] eq "rotate"
    }
    cube
    from_to 0.58 0 1.08 0
    check "a handle sizes from the other side" {
        [near [size] {1.5 1 1}] && [near [centre] {0.25 0 0}]
    }
    cube
    from_to 0.58 0.58 1.08 0.7 shift
    check "Shift keeps the proportions" {[near [size] {1.5 1.5 1.5}]}
    cube
    from_to 0.58 0 0.83 0 ctrl
    check "Control keeps the middle" {[near [size] {1.5 1 1}] && [near [centre] {0 0 0}]}

    # ---- near snap ----
    cube
    vesk create box 0 1 0.2 -0.5 2 1.2 0.5
    vesk objects_select $::cube
    set ::prefs_snap_near 1
    from_to 0.45 -0.45 0.92 0.16
    check "the grabbed corner comes to a near one" {[near [centre] {0.5 0.7 0} 1e-5]}
    set ::prefs_snap_near 0

    # ---- extruding ----
    cube surface
    vesk clear_selection
    click_at 0.2 0.2
    check "the front is selected" {[vesk selection_get_num_surfaces] == 1}
    vesk keypress 0 e 0
    check "E is the extrude tool" {[lindex [vesk get_app_mode] 1] eq "extrude"}
    from_to 0.5 0 1.2 0 "" zy
    check "a drag extrudes" {
        [counts $::cube] eq {10 12} && [vesk undo_name] eq "extrude"
    }
    vesk undo
    check "and is undone" {[counts [top_objects]] eq {6 8}}

    # ---- the name under the pointer ----
    cube
    vesk objects_set $::cube name "a name"
    lassign [spot 0.2 0.1] px py
    at xy $px $py
    set chip $::vesk::view::area_path.xy.hover
    check "the name shows while the pointer rests" {[$chip cget -text] eq "a name"}
    at xy [expr {$px + 40}] $py
    check "and goes when it moves" {![winfo exists $chip]}
    at xy [expr {$px + 300}] $py
    pause 500
    check "and does not come beside the object" {![winfo exists $chip]}

    # ---- a double click goes down ----
    cube
    vesk group
    vesk set_select_mode tree
    vesk clear_selection
    click_at 0.5 0.2 "" 2
    check "a double click takes the object in its group" {
        [lindex [vesk get_app_mode] 0] eq "object" && [vesk get_selected_objects] eq $::cube
    }

    # ---- creating ----
    foreach {tool surfaces vertices} {rect 1 4 grid 18 36 mesh 128 81 circle 1 16 disk 12 13
            box 6 8 cylinder 12 24 sphere 144 134} {
        vesk clear_all
        vesk set_draw_mode $tool
        from_to -0.8 0.5 0.8 -0.5
        set ids [vesk get_selected_objects]
        check "a drag makes a $tool" {
            [llength $ids] == 1 && [lindex [counts $ids] 1] == $vertices
            && [near [lrange [size] 0 1] {1.6 1}] && $::undo_count == 1
        }
    }
    vesk clear_all
    vesk set_draw_mode box
    begin -0.5 -0.5 0.2 0.2
    key 1 Tab 2 Tab 3 Return
    release
    check "a box by numbers" {[near [size] {1 2 3} 1e-5] && $::undo_count == 1}
    foreach {tool points keys surfaces vertices} {
        polygon {-1 -1 1 -1 1 1} Return 1 3
        polyline {-1 -1 0 1 1 -1 1.2 1} Return 1 4
        line {-1 -1 1 1} {} 1 2
        light {0.5 0.5} {} 0 0
    } {
        vesk clear_all
        vesk set_draw_mode $tool
        foreach {x y} $points {click_at $x $y}
        if {$keys ne ""} {key {*}$keys}
        set ids [top_objects]
        check "clicks make a $tool" {
            [llength $ids] == 1 && [counts $ids] eq [list $surfaces $vertices]
            && [vesk undo_name] eq "add $tool"
        }
    }
    vesk clear_all
    vesk set_draw_mode polygon
    click_at -1 -1
    click_at 1 -1
    click_at 0 1
    key BackSpace
    key Escape
    check "Escape drops an outline" {[vesk object_tree] eq ""}
    vesk set_draw_mode move
}
