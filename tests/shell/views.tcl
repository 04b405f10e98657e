# views.tcl --
#   The four views: what they show, and how the mouse moves about in them.

source [file join [file dirname [info script]] support.tcl]

::test::run {
    ::test::shot views-selected
    vesk clear_selection
    ::test::pause 300
    ::test::shot views
    foreach view {xy zy xz xyz} {
        set before($view) [::test::picture $view]
        ::test::check "view $view has the size of its widget" {
            [dict get $before($view) width] == [winfo width [::test::widget $view]] &&
            [dict get $before($view) height] == [winfo height [::test::widget $view]]
        }
        ::test::check "view $view shows background and a model" {
            [::test::share $before($view) {85 85 85}] > 0.1 &&
            [::test::share $before($view) {85 85 85}] < 0.9
        }
    }
    set middle [::test::pixel $before(xy) [expr {[dict get $before(xy) width] / 2}] \
        [expr {[dict get $before(xy) height] / 2}]]
    ::test::check "the blue cube is in the middle of the front view" {
        [lindex $middle 2] > [lindex $middle 0] + 20
    }

    # A camera move hands nothing to the graphics device.
    set uploaded [vesk view_uploaded_bytes]
    ::test::drag xy 2 100 200 60 20
    set panned [::test::picture xy]
    ::test::check "the middle button pans" {[::test::difference $before(xy) $panned] > 0.02}
    ::test::drag xy 2 160 220 -60 -20
    ::test::check "and back" {[::test::difference $before(xy) [::test::picture xy]] < 0.01}
    ::test::drag zy 3 100 200 0 -60
    ::test::check "the right button zooms" {
        [::test::difference $before(zy) [::test::picture zy]] > 0.05
    }
    ::test::check "the other views stay" {
        [::test::difference $before(xy) [::test::picture xy]] < 0.01
    }
    ::test::click xz 4 100 200
    ::test::check "the wheel zooms" {[::test::difference $before(xz) [::test::picture xz]] > 0.02}
    ::test::drag xyz 1 100 250 80 30
    set turned [::test::picture xyz]
    ::test::check "the left button turns the model" {
        [::test::difference $before(xyz) $turned] > 0.02
    }
    ::test::drag xyz 2 100 250 40 0
    ::test::check "the middle button moves it" {
        [::test::difference $turned [::test::picture xyz]] > 0.02
    }
    ::test::check "camera moves upload nothing" {[vesk view_uploaded_bytes] == $uploaded}
    ::test::shot views-moved

    # The cross: the end of the y axis lies right above its middle.
    vesk set_view_3d_origin
    vesk set_walk_viewer
    ::test::check "walk mode is shown to the scripts" {$::person_walk_vehicle == 1}
    set place [vesk person_get_loc_dir]
    ::test::drag xyz 1 100 250 0 -60
    ::test::check "a drag walks" {[vesk person_get_loc_dir] ne $place}
    set here [lrange [vesk person_get_loc_dir] 0 2]
    set w [winfo width [::test::widget xyz]]
    ::test::click xyz 1 [expr {$w - 40}] 17
    ::test::check "a click on the end of the y axis looks down it" {
        [lindex [vesk person_get_loc_dir] 4] < -0.9
    }
    ::test::check "and stays where it was" {[lrange [vesk person_get_loc_dir] 0 2] eq $here}
    vesk set_spin_viewer

    # A move hands over positions and normals of what moved, and no indices.
    vesk select_by_name cube
    ::test::pause 300
    set uploaded [vesk view_uploaded_bytes]
    vesk move 0.5 0 0
    ::test::pause 300
    set moved [expr {[vesk view_uploaded_bytes] - $uploaded}]
    ::test::check "a move uploads little" {$moved > 0 && $moved <= 24 * 20}
    vesk move -0.5 0 0
    vesk clear_selection

    # A device without programs draws the same.
    vesk reset_views
    vesk fit_all
    ::test::pause 300
    foreach view {xy xyz} {set best($view) [::test::picture $view]}
    foreach limit {fixed oldest} {
        vesk view_limit_device $limit
        ::test::pause 300
        foreach view {xy xyz} {
            ::test::check "view $view looks alike with the $limit device" {
                [::test::difference $best($view) [::test::picture $view]] < 0.06
            }
        }
    }
    ::test::shot views-fixed
}
