# tools.tcl --
#   Modelling with the left button: create, select, rubber band, move, undo, keys.

source [file join [file dirname [info script]] support.tcl]

run {
    vesk clear_all
    vesk reset_views
    settle
    set grid [share [picture xy] {69 69 69}]

    vesk set_draw_mode box
    drag xy 1 100 100 80 60
    check "a drag makes a box" {[llength [vesk get_selected_objects]] == 1}
    check "it is named cube" {[vesk object_get_name [vesk get_selected_objects]] eq "cube"}
    check "the grid stays when a model comes" {[share [picture xy] {69 69 69}] > $grid * 0.5}
    check "its size is that of the drag" {[near [lrange [size] 0 1] {0.8 0.6} 0.05]}
    shot tools-box

    vesk set_draw_mode move
    vesk clear_selection
    click xy 1 140 130
    check "a click selects" {[llength [vesk get_selected_objects]] == 1}
    set before [centre]
    drag xy 1 140 130 50 0
    check "a drag moves" {abs([lindex [centre] 0] - [lindex $before 0] - 0.5) < 0.05}
    vesk undo
    check "and is undone" {[centre] eq $before}
    vesk redo
    check "and redone" {[centre] ne $before}

    click xy 1 20 200
    check "a click beside clears" {[vesk get_selected_objects] eq ""}
    drag xy 1 60 60 240 140
    check "a rubber band selects" {[llength [vesk get_selected_objects]] == 1}

    vesk keypress 0 v 0
    check "V is the vertex mode" {[mode] eq "vertex"}
    check "with the box's vertices" {[count vertices] == 8}
    vesk keypress 0 \x1b 0
    check "Escape clears" {[count vertices] == 0}
    vesk keypress 3 w 0
    check "W in the 3D view is wireframe" {$::prefs_view3dmode == 1}
    vesk keypress 3 w 0
}
