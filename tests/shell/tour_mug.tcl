# tour_mug.tcl --
#   The second lesson, docs/tour-mug.md, with mouse and keys: a mug by edges, loops and cuts. With
#   VESK_TOUR_PICTURES=FOLDER its pictures are made on the way.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

proc tool {name} {press .main.tools.$name}
proc surfaces {} {return [info_of [lindex [top_objects] 0] surfaces]}
# Fills fields of the open options: {field number text ...}, then keeps the result.
proc fill {options texts} {
    foreach {field text} $texts {
        press $options.in.f$field
        key ctrl+a
        type $text
    }
    key Return
}
# Chooses a text of a list in the options.
proc take {options field text} {
    set list $options.in.f$field
    focus $list
    while {[$list get] ne $text} {
        set before [$list get]
        key Down
        wait_until {[winfo ismapped $list.popdown]}
        key Down Return
        wait_until {![winfo ismapped $list.popdown]}
        if {[$list get] eq $before} {break}
    }
    check "$text can be chosen" {[$list get] eq $text}
}

run {
    vesk reset_views
    # 1. Half an outline.
    press .opt.snap.on 8 8
    tool polyline
    foreach {x y} {0 0  0.5 0  0.5 1.2  0.4 1.2  0.4 0.1  0 0.1} {click_at $x $y}
    key Return
    # 2. Turned round.
    tool revolve
    set options [::vesk::view::area].options
    wait_until {[front $options]}
    take $options 0 Y
    fill $options {1 360 2 16}
    when {[front .__tk__messagebox]} {key Return}
    search optimise Optimise
    check "a closed body" {[surfaces] == 80 && [dict get [vesk check_counts] open_edge] == 0}
    # 3. Rows for the handle.
    tool loopcut
    at xy {*}[spot 0.5 0.6]
    foreach notch {1 2 3} {xdo click 4}
    check "the wheel asks for four loops" {[status] eq "loop cut - 4 loops"}
    page_picture mug-cut 0
    press [widget xy] {*}[spot 0.5 0.6]
    check "four loops" {[surfaces] == 144}
    # 4. The handle: an inset of two surfaces, and a bridge.
    press .opt.modes.surface
    tool inset
    press [widget zy] {*}[spot 0.1 0.84 zy]
    press [widget zy] {*}[spot 0.1 0.36 zy] 1 1 shift
    check "two surfaces" {[count surfaces] == 2}
    begin 0.1 0.36 0.2 0.36 "" zy
    type 0.03
    key Return
    xdo mouseup 1
    check "inset" {[surfaces] == 152 && [count surfaces] == 2}
    set options [open_options edge bridge]
    fill $options {0 8 2 1}
    check "a handle" {[surfaces] == 182 && [dict get [vesk check_counts] open_edge] == 0}
    at xy {*}[spot 1.5 -1]
    page_picture mug-handle
    # 5. The rim.
    press .opt.modes.edge
    tool edgebevel
    press [widget xy] {*}[spot 0.2 1.2] 1 2
    check "the loop of the rim" {[vesk selection_get_num_edges] == 16}
    begin 0.2 1.2 0.25 1.2
    xdo click 4
    type 0.03
    page_picture mug-bevel 0
    key Return
    xdo mouseup 1
    check "a rounded rim" {[surfaces] == 214}
    # 6. Smooth, and saved.
    press .opt.modes.object
    key ctrl+a
    set options [open_options surface catmull_clark]
    take $options 1 "Above 60 degrees"
    key Return
    check "smooth" {[surfaces] > 700}
    search "smooth shading" Smooth
    enter .main.right.tabs.object.name mug
    at xy {*}[spot 1.5 -1]
    key shift+f
    drag xyz 1 40 200 260 30
    key Escape
    page_picture mug-done
    at xy {*}[spot 1.5 -1]
    answer_file [work mug.vesk]
    key ctrl+s
    check "saved" {[file exists [work mug.vesk]] && !$::unsaved_changes}
    check "closed, without faults but the outline's own vertices" {
        [lsearch -inline -not [dict values [dict remove [vesk check_counts] unused_vertex non_planar]] 0] eq ""
    }
}
