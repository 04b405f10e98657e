# view_windows.tcl --
#   Views outside the main window: detached into windows of their own and back, exchanged with each
#   other, and restored from the last session.

# in_main --
#   Whether a widget belongs to the main window or to a view that was detached from it.
proc ::vesk::view::in_main {w} {
    variable area_path
    variable detached
    set top [winfo toplevel $w]
    return [expr {$top eq "." || ([winfo parent $top] eq $area_path && [winfo name $top] in $detached)}]
}

proc ::vesk::view::title {name} {
    variable area_path
    variable detached
    if {$name in $detached} {
        wm title $area_path.$name "[string trim [set ::prefs_window_label_$name]] - VESK"
    }
}

proc ::vesk::view::detach_or_back {name} {
    variable detached
    if {$name in $detached} {attach $name} else {detach $name}
}
proc ::vesk::view::detach_or_back_focused {} {
    variable focused
    detach_or_back $focused
}

# detach --
#   Gives a view a window of its own; the last view stays.
#   geometry  size and place; "" the present ones
proc ::vesk::view::detach {name {geometry ""}} {
    variable ids
    variable area_path
    variable detached
    if {[llength $detached] == [dict size $ids] - 1} {
        display_message "one view stays in the main window"
        return
    }
    set cell $area_path.$name
    if {$geometry eq ""} {
        set width [expr {max([winfo width $cell], [::vesk::theme::px 320])}]
        set height [expr {max([winfo height $cell], [::vesk::theme::px 240])}]
        set geometry ${width}x$height+[winfo rootx $cell]+[winfo rooty $cell]
    }
    lappend detached $name
    place forget $cell
    # The frame becomes a window and keeps its drawing context.
    wm manage $cell
    # The keys of the main window work in it too.
    bindtags $cell.togl [list $cell.togl Togl . all]
    title $name
    wm minsize $cell [::vesk::theme::px 160] [::vesk::theme::px 120]
    wm protocol $cell WM_DELETE_WINDOW [list ::vesk::view::attach $name]
    wm geometry $cell $geometry
    if {$::viewsetting eq $name} {set ::viewsetting all}
    layout
    update idletasks
    vesk redraw_all
    focus_view $name
}

# attach --
#   Brings a view back to its place.
proc ::vesk::view::attach {name} {
    variable area_path
    variable detached
    set cell $area_path.$name
    set detached [lsearch -all -inline -not -exact $detached $name]
    wm forget $cell
    bindtags $cell.togl {}
    layout
    raise $cell
    update idletasks
    vesk redraw_all
    focus_view $name
}

# exchange --
#   Shows a view of another kind in the place of one; that one goes to the other's place.
proc ::vesk::view::exchange {name other} {
    variable places
    variable detached
    if {$name eq $other} {return}
    foreach one [list $name $other] {
        if {$one in $detached} {attach $one}
    }
    set place [dict get $places $name]
    dict set places $name [dict get $places $other]
    dict set places $other $place
    if {$::viewsetting eq $name} {set ::viewsetting $other}
    ::vesk::settings::set_value view_places $places
    layout
    focus_view $other
}

# ---- remembered ----

# read_places --
#   Takes the places of the last session; an incomplete table is ignored.
proc ::vesk::view::read_places {} {
    variable places
    set kept [::vesk::settings::get view_places]
    if {[catch {dict values $kept} values] || [dict size $kept] != 4} {return}
    foreach name [dict keys $places] {
        if {![dict exists $kept $name]} {return}
    }
    if {[lsort $values] eq [lsort [dict values $places]]} {set places $kept}
}

# restore_windows --
#   Detaches the views that were detached at the end of the last session.
proc ::vesk::view::restore_windows {} {
    variable ids
    set kept [::vesk::settings::get view_windows]
    if {[catch {dict size $kept}]} {return}
    dict for {name geometry} $kept {
        if {[dict exists $ids $name] && [regexp {^\d+x\d+\+-?\d+\+-?\d+$} $geometry]} {
            detach $name $geometry
        }
    }
}

# note_windows --
#   Keeps the detached views for `restore_windows`.
proc ::vesk::view::note_windows {} {
    variable area_path
    variable detached
    set kept {}
    foreach name $detached {dict set kept $name [wm geometry $area_path.$name]}
    ::vesk::settings::set_value view_windows $kept
}
