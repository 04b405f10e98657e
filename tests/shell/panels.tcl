# panels.tcl --
#   The Object tab, the objects panel, menus and options with real mouse and keys: what they do to
#   the model, and that each is one undo record.

source [file join [file dirname [info script]] support.tcl]

set ::test::tolerance 1e-4
set tab .main.right.tabs.object
set tree $::vesk::objects::tree

# cube --
#   A cube of three different sides.
proc cube {} {fresh {vesk new_cube; vesk select_all; vesk scale 1 2 3}}

# check_record --
#   One record was made since `cube`, and undo brings the numbers back.
proc check_record {label} {
    check "it is one undo record" {[made] == 1 && [vesk undo_name] eq $label}
    vesk undo
    check "which is undone" {[near [size] {1 2 3}] && [near [centre] {0 0 0}]}
}

# drag_row --
#   Drags a row to a share of another row's height.
proc drag_row {from to share} {
    lassign [$::tree bbox $from #0] x y width height
    set there [lindex [$::tree bbox $to #0] 1]
    hold $::tree [expr {$x + 60}] [expr {$y + $height / 2}] [expr {$x + 60}] \
        [expr {$there + $share * $height}]
    if {$share == 0.1} {shot panels-drag}
    release
}

proc state {menu words} {
    lassign [entry_of $menu $words] path place
    return [$path entrycget $place -state]
}

proc info_parent {id} {
    foreach {row parent type name surfaces visible locked} [vesk object_tree] {
        if {$row == $id} {return $parent}
    }
}

# runs_of --
#   How often a script has each listener run that listens to several aspects.
proc runs_of {script} {
    set ::runs {}
    set names [lsort [concat {*}[dict values $::vesk::ops::listeners]]]
    foreach name [lsort -unique $names] {
        if {[llength [lsearch -all -exact $names $name]] < 2} {continue}
        dict set ::runs $name 0
        set count [list apply {{name args} {dict incr ::runs $name}} $name]
        trace add execution $name enter $count
        lappend traces $name $count
    }
    uplevel 1 $script
    settle
    foreach {name count} $traces {trace remove execution $name enter $count}
    return $::runs
}

run {
    open_tab object
    foreach {what field text to_centre to_size label} {
        move position 2.5 {2.5 0 0} {1 2 3} "move to"
        size size 4 {0 0 0} {4 2 3} "size selection"
        turn rotate 90 {0 0 0} {1 3 2} rotate
    } {
        cube
        enter $tab.${field}x.value $text
        check "a typed $what" {[near [centre] $to_centre] && [near [size] $to_size]}
        check_record $label
    }
    cube
    press $tab.mode.by
    enter $tab.positiony.value 0.5
    check "\"by\" moves so far" {[near [centre] {0 0.5 0}]}
    check_record move
    press $tab.mode.to
    cube
    press $tab.mirrorx
    check_record mirror

    # However much changed, a panel is brought up to date once.
    foreach {what script} {
        "a new object" {vesk create box 0 1 0 0 2 1 1}
        "a typed number" {enter $tab.positionx.value 2}
        undo {key ctrl+z}
        "another mode" {vesk set_select_mode vertex}
    } {
        set runs [runs_of $script]
        check "$what: [dict size $runs] panels follow several aspects, each once" {
            [dict size $runs] > 1 && [lsort -unique [dict values $runs]] eq 1
        }
    }

    # A light has a place, and its frame has angles.
    fresh {vesk create_light 1 2 3; vesk set_select_mode light}
    check "a light's position is shown" {
        [lmap axis {x y z} {set ::vesk::transform::value(position,$axis)}] eq {1.000 2.000 3.000}
    }
    enter $tab.positiony.value 5
    check "and can be typed" {[near [centre] {1 5 3}]}
    ::vesk::menus::invoke [::vesk::menus::find view fit_selected_all]
    set light [vesk get_selected_objects]
    vesk clear_selection
    press [widget xy]
    check "the views are centred on it" {[vesk get_selected_objects] eq $light}
    cube
    enter $tab.rotatez.value 30
    enter $tab.rotatez.value 45
    check "\"to\" is the angle of the frame" {
        [near [info_of $::cube angles] {0 0 45} 1e-3] && $::vesk::transform::value(rotate,z) eq "45.000"
    }
    press $tab.mode.by
    enter $tab.rotatez.value 10
    check "\"by\" turns on" {[near [info_of $::cube angles] {0 0 55} 1e-3]}
    press $tab.mode.to
    check "and \"to\" shows where it is" {$::vesk::transform::value(rotate,z) eq "55.000"}

    # The letter of a field drags its number.
    foreach {field axis dx label} {position z 60 move size x 60 resize rotate z 90 rotate} {
        cube
        hold $tab.$field$axis.letter 4 4 [expr {4 + $dx}] 4
        check "dragging $axis of $field changes the model at once" {
            ![near [concat [centre] [size]] {0 0 0 1 2 3}] && [made] == 0
        }
        release
        check_record $label
    }
    cube
    hold $tab.positionx.letter 4 4 44 4
    key Escape
    release
    check "Escape takes the number back" {[centre] eq "0 0 0" && [made] == 0}

    # Properties.
    foreach key {name url data} {
        cube
        set before [info_of $::cube $key]
        enter $tab.$key "new $key"
        check "$key is typed" {[info_of $::cube $key] eq "new $key"}
        vesk undo
        check "and undone" {[info_of $::cube $key] eq $before}
    }
    cube
    press $tab.flags.locked
    check "locked is set" {[info_of $::cube locked] == 1}
    vesk undo
    check "and undone" {[info_of $::cube locked] == 0}

    # The objects panel.
    vesk clear_all
    foreach i {1 2 3} {vesk create box 0 $i 0 0 [expr {$i + 0.5}] 1 1}
    set ids [top_objects]
    settle
    lassign $ids a b c
    drag_row $c $a 0.1
    check "a row dragged up stands before the other" {
        [top_objects] eq [list $c $a $b] && [vesk undo_name] eq "move in the tree"
    }
    vesk undo
    check "and undo puts it back" {[top_objects] eq [list $a $b $c]}
    vesk objects_select $a
    vesk group
    settle
    set group [lindex [top_objects] 0]
    drag_row $c $group 0.5
    check "a row dragged into a group is its child" {$c in [vesk object_get_children $group]}
    drag_row $group $c 0.9
    check "a group does not go into itself" {[top_objects] eq [list $group $b]}
    vesk objects_select $group
    vesk set_select_mode tree
    vesk ungroup
    vesk set_select_mode object
    settle
    lassign [top_objects] a b
    press_row $tree $b
    key l
    check "L locks the row" {[info_of $b locked] == 1}
    check "a badge tells it" {[winfo ismapped .status.locked]}
    press .status.locked
    check "a click on the badge unlocks" {[info_of $b locked] == 0}
    press_row $tree $b
    key h
    check "H hides it" {[vesk object_is_hidden $b] eq "1"}
    vesk unhide
    press_row $tree $a
    key Delete
    check "Delete deletes it" {[llength [top_objects]] == 2}

    # A group's row in object mode stands for what is below it.
    vesk clear_all
    vesk set_select_mode object
    foreach i {1 2 3} {vesk create box 0 $i 0 0 [expr {$i + 0.5}] 1 1}
    lassign [top_objects] a b c
    vesk objects_select "$a $b"
    vesk group
    vesk clear_selection
    settle
    set group [info_parent $a]
    press_row $tree $group
    check "a clicked group is marked, with what is below it" {
        [lsort [$tree selection]] eq [lsort [list $group $a $b]] && [count objects] == 2
    }
    check "the Object tab names the group" {[$tab.name get] eq [info_of $group name]}
    # A plain click among marked rows chooses one; only with Control one is taken out.
    press_row $tree $b
    check "a click on one of them chooses it" {
        [$tree selection] eq $b && [vesk get_selected_objects] eq $b
    }
    press_row $tree $group
    with_key ctrl {press_row $tree $a}
    check "Control and a click take one out, and its group" {
        [$tree selection] eq $b && [vesk get_selected_objects] eq $b
    }
    press_row $tree $group
    with_key shift {press_row $tree $c}
    press_row $tree $group
    check "a click on the group among others chooses it" {
        [lsort [$tree selection]] eq [lsort [list $group $a $b]] && [count objects] == 2
    }
    enter $tab.name "legs"
    check "and renames it" {[info_of $group name] eq "legs" && [info_of $a name] ne "legs"}
    shot panels-group
    $tree item $group -open 0
    vesk objects_select $c
    settle
    lassign [$tree bbox $group #0] x y width height
    press $tree [expr {$x + 8}] [expr {$y + $height / 2}]
    check "the arrow opens it and selects nothing" {
        [$tree item $group -open] && [$tree selection] eq $c && [vesk get_selected_objects] eq $c
    }
    press_row $tree $a
    with_key shift {press_row $tree $c}
    check "a range of rows" {[lsort [vesk get_selected_objects]] eq [lsort [list $a $b $c]]}
    key F2
    key ctrl+a
    type "last"
    key Return
    check "F2 renames the row that was clicked last" {
        [info_of $c name] eq "last" && [info_of $a name] ne "last"
    }

    # Menus: what does not fit the selection is grey.
    cube
    check "one object: no merge, no ungroup, but group" {
        [state object object_merge] eq "disabled" && [state object ungroup] eq "disabled"
        && [state object group] eq "normal" && [state surface extrude_normal] eq "disabled"
    }
    vesk set_select_mode surface
    check "surfaces: extrude, no group" {
        [state surface extrude_normal] eq "normal" && [state object group] eq "disabled"
    }
    vesk clear_selection
    check "nothing: nothing" {
        [state surface hole_select] eq "disabled" && [state edit delete] eq "disabled"
    }

    # Options show their result at once.
    cube
    set ::prefs_hole_percent 50
    set options [open_options surface hole_select]
    check "the hole is there while its options are open" {[lindex [vesk get_counts] 3] > 6}
    shot panels-options
    set before $::undo_count
    point_at $options.in.f0
    key ctrl+a
    type 30
    check "and follows the number" {$::undo_count == $before && $::prefs_hole_percent == 30}
    key Escape
    check "Escape takes it back" {[lindex [vesk get_counts] 3] == 6 && [made] == 0}
    open_options surface hole_select
    key Return
    check "Return keeps it" {
        [lindex [vesk get_counts] 3] > 6 && [made] == 1 && ![winfo exists $options]
    }

    # Options with a goal start from what is there, and change what was typed.
    cube
    vesk move_with_undo 0.1234567 0 0
    set ::test::records $::undo_count
    foreach {row what} {move_to centre size_to size} {
        set there [$what]
        open_options transform $row
        key Return
        check "$row without a number changes nothing" {[made] == 0 && [$what] eq $there}
    }
    open_options transform size_to
    key Tab
    type 5
    key Return
    check "and with one, only that" {
        [made] == 1 && [near [size] {1 5 3}]
    }
    cube
    foreach times {1 2} {
        open_options transform move_with_undo
        if {$times == 2} {key Return; continue}
        type 2
        key Return
    }
    check "moving starts from nothing each time" {[near [centre] {2 0 0}]}

    # A selection that no step made: each try works on it, and taking back keeps it.
    cube
    vesk group
    vesk clear_selection
    vesk objects_select $::cube
    set count [lindex [vesk get_counts] 3]
    open_options surface hole_select
    point_at $options.in.f0
    key ctrl+a
    type 40
    check "options work on what was selected by hand" {
        $::prefs_hole_percent == 40 && [lindex [vesk get_counts] 3] > $count
    }
    key Escape
    check "and taking back keeps the selection" {
        [lindex [vesk get_counts] 3] == $count && [vesk get_selected_objects] eq $::cube
    }

    # The numbers of the operations.
    key ctrl+e
    check "the operation settings open" {[winfo ismapped .operations]}
    shot panels-operations
    key ctrl+a
    type 45
    key Return
    check "and set preferences" {$::prefs_hole_percent == 45}
    key Escape
    check "and close" {![winfo exists .operations]}

    # The tip of the start in a small window.
    resize 800x600
    show_tip
    settle
    shot panels-tip
    check "the tip has a line of its own and covers no view" {
        ![winfo exists .tips] && [winfo ismapped .tipstrip]
        && [winfo rooty .tipstrip] + [winfo height .tipstrip] <= [winfo rooty .main]
    }
    check "and the operation settings can be reached" {
        [winfo ismapped .opt.settings] && [winfo rootx .opt.settings] + [winfo width .opt.settings]
            <= [winfo rootx .opt.search] + 8
    }
    destroy .tipstrip
    resize 1280x800

    # Ten thousand objects.
    vesk clear_all
    set text "VESKb\nOBJECT world\nkids 10000\n"
    for {set i 0} {$i < 10000} {incr i} {
        append text "OBJECT poly\nname \"object $i\"\nnumvert 1\n$i 0 0\nkids 0\n"
    }
    vesk load_file [write [work many.vesk] $text]
    vesk clear_selection
    ::vesk::ops::refresh
    update
    set ::vesk::objects::told 0
    ::vesk::objects::refresh
    update idletasks
    check "ten thousand rows" {[llength [$tree children {}]] == 10000}

    # Their rows are made piece by piece: what is selected stays so, what changes meanwhile is shown.
    vesk set_select_mode object
    vesk select_all
    ::vesk::objects::fill
    check "the window lives meanwhile" {[llength [$tree children {}]] < 10000}
    set renamed [lindex [vesk object_tree] end-6]
    vesk object_set_name $renamed "another name"
    ::vesk::ops::refresh
    check "all rows, selected as the objects are" {
        [llength [$tree children {}]] == 10000 && [llength [$tree selection]] == 10000
        && [lindex [vesk get_counts] 0] == 10000
    }
    check "the name that changed while the rows were made" {
        [$tree item $renamed -text] eq " another name"
    }
    vesk group
    wait_until {[llength [$tree children [vesk get_selected_objects]]] == 10000}
    check "a group of them is one row" {
        [$tree selection] eq [vesk get_selected_objects] && [llength [$tree children {}]] == 1
    }
}
