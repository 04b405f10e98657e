# history.tcl --
#   The history window: the states that the executable keeps; a click returns to one.

namespace eval ::vesk::history {
    variable filling 0          ;# the list's selection is being set by us
    variable shown {}           ;# the states in the list
}

# can_redo --
#   Whether a state lies after the present one.
proc ::vesk::history::can_redo {} {
    set states [vesk history_list]
    return [expr {[llength $states] > 0 && ![lindex $states end 2]}]
}

proc ::vesk::history::open {} {
    variable shown {}
    set w .history
    if {![winfo exists $w]} {build $w}
    refresh
    wm deiconify $w
    raise $w
    focus $w.list
}

proc ::vesk::history::build {w} {
    ::vesk::dialogs::window $w "History - VESK"
    ttk::treeview $w.list -show tree -selectmode browse -height 14
    $w.list column #0 -width [::vesk::theme::px 240]
    ::vesk::parts::scrollbar $w.bar $w.list Field.
    grid $w.list $w.bar -sticky nswe
    grid columnconfigure $w 0 -weight 1
    grid rowconfigure $w 0 -weight 1
    bind $w.list <<TreeviewSelect>> ::vesk::history::chosen
    bind $w <Control-Key-h> [list destroy $w]
    update idletasks
    ::vesk::dialogs::place_over $w
}

# refresh --
#   Fills the list with the states; those after the present one are dim.
proc ::vesk::history::refresh {} {
    variable filling
    variable shown
    set list .history.list
    if {![winfo exists $list]} {return}
    set states [vesk history_list]
    if {$states eq $shown} {return}
    set shown $states
    set filling 1
    $list delete [$list children {}]
    $list tag configure later -foreground [::vesk::theme::colour dim]
    set tag {}
    foreach state $states {
        lassign $state place label present
        $list insert {} end -id $place -text " $label" -tags $tag
        if {$present} {
            set tag later
            $list selection set $place
            $list focus $place
            $list see $place
        }
    }
    # The virtual event of the selection arrives before this.
    after idle {set ::vesk::history::filling 0}
}

proc ::vesk::history::chosen {} {
    variable filling
    variable shown
    set place [lindex [.history.list selection] 0]
    if {$filling || $place eq "" || [lindex $shown $place 2]} {return}
    ::vesk::ops::run history_goto $place
}

::vesk::ops::listen any ::vesk::history::refresh
