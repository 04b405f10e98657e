# answer_textures.tcl --
#   The beat of answer.tcl round a session in the window of texture coordinates: opening it, choosing,
#   dragging, zooming, panning, scaling, undoing, closing.

source [file join [file dirname [info script]] answer.tcl]

# motions --
#   A drag of a button in the window, 20 motions from a place: how long it took until the picture of one stood,
#   in the middle and at most.
proc motions {name button from by} {
    set view .uv.view.togl
    lassign $from x y
    event generate $view <ButtonPress-$button> -x $x -y $y
    set took {}
    for {set i 1} {$i <= 20} {incr i} {
        set began [clock microseconds]
        event generate $view <B$button-Motion> -x [incr x [lindex $by 0]] -y [incr y [lindex $by 1]]
        update idletasks
        lappend took [expr {([clock microseconds] - $began) / 1000.0}]
        after 20 {set ::moved 1}
        vwait ::moved
    }
    set took [lsort -real $took]
    puts [format "answer %-20s %9.1f ms, at most %.1f ms" "$name, a motion" [lindex $took 10] \
        [lindex $took end]]
    event generate $view <ButtonRelease-$button> -x $x -y $y
}

proc wheel {} {
    for {set i 0} {$i < 10} {incr i} {
        event generate .uv.view.togl <Button-4> -x 300 -y 200
        update idletasks
    }
}

proc measure {} {
    beat
    vesk load_file $::env(VESK_ANSWER_MODEL)
    vesk set_select_mode object
    vesk select_all
    step project {vesk uv_project planar_y 1}
    step open {::vesk::uvedit::open}
    step "island mode" {vesk uv_select_mode island}
    step "select all" {vesk uv_select all}
    step drag {motions drag 1 {300 300} {4 2}}
    step pan {motions pan 2 {300 300} {4 2}}
    step zoom {motions zoom 3 {300 300} {0 4}}
    step wheel wheel
    step fit {vesk uv_view_fit 0}
    step scale {vesk uv_scale 0.5 0.5}
    step undo {vesk undo}
    step click {motions click 1 {5 5} {0 0}}
    step "corner mode" {vesk uv_select_mode corner}
    step "all corners" {vesk uv_select all}
    step stretch {::vesk::uvedit::set_option stretch}
    step close {destroy .uv}
    exit 0
}
