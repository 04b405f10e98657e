# operations.tcl --
#   The numbers of the operations in a small panel below the option bar: preferences, or settings of
#   these scripts where there is no preference.

namespace eval ::vesk::operations {
    variable path ""
    variable shown              ;# row -> text of its field
    # {label kind key help}: kinds int, number and bool edit a preference, setting one of ours.
    variable rows {
        {"Hole, percent" int hole_percent "Size of the hole in a surface."}
        {"Bevel size" number bevel_size "Width of a bevel."}
        {"Spike factor" number spike_factor "Height of a spike, by the surface's size."}
        {"Spline steps" int spline_steps "Points of a curve for each piece of the line."}
        {"Reduce, percent" setting reduce_percent "Vertices to lose."}
        {"Loop smoothing" setting loop_smoothing "From 0, the middles, to 1, fully smooth."}
        {"Snap distance" number snap_together_distance "Vertices this close are joined."}
        {"Revolve, degrees" int revolve_degs "How far a revolved outline goes round."}
        {"Revolve, segments" int revolve_segments "Steps of a revolved outline."}
        {"Reduce keeps the original" bool reduce_keep_original "Leaves the source beside the result."}
        {"Duplicates are shifted" bool shift_duplicated "Moves a duplicate by one grid step."}
    }
}

# toggle, open, close --
#   Opens and closes the panel, from the option bar or the menu.
proc ::vesk::operations::toggle {} {
    if {[winfo exists .operations]} {close} else {open}
}

proc ::vesk::operations::open {} {
    variable rows
    set w .operations
    ::vesk::parts::floating $w "Operation settings"
    set number -1
    foreach row $rows {
        lassign $row label kind key help
        set field $w.in.f[incr number]
        if {$kind eq "bool"} {
            ttk::checkbutton $field -text $label -variable ::prefs_$key -style Panel.TCheckbutton
            grid $field - -sticky w -pady [::vesk::theme::pad 4 0]
        } else {
            ttk::label $w.in.l$number -text $label -style Panel.Dim.TLabel
            ttk::entry $field -width 8 -justify right -font VeskNumber -style Panel.TEntry \
                -textvariable ::vesk::operations::shown($number)
            bind_field $field $number $kind $key
            grid $w.in.l$number $field -sticky we -pady [::vesk::theme::px 2]
            grid configure $w.in.l$number -padx [::vesk::theme::pad 0 16]
        }
        bind $field <Escape> {+::vesk::operations::close; break}
        ::vesk::tooltips::attach $field $label "" $help
    }
    update idletasks
    set x [expr {[winfo x .opt] + [winfo x .opt.settings] + [winfo width .opt.settings]
        - [winfo reqwidth $w]}]
    place $w -x [expr {max([::vesk::theme::px 8], $x)}] \
        -y [expr {[winfo y .under] + [::vesk::theme::px 4]}]
    raise $w
    focus $w.in.f0
}

proc ::vesk::operations::close {} {
    destroy .operations
    ::vesk::view::focus_last
}

proc ::vesk::operations::bind_field {field number kind key} {
    variable shown
    set variable ::vesk::operations::shown($number)
    if {$kind ne "setting"} {
        ::vesk::fields::follow_preference $field $variable $key $kind
        return
    }
    set shown($number) [::vesk::settings::get $key]
    ::vesk::fields::number_keys $field $variable \
        [list ::vesk::operations::set_setting $number $key]
}

proc ::vesk::operations::set_setting {number key value} {
    variable shown
    ::vesk::settings::set_value $key $value
    set shown($number) $value
}
