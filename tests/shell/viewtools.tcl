# viewtools.tcl --
#   The ruler and the tool that inserts vertices, from the tool column, with a real mouse and keys.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

# plate --
#   Share of a view's pixels that have the colour of the plates behind texts.
proc plate {view} {return [::test::share [::test::picture $view] {30 30 33} 14]}

::test::run {
    foreach {name value} {prefs_gridsnap 0 prefs_snap_near 0 prefs_grid 0.1} {set ::$name $value}
    vesk clear_all
    vesk reset_views
    vesk new_cube
    vesk set_select_mode object
    vesk select_all
    ::test::pause 300
    set records $::undo_count
    set count [vesk change_count]

    # ---- the ruler ----
    ::test::press .main.tools.measure
    ::test::check "the option bar tells what the selection measures" {
        $::vesk::tools::current eq "measure"
        && [$::vesk::optionbar::path.tool.f1 cget -textvariable] eq "::vesk::tools::measured"
        && $::vesk::tools::measured eq "1 object  area 6  volume 1"
    }
    set without {}
    foreach view {xy zy xz xyz} {lappend without [plate $view]}
    from_to -0.52 -0.51 0.49 0.52
    ::test::check "a drag from corner to corner is told" {
        $::vesk::status::message eq "distance 1.41421  dX 1  dY 1  dZ 0"
    }
    foreach view {xy zy xz xyz} before $without {
        ::test::check "the ruler's text stands on a plate in $view" {[plate $view] > $before + 0.004}
    }
    ::test::shot viewtools-ruler
    set line [lindex [::vesk::console::last 6] end-1]
    ::test::check "and echoed: $line" {[string match "> vesk measure_points*" $line]}
    click_at 0.5 -0.5
    ::test::check "a third click gives the angle" {
        $::vesk::status::message eq "angle 45 degrees  lengths 1.41421 and 1"
    }
    ::test::shot viewtools-angle
    key Escape
    ::test::check "Escape clears the ruler only" {
        [plate xy] <= [lindex $without 0] + 0.001 && [vesk selection_get_num_objects] == 1
    }
    set w [::test::widget xyz]
    ::test::drag xyz 1 [expr {[winfo width $w] / 2}] [expr {[winfo height $w] / 2}] 12 4
    ::test::check "it measures in the 3D view" {[string match "distance*" $::vesk::status::message]}
    ::test::check "and changes nothing" {$::undo_count == $records && [vesk change_count] == $count}
    key m
    ::test::check "M puts it away" {$::vesk::tools::current eq "move" && $::vesk::view_tool eq "none"}

    # ---- inserting ----
    ::test::press .main.tools.insert
    lassign [spot -0.2 0.5] px py
    ::test::at xy $px [expr {$py + 40}]
    set plain [::test::picture xy]
    ::test::at xy $px $py
    ::test::at xy [expr {$px + 1}] $py
    ::test::pause 200
    ::test::shot viewtools-insert
    ::test::check "the edge under the pointer is shown" {
        [::test::difference $plain [::test::picture xy]] > 0
    }
    click_at -0.2 0.5
    set info [vesk object_info [vesk object_get_children [vesk get_world]]]
    ::test::check "a click inserts a vertex with one undo record" {
        [dict get $info vertices] == 9 && $::undo_count == $records + 1
        && [vesk undo_name] eq "insert vertex"
    }
    ::test::check "echoed" {[string match "*vesk insert_vertex_at *" [::vesk::console::last 6]]}
    vesk undo
    click_at -0.2 0.5 ctrl
    vesk set_select_mode vertex
    vesk select_elements set "[vesk object_get_children [vesk get_world]]:8"
    ::test::check "Control takes the middle" {[near [vesk get_selection_centre] {0 0.5 0.5}]}
}
