# views.tcl --
#   The four views: what they show, and how the mouse moves about in them.

source [file join [file dirname [info script]] support.tcl]

run {
    shot views-selected
    vesk clear_selection
    settle
    shot views
    foreach view {xy zy xz xyz} {
        set before($view) [picture $view]
        check "view $view has the size of its widget" {
            [dict get $before($view) width] == [winfo width [widget $view]] &&
            [dict get $before($view) height] == [winfo height [widget $view]]
        }
        check "view $view shows background and a model" {
            [share $before($view) {85 85 85}] > 0.1 &&
            [share $before($view) {85 85 85}] < 0.9
        }
    }
    set middle [pixel $before(xy) [expr {[dict get $before(xy) width] / 2}] \
        [expr {[dict get $before(xy) height] / 2}]]
    check "the blue cube is in the middle of the front view" {
        [lindex $middle 2] > [lindex $middle 0] + 20
    }

    # A camera move hands nothing to the graphics device.
    set uploaded [vesk view_uploaded_bytes]
    drag xy 2 100 200 60 20
    check "the middle button pans" {[difference $before(xy) [picture xy]] > 0.02}
    drag xy 2 160 220 -60 -20
    check "and back" {[difference $before(xy) [picture xy]] < 0.01}
    drag zy 3 100 200 0 -60
    check "the right button zooms" {[difference $before(zy) [picture zy]] > 0.05}
    check "the other views stay" {[difference $before(xy) [picture xy]] < 0.01}
    click xz 4 100 200
    check "the wheel zooms" {[difference $before(xz) [picture xz]] > 0.02}
    drag xyz 1 100 250 80 30
    set turned [picture xyz]
    check "the left button turns the model" {[difference $before(xyz) $turned] > 0.02}
    drag xyz 2 100 250 40 0
    check "the middle button moves it" {[difference $turned [picture xyz]] > 0.02}
    check "camera moves upload nothing" {[vesk view_uploaded_bytes] == $uploaded}
    shot views-moved

    # The cross: the end of the y axis lies right above its middle.
    vesk set_view_3d_origin
    vesk set_walk_viewer
    check "walk mode is shown to the scripts" {$::person_walk_vehicle == 1}
    set place [vesk person_get_loc_dir]
    drag xyz 1 100 250 0 -60
    check "a drag walks" {[vesk person_get_loc_dir] ne $place}
    set here [lrange [vesk person_get_loc_dir] 0 2]
    set w [winfo width [widget xyz]]
    click xyz 1 [expr {$w - 40}] 17
    check "a click on the end of the y axis looks down it" {
        [lindex [vesk person_get_loc_dir] 4] < -0.9
    }
    check "and stays where it was" {[lrange [vesk person_get_loc_dir] 0 2] eq $here}
    vesk set_spin_viewer

    # A move hands over positions and normals of what moved, and no indices.
    vesk select_by_name cube
    settle
    set uploaded [vesk view_uploaded_bytes]
    vesk move 0.5 0 0
    settle
    set moved [expr {[vesk view_uploaded_bytes] - $uploaded}]
    check "a move uploads little" {$moved > 0 && $moved <= 24 * 20}
    vesk move -0.5 0 0
    vesk clear_selection

    # A device without programs draws the same.
    vesk reset_views
    vesk fit_all
    settle
    foreach view {xy xyz} {set best($view) [picture $view]}
    foreach limit {fixed oldest} {
        vesk view_limit_device $limit
        settle
        foreach view {xy xyz} {
            check "view $view looks alike with the $limit device" {
                [difference $best($view) [picture $view]] < 0.06
            }
        }
    }
    shot views-fixed
}
