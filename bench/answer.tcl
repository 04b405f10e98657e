# answer.tcl --
#   Evaluated by the program: a beat every 4 milliseconds tells when no event was taken. After each
#   step it waits until the model check is done and there was no pause for a while.

set last 0          ;# microseconds: the last beat
set worst 0         ;# the longest pause since the step
set paused 0        ;# when the last long pause ended
set long 50000      ;# what a person notices
set rest 1500000    ;# without a long pause: the step is over
set most 60000000

proc beat {} {
    set now [clock microseconds]
    set pause [expr {$now - $::last - 4000}]
    set ::worst [expr {max($::worst, $pause)}]
    if {$pause > $::long} {set ::paused $now}
    set ::last $now
    after 4 beat
}

# settled --
#   Whether nothing more follows from a step that ended at `from`.
proc settled {from} {
    set now [clock microseconds]
    return [expr {$now - $from > $::most
        || (!$::vesk::issues::checking && $::vesk::issues::timer eq ""
            && $now - max($from, $::paused) > $::rest)}]
}

proc watch {from} {
    if {[settled $from]} {
        set ::over 1
    } else {
        after 50 [list watch $from]
    }
}

# step --
#   Runs a script; its own time is the one until it returns.
proc step {name script} {
    set from [clock microseconds]
    uplevel #0 $script
    set ::last [clock microseconds]
    set own [expr {($::last - $from) / 1000.0}]
    set ::worst 0
    set ::paused 0
    watch $::last
    vwait ::over
    puts [format "answer %-20s %9.1f ms" $name $own]
    puts [format "answer %-20s %9.1f ms" "$name, after" [expr {$::worst / 1000.0}]]
    flush stdout
}

# orbit --
#   A drag of the left button in the 3D view, a motion every 20 milliseconds or, where pictures take
#   longer, whenever one is taken. It ends without a flick.
proc orbit {} {
    set view $::ToglWinName(xyz)
    event generate $view <ButtonPress-1> -x 60 -y 60
    set ::worst 0
    for {set i 1} {$i <= 20} {incr i} {
        event generate $view <B1-Motion> -x [expr {60 + 4 * $i}] -y [expr {60 + 2 * $i}]
        after 20 {set ::moved 1}
        vwait ::moved
    }
    after 300 {set ::moved 1}
    vwait ::moved
    set during $::worst
    event generate $view <ButtonRelease-1> -x 140 -y 100
    puts [format "answer %-20s %9.1f ms" "orbit drag, within" [expr {$during / 1000.0}]]
}

# measure_many --
#   A scene of many objects: what is done to one of them, and to all.
proc measure_many {id} {
    step "select one" [list vesk objects_select $id]
    step "move one" {vesk move 0.1 0 0}
    step rename [list vesk object_set_name $id renamed]
    step "delete one" {vesk delete}
    step "undo of it" {vesk undo}
    foreach command {duplicate group delete} {
        step "select all" {vesk select_all}
        step $command [list vesk $command]
        step "undo $command" {vesk undo}
    }
}

proc measure {} {
    beat
    step load {vesk load_file $::env(VESK_ANSWER_MODEL)}
    vesk set_select_mode object
    step "select all" {vesk select_all}
    step clear {vesk clear_selection}
    step "vertex mode" {vesk set_select_mode vertex}
    step "all vertices" {vesk select_all}
    step move {vesk move 0.1 0 0}
    step undo {vesk undo}
    vesk set_select_mode object
    step hide {vesk select_all; vesk hide_selected}
    step show {vesk unhide}
    step "orbit drag" orbit
    set ids [lmap {id parent type name surfaces visible locked} [vesk object_tree] {set id}]
    if {[llength $ids] > 1000} {measure_many [lindex $ids [expr {[llength $ids] / 2}]]}
    exit 0
}
after 1000 measure
