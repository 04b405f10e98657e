# objects_selection.tcl --
#   The selection of the objects panel, in step with that of the model both ways. Of many selected
#   objects the visible rows are marked at once, the others piece by piece.

# show_selection --
#   Takes the selection of the model over into the tree. A group that was clicked stays marked with
#   what its click selected, as long as that is what is selected.
proc ::vesk::objects::show_selection {} {
    variable tree
    variable chosen
    variable asked
    variable shown_rows
    variable syncing
    variable filtered
    if {[note_selection]} {
        choose_many
        return
    }
    if {[llength $asked] == 0 && !$filtered && ![is_waiting]} {
        set shown_rows $chosen
    } else {
        set shown_rows [lsort -unique -integer [present [concat $chosen $asked]]]
    }
    set marked [$tree selection]
    if {[llength $marked] == [llength $shown_rows]
            && [lsort -integer $marked] eq [lsort -integer $shown_rows]} {
        strip_later
        return
    }
    set syncing 1
    set shown_rows [mark_rows set $shown_rows] ;# of others the rows are on their way
    see_selected
    strip_later
    # The virtual event arrives later; by then the two agree.
    after idle {set ::vesk::objects::syncing 0}
}

# mark_rows --
#   Sets the tree's selection to these rows, or adds them to it, as far as they are there. Returns them.
proc ::vesk::objects::mark_rows {how ids} {
    variable tree
    if {[catch {$tree selection $how $ids}]} {
        # Some came since the rows were made.
        set ids [present $ids]
        $tree selection $how $ids
    }
    return $ids
}

# note_selection --
#   Asks what is selected; rows that are still to be made are selected then, many of them at the end.
#   Returns 1 for so many that they are still to be asked for.
proc ::vesk::objects::note_selection {} {
    variable chosen
    variable chosen_at ""
    variable asked
    variable at_once
    variable to_select {}
    if {[llength $asked] == 0 && [lindex [vesk get_counts] 0] > $at_once} {
        set chosen {}
        return 1
    }
    set now [vesk get_selected_objects]
    if {$now ne $chosen} {set asked {}}
    set chosen $now
    if {[is_waiting] && [llength $chosen] <= $at_once} {
        foreach id [concat $chosen $asked] {dict set to_select $id 1}
    }
    return 0
}

# ---- many ----

# choose_many --
#   Begins to take many selected objects over: the first ones and the visible rows now. While rows are
#   still to be made that is all, for it is done again when they are there.
proc ::vesk::objects::choose_many {} {
    variable chosen [vesk selected_objects_part 0 $::vesk::objects::piece]
    variable chosen_at ""
    variable shown_rows
    variable fill_state
    variable syncing 1
    set shown_rows [mark_rows set $chosen]
    if {[llength $fill_state] == 0} {
        set chosen_at [selection_stamp]
        # Until their turn comes, which marks them once more.
        mark_rows add [visible_chosen]
        after cancel ::vesk::objects::choose_more
        after 1 ::vesk::objects::choose_more
    }
    strip_later
    after idle {set ::vesk::objects::syncing 0}
}

# choose_more --
#   Takes over as many as nobody notices.
proc ::vesk::objects::choose_more {} {
    variable chosen_at
    variable slice
    after cancel ::vesk::objects::choose_more
    if {$chosen_at eq ""} {return}
    if {[::vesk::ops::take_turn]} {choose_until [expr {[clock milliseconds] + $slice}]}
    if {$chosen_at ne ""} {after 1 ::vesk::objects::choose_more}
}

# choose_at_once --
#   Takes over all that are left: the person is about to change the tree's selection.
proc ::vesk::objects::choose_at_once {} {
    variable chosen_at
    variable syncing
    if {$chosen_at eq ""} {return}
    while {$chosen_at ne ""} {choose_until inf}
    set syncing 0 ;# what comes now is the person's
}

# choose_until --
#   Takes over more for a while; after another selection all of them begin anew.
#   end  clock milliseconds
proc ::vesk::objects::choose_until {end} {
    variable chosen
    variable chosen_at
    variable shown_rows
    variable syncing 1
    if {$chosen_at ne [selection_stamp]} {
        show_selection
        return
    }
    while {$chosen_at ne "" && [clock milliseconds] < $end} {
        set ids [vesk selected_objects_part [llength $chosen] 1000]
        if {[llength $ids] == 0} {
            set chosen_at ""
            strip_later
        } else {
            lappend chosen {*}$ids
            lappend shown_rows {*}[mark_rows add $ids]
        }
    }
    after idle {set ::vesk::objects::syncing 0}
}

# selection_stamp --
#   Changes with the selection.
proc ::vesk::objects::selection_stamp {} {return [lindex [vesk model_state] 2]}

# visible_chosen --
#   The rows in sight whose objects are selected.
proc ::vesk::objects::visible_chosen {} {
    set ids [dict keys [visible_rows]]
    return [lmap id $ids on [vesk objects_are_selected $ids] {if {!$on} continue; set id}]
}

# ---- some ----

# see_selected --
#   A single selected row comes into sight, and the keys go on from it.
proc ::vesk::objects::see_selected {} {
    variable tree
    variable shown_rows
    if {[llength $shown_rows] == 1 && [$tree exists [lindex $shown_rows 0]]} {
        $tree see [lindex $shown_rows 0]
        $tree focus [lindex $shown_rows 0]
    }
}

# meant --
#   The selected objects as a person sees them: a marked group stands for what is below it.
proc ::vesk::objects::meant {} {
    variable asked
    variable rows
    set ids [vesk get_selected_objects]
    if {[llength $asked] == 0} {return $ids}
    return [lmap id [lsort -unique -integer [concat $asked $ids]] {
        if {![dict exists $rows $id] || [below_one_of $id $asked]} continue
        set id
    }]
}

# groups_of --
#   The rows among `ids` that are not in `chosen` but have something of it below them.
proc ::vesk::objects::groups_of {ids chosen} {
    variable rows
    set own {}
    set above {}
    foreach id $chosen {
        dict set own $id 1
        while {[dict exists $rows $id]} {
            set id [lindex [dict get $rows $id] 0]
            if {[dict exists $above $id]} break
            dict set above $id 1
        }
    }
    return [lmap id $ids {
        if {[dict exists $own $id] || ![dict exists $above $id]} continue
        set id
    }]
}

# below_one_of --
#   Whether an object lies below one of others.
proc ::vesk::objects::below_one_of {id others} {
    variable rows
    while {[dict exists $rows $id]} {
        set id [lindex [dict get $rows $id] 0]
        if {$id in $others} {return 1}
    }
    return 0
}

# present --
#   The objects among `ids` that have a row.
proc ::vesk::objects::present {ids} {
    variable tree
    return [lmap id $ids {
        if {![$tree exists $id]} continue
        set id
    }]
}

# selected --
#   Takes the selection of the tree over into the model. In tree mode only whole top-level objects
#   can be selected, so a row below them first switches to object mode.
proc ::vesk::objects::selected {} {
    variable tree
    variable chosen
    variable asked
    variable syncing
    variable chosen_at
    variable rows
    strip_later
    if {$syncing || $chosen_at ne "" || [is_clearing]} {return}
    set wanted [$tree selection]
    if {[is_shown $wanted]} {return}
    set wanted [without_taken_out $wanted]
    set world [vesk get_world]
    if {$::vesk::select_mode eq "tree"} {
        foreach id $wanted {
            if {[dict exists $rows $id] && [lindex [dict get $rows $id] 0] != $world} {
                ::vesk::ops::run set_select_mode object
                break
            }
        }
    }
    ::vesk::ops::run objects_select $wanted
    set chosen [vesk get_selected_objects]
    set asked [groups_of $wanted $chosen]
    show_selection
}

# is_shown --
#   Whether these rows are what the tree shows as selected. The user did not deselect those that the
#   filter hides.
proc ::vesk::objects::is_shown {wanted} {
    variable chosen
    variable asked
    variable filtered
    if {[llength $asked] == 0 && !$filtered && ![is_waiting]} {
        if {[llength $wanted] != [llength $chosen]} {return 0}
        if {$wanted eq $chosen} {return 1}
    }
    return [expr {[lsort $wanted] eq [lsort -unique [present [concat $chosen $asked]]]}]
}

# without_taken_out --
#   The rows of a selection but those below a group that was taken out, and the groups above a row
#   that was. One row is taken out at a time; where more went, others were chosen instead.
proc ::vesk::objects::without_taken_out {wanted} {
    variable asked
    variable shown_rows
    if {[llength $asked] == 0} {return $wanted}
    set out [lmap id $shown_rows {if {$id in $wanted} continue; set id}]
    set one [expr {[llength $out] == 1}]
    return [lmap id $wanted {
        if {$one && $out in $asked && [below_one_of $id $out]} continue
        if {$id in $asked && [some_below $id $out] && ($one || [some_below $id $wanted])} continue
        set id
    }]
}

# some_below --
#   Whether one of these rows lies below a group.
proc ::vesk::objects::some_below {group ids} {
    return [expr {1 in [lmap id $ids {below_one_of $id [list $group]}]}]
}
