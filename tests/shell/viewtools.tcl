# viewtools.tcl --
#   The ruler and the tool that inserts vertices, from the tool column, with a real mouse and keys.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

# plate --
#   Share of a view's pixels that have the colour of the plates behind texts.
proc plate {view} {return [share [picture $view] {30 30 33} 14]}

run {
    fresh
    set count [vesk change_count]

    # ---- the ruler ----
    press .main.tools.measure
    check "the option bar tells what the selection measures" {
        $::vesk::tools::current eq "measure"
        && [$::vesk::optionbar::path.tool.f1 cget -textvariable] eq "::vesk::tools::measured"
        && $::vesk::tools::measured eq "1 object  area 6  volume 1"
    }
    set without {}
    foreach view {xy zy xz xyz} {lappend without [plate $view]}
    from_to -0.52 -0.51 0.49 0.52
    check "a drag from corner to corner is told" {[status] eq "distance 1.41421  dX 1  dY 1  dZ 0"}
    foreach view {xy zy xz xyz} before $without {
        check "the ruler's text stands on a plate in $view" {[plate $view] > $before + 0.004}
    }
    shot viewtools-ruler
    set line [lindex [::vesk::console::last 6] end-1]
    check "and echoed: $line" {[string match "> vesk measure_points*" $line]}
    click_at 0.5 -0.5
    check "a third click gives the angle" {[status] eq "angle 45 degrees  lengths 1.41421 and 1"}
    shot viewtools-angle
    key Escape
    check "Escape clears the ruler only" {
        [plate xy] <= [lindex $without 0] + 0.001 && [count objects] == 1
    }
    set w [widget xyz]
    drag xyz 1 [expr {[winfo width $w] / 2}] [expr {[winfo height $w] / 2}] 12 4
    check "it measures in the 3D view" {[string match "distance*" [status]]}
    check "and changes nothing" {[made] == 0 && [vesk change_count] == $count}
    key m
    check "M puts it away" {$::vesk::tools::current eq "move" && $::vesk::view_tool eq "none"}

    # ---- inserting ----
    press .main.tools.insert
    lassign [spot -0.2 0.5] px py
    at xy $px [expr {$py + 40}]
    set plain [picture xy]
    at xy $px $py
    check "the edge under the pointer is shown" {[difference $plain [picture xy]] > 0}
    shot viewtools-insert
    click_at -0.2 0.5
    check "a click inserts a vertex with one undo record" {
        [info_of [top_objects] vertices] == 9 && [made] == 1
        && [vesk undo_name] eq "insert vertex"
    }
    check "echoed" {[string match "*vesk insert_vertex_at *" [::vesk::console::last 6]]}
    vesk undo
    click_at -0.2 0.5 ctrl
    vesk set_select_mode vertex
    vesk select_elements set "[top_objects]:8"
    check "Control takes the middle" {[near [centre] {0 0.5 0.5}]}
}
