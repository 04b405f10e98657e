# tools.tcl --
#   Modelling with the left button: create, select, rubber band, move, undo, keys.

source [file join [file dirname [info script]] support.tcl]

::test::run {
    vesk clear_all
    vesk reset_views
    ::test::pause 300
    set empty [::test::picture xy]
    set grid [::test::share $empty {69 69 69}]

    vesk set_draw_mode box
    ::test::drag xy 1 100 100 80 60
    ::test::check "a drag makes a box" {[llength [vesk get_selected_objects]] == 1}
    ::test::check "it is named cube" {
        [vesk object_get_name [vesk get_selected_objects]] eq "cube"
    }
    ::test::check "the grid stays when a model comes" {
        [::test::share [::test::picture xy] {69 69 69}] > $grid * 0.5
    }
    set size [vesk get_selection_size]
    ::test::check "its size is that of the drag" {
        abs([lindex $size 0] - 0.8) < 0.05 && abs([lindex $size 1] - 0.6) < 0.05
    }
    ::test::shot tools-box

    vesk set_draw_mode move
    vesk clear_selection
    ::test::click xy 1 140 130
    ::test::check "a click selects" {[llength [vesk get_selected_objects]] == 1}
    set before [vesk get_selection_centre]
    ::test::drag xy 1 140 130 50 0
    ::test::check "a drag moves" {
        abs([lindex [vesk get_selection_centre] 0] - [lindex $before 0] - 0.5) < 0.05
    }
    vesk undo
    ::test::check "and is undone" {[vesk get_selection_centre] eq $before}
    vesk redo
    ::test::check "and redone" {[vesk get_selection_centre] ne $before}

    ::test::click xy 1 20 200
    ::test::check "a click beside clears" {[vesk get_selected_objects] eq ""}
    ::test::drag xy 1 60 60 240 140
    ::test::check "a rubber band selects" {[llength [vesk get_selected_objects]] == 1}

    vesk keypress 0 v 0
    ::test::check "V is the vertex mode" {[lindex [vesk get_app_mode] 0] eq "vertex"}
    ::test::check "with the box's vertices" {[vesk selection_get_num_vertices] == 8}
    vesk keypress 0 \x1b 0
    ::test::check "Escape clears" {[vesk selection_get_num_vertices] == 0}
    vesk keypress 3 w 0
    ::test::check "W in the 3D view is wireframe" {$::prefs_view3dmode == 1}
    vesk keypress 3 w 0
}
