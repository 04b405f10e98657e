# many.tcl --
#   The objects panel with so many objects that their rows are made and marked piece by piece: what
#   comes while a piece is still to be done, by commands and by the mouse, ends in what the model has.

source [file join [file dirname [info script]] support.tcl]

set tree $::vesk::objects::tree
set number 3000

# stopped --
#   Runs a script and its refresh while no panel gets its turn: what takes pieces stays at the first.
proc stopped {script} {
    settle
    set ::vesk::ops::turn_taken 1
    uplevel #0 $script
    ::vesk::ops::refresh
    while {[llength $::vesk::ops::waiting] > 0} {::vesk::ops::run_waiting}
}
proc go_on {} {set ::vesk::ops::turn_taken 0}

# ids_of --
#   All objects in their order, and what the panel should show of each.
proc ids_of {} {return [lmap {id parent type name surfaces visible locked} [vesk object_tree] {set id}]}
proc rows_below {parent} {
    return [concat {*}[lmap id [$::tree children $parent] {list $id {*}[rows_below $id]}]]
}
proc texts {} {
    return [lmap {id parent type name surfaces visible locked} [vesk object_tree] {set name}]
}
proc shown_texts {} {return [lmap id [rows_below {}] {string trim [$::tree item $id -text]}]}

# shown_flags --
#   What the panel knows of each row beside its text.
proc flags {} {
    return [lmap {id parent type name surfaces visible locked} [vesk object_tree] {
        list $parent $type $visible $locked
    }]
}
proc shown_flags {} {
    return [lmap id [rows_below {}] {
        lassign [dict get $::vesk::objects::rows $id] parent type name surfaces visible locked
        list $parent $type $visible $locked
    }]
}

# bands --
#   The visible rows that have the icon of selected ones beside those that should.
proc bands {} {
    set marked $::vesk::objects::marked
    return [lmap id [dict keys [::vesk::objects::visible_rows]] {dict exists $marked $id}]
}
proc wanted_bands {} {
    return [vesk objects_are_selected [dict keys [::vesk::objects::visible_rows]]]
}

# check_panel --
#   The panel and the status line show what the model has.
proc check_panel {what} {
    go_on
    check "$what: rows in order" {[rows_below {}] eq [ids_of]}
    check "$what: names" {[shown_texts] eq [texts]}
    check "$what: parents and flags" {[shown_flags] eq [flags]}
    check "$what: selected rows" {
        [lsort -integer [$::tree selection]] eq [lsort -integer [vesk get_selected_objects]]
    }
    check "$what: bands of the visible rows" {[bands] eq [wanted_bands]}
    check "$what: numbers" {
        [$::vesk::status::path.counts.obj cget -text] eq [join [lmap n \
            [list [llength [vesk get_selected_objects]] [llength [ids_of]]] {::vesk::arith::grouped $n}] /]
    }
}

run {
    vesk clear_all
    vesk set_select_mode object
    set text "VESKb\nOBJECT world\nkids $number\n"
    for {set i 0} {$i < $number} {incr i} {
        append text "OBJECT poly\nname \"object $i\"\nnumvert 1\n[expr {$i % 50}] [expr {$i / 50}] 0\nkids 0\n"
    }
    vesk load_file [write [work many.vesk] $text]
    check_panel "after the load"
    vesk clear_selection
    check_panel "cleared"
    set ids [ids_of]

    # All are marked piece by piece; the visible ones at once.
    stopped {vesk select_all}
    check "some rows are marked, the visible ones among them" {
        [llength [$tree selection]] < $number && 0 ni [bands]
    }
    check_panel "all selected"
    vesk clear_selection
    stopped {$tree yview moveto 0.5; update; vesk select_all}
    check "wherever the list stands" {[llength [bands]] > 3 && 0 ni [bands]}

    # Other selections meanwhile.
    vesk clear_selection
    check_panel "cleared while marking"
    stopped {vesk select_all}
    stopped {vesk objects_select [lrange $ids 300 end-100]}
    check_panel "others while marking"
    stopped {vesk select_all}
    vesk objects_select [lindex $ids 7]
    go_on
    check_panel "one while marking"

    # The mouse meanwhile: what is not marked yet belongs to the selection all the same.
    $tree yview moveto 0
    settle
    stopped {vesk select_all}
    set row [lindex $ids 5]
    lassign [$tree bbox $row #0] x y width height
    with_key ctrl {xdo mousemove [expr {[winfo rootx $tree] + $x + 60}] \
        [expr {[winfo rooty $tree] + $y + $height / 2}] click 1}
    check "a click with Control takes one out of all" {
        [llength [vesk get_selected_objects]] == $number - 1 && $row ni [vesk get_selected_objects]
    }
    check_panel "all but one"
    stopped {vesk select_all}
    $tree selection set [list $row]
    check "a row chosen while others are still to be marked does not change the model by half" {
        [llength [vesk get_selected_objects]] in [list 1 $number]
    }
    stopped {vesk clear_selection}
    go_on
    press_row $tree $row
    check "a click selects one" {[vesk get_selected_objects] eq $row}
    check_panel "one by the mouse"

    # The marking goes on before the row of what is selected now is made.
    stopped {vesk select_all}
    vesk group
    go_on
    ::vesk::objects::choose_more
    check_panel "a group whose row is not there yet"
    vesk undo
    check_panel "and undone"

    # Changes of the model meanwhile.
    stopped {vesk select_all}
    vesk object_set_name [lindex $ids 2500] "another name"
    vesk object_hide [lindex $ids 2600]
    check_panel "renamed and hidden while marking"
    vesk unhide
    stopped {vesk select_all}
    vesk delete
    check_panel "all deleted while marking"
    stopped {vesk undo}
    vesk object_set_name [lindex [ids_of] 1] "while rows are made"
    check_panel "undone, and one renamed while rows are made"
    stopped {vesk select_all; vesk group}
    vesk undo
    check_panel "a group undone while rows are made"
    vesk select_all
    vesk group
    check_panel "a group of all"
    stopped {vesk ungroup}
    vesk step_back
    check_panel "its end taken back while rows go"
    vesk undo
    check_panel "as before"

    # What comes or goes changes its own rows: the others are not made anew.
    set kept [lindex $ids 100]
    $tree tag add kept $kept
    vesk objects_select [lindex $ids 1500]
    vesk delete
    check_panel "one deleted in the middle"
    vesk step_back
    check_panel "and back in its place"
    vesk objects_select [list [lindex $ids 700] [lindex $ids 702]]
    vesk group
    check_panel "two grouped in the middle"
    vesk objects_place [lindex $ids 690] [vesk get_selected_objects] 0
    check_panel "one put into the group"
    vesk step_back
    vesk step_back
    check_panel "and both taken back"
    check "the rows of the others are those of before" {[$tree tag has kept $kept]}
    vesk objects_place [lindex $ids 20] [lindex $ids 2900] 0
    check_panel "one put far away"
    vesk step_back
    stopped {vesk select_all; vesk duplicate}
    vesk objects_select [lindex $ids 1501]
    vesk delete
    check_panel "one deleted while the rows of copies come"
    vesk step_back
    stopped {vesk step_back}
    vesk objects_select [lindex $ids 1502]
    vesk duplicate
    check_panel "one copied while the rows of copies go"
    vesk step_back
    check_panel "the copies taken back"

    # Of many that the filter leaves the rest stays selected.
    set ::vesk::objects::filter "object 1"
    check "the filter leaves some" {
        [llength [rows_below {}]] == 1110 || [llength [rows_below {}]] == 1111
    }
    vesk select_all
    check "which are marked" {
        [llength [$tree selection]] == [llength [rows_below {}]]
        && $::vesk::objects::chosen_at eq ""
    }
    set ::vesk::objects::filter ""
    check_panel "without the filter"
    check "all are still selected" {[llength [vesk get_selected_objects]] == $number}
    vesk clear_all
    check_panel "nothing left"
}
