# reach.tcl --
#   What moves with the selection: symmetry and soft selection, switched on and off here and shown in
#   the option bar and the status line.

namespace eval ::vesk::reach {
    variable axis x             ;# of symmetry when it was last on
    variable soft 0             ;# the option bar has the field of the radius
}

# build --
#   Follows the preferences, whoever changes them.
proc ::vesk::reach::build {} {
    foreach key {soft_selection soft_radius soft_curve soft_along_surface symmetry_axis
        symmetry_at_centre} {
        trace add variable ::prefs_$key write ::vesk::reach::changed_later
    }
}

# toggle_symmetry, toggle_soft --
#   The keys and the badges.
proc ::vesk::reach::toggle_symmetry {} {
    variable axis
    ::vesk::ops::run symmetry [expr {$::prefs_symmetry_axis ? "off" : $axis}]
}
proc ::vesk::reach::toggle_soft {} {
    ::vesk::ops::run soft_selection [expr {!$::prefs_soft_selection}]
}

# set_soft --
#   A row of the menu: an option of soft selection.
proc ::vesk::reach::set_soft {} {
    ::vesk::ops::run soft_selection $::prefs_soft_selection $::prefs_soft_radius \
        [lindex {smooth round linear sharp even} $::prefs_soft_curve] \
        [lindex {space surface} $::prefs_soft_along_surface]
}

# changed_later, changed --
#   One picture for all that changed together.
proc ::vesk::reach::changed_later {args} {
    after cancel ::vesk::reach::changed
    after idle ::vesk::reach::changed
}
proc ::vesk::reach::changed {} {
    variable axis
    set on [expr {$::prefs_symmetry_axis in {1 2 3}}]
    if {$on} {set axis [lindex {"" x y z} $::prefs_symmetry_axis]}
    ::vesk::status::show_badge symmetry $on "Symmetry [string toupper $axis]"
    variable soft
    if {$soft != $::prefs_soft_selection} {
        set soft $::prefs_soft_selection
        if {[::vesk::tools::can_be_soft $::vesk::tools::current]} {
            ::vesk::optionbar::show_again
        }
    }
    vesk redraw_all
}
