# selectionsets.tcl --
#   The menu of the selections that are kept under names.

namespace eval ::vesk::selectionsets {}

# fill_menu --
#   Fills Select > Selection sets each time it opens.
proc ::vesk::selectionsets::fill_menu {path} {
    $path delete 0 end
    set names [vesk selection_set_list]
    if {[llength $names] == 0} {
        $path add command -label "  none yet: Keep as a set   " -state disabled
        return
    }
    foreach name $names {
        ::vesk::menus::add_command $path $name [list ::vesk::ops::run selection_set_load $name]
    }
    $path add separator
    destroy $path.remove
    menu $path.remove -tearoff 0
    ::vesk::theme::recolour $path.remove
    foreach name $names {
        ::vesk::menus::add_command $path.remove $name \
            [list ::vesk::ops::run selection_set_delete $name]
    }
    ::vesk::menus::add_entry $path cascade Forget -menu $path.remove
}
