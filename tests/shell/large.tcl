# large.tcl --
#   Pictures of a model that is too large to be drawn at once.

source [file join [file dirname [info script]] support.tcl]

# Whole pictures of four views in software take seconds on a busy machine.
set ::test::limit 60000

# Views are drawn in full a part at a time; then they say so. Asked seldom, for builds that look after
# every command whether the model changed.
proc at_rest {} {
    settle
    wait_until {
        [pause 300] eq "" && ![string match *unfinished* [lmap view {0 1 2 3} {
            vesk view_layers $view
        }]]
    }
}

proc compare_with_whole {when} {
    at_rest
    foreach view {xy zy xz xyz} {
        set shown [on_screen [widget $view]]
        check "$when the parts of view $view make the whole picture" {
            [pixels_that_differ $shown [picture $view]] == 0
        }
    }
}

run {
    set terrain [file join [file dirname [info script]] ../../bench/terrain.tcl]
    exec tclsh8.6 $terrain 450 > [work terrain.vesk]
    vesk load_file [work terrain.vesk]
    update idletasks
    check "a first picture stands at once" {[string match *unfinished* [vesk view_layers 3]]}
    vesk clear_selection
    compare_with_whole "after loading"
    shot large-rest

    # A turn: quick pictures, then the whole one.
    hold [widget xyz] 100 200 140 215
    check "a turn shows quick pictures" {[string match *unfinished* [vesk view_layers 3]]}
    shot large-turning
    release
    compare_with_whole "after a turn"

    # Some vertices move: what is handed over is what moved.
    vesk set_select_mode vertex
    vesk clear_selection
    vesk select_elements set [lindex [top_objects] 0]:100000-100003
    at_rest
    set uploaded [vesk view_uploaded_bytes]
    vesk move 0 0.01 0
    update
    check "a move of a few hands over little" {
        [vesk view_uploaded_bytes] > $uploaded &&
        [vesk view_uploaded_bytes] - $uploaded < [count vertices] * 2000
    }
    compare_with_whole "after a move"

    # A drag reads, hands over and compares what moves alone: the picture is that of the whole model read anew.
    vesk select_elements set [lindex [top_objects] 0]:101690-101710
    set before [centre]
    set middle [list [expr {[winfo width [widget xz]] / 2}] [expr {[winfo height [widget xz]] / 2}]]
    hold [widget xz] {*}$middle {*}[lmap place $middle {expr {$place + 24}}]
    check "a drag of a few moves them" {![near [centre] $before]}
    release
    set dragged [lmap view {xz xyz} {picture $view}]
    vesk undo
    update
    vesk redo
    check "a drag leaves the picture of the model as it is now" {
        [lmap view {xz xyz} shown $dragged {pixels_that_differ $shown [picture $view]}] eq {0 0}
    }

    # Of many selected elements of one object a worker finds what is drawn. A drag of all of them maps the whole object.
    vesk set_select_mode surface
    vesk select_elements set [lindex [top_objects] 0]:0-150000
    compare_with_whole "with many surfaces selected"
    vesk select_all
    set before [centre]
    hold [widget xz] {*}$middle {*}[lmap place $middle {expr {$place + 24}}]
    release
    check "a drag of all surfaces moves them" {![near [centre] $before]}
    compare_with_whole "after a drag of all surfaces"
    vesk undo
    check "an undo of it brings them back" {[near [centre] $before]}
    compare_with_whole "after its undo"

    # One view alone: the hidden ones, whose pictures were due, do not keep their turn from it.
    vesk set_select_mode object
    vesk select_all
    vesk move 0 0.1 0
    update
    check "a move leaves quick pictures" {[string match *unfinished* [vesk view_layers 3]]}
    set ::viewsetting xyz
    check "a view that is alone is drawn in full" {![string match *unfinished* [vesk view_layers 3]]}

    # Many objects: the same scene for all views, and dots while a picture of all of them would take long.
    set cubes [file join [file dirname [info script]] ../../bench/cubes.tcl]
    exec tclsh8.6 $cubes 5200 > [work cubes.vesk]
    vesk clear_all
    vesk load_file [work cubes.vesk]
    set ::viewsetting all
    compare_with_whole "many objects:"
    set ids [top_objects]
    vesk objects_select [lrange $ids 0 1999]
    compare_with_whole "with half of them selected"
    vesk move 0 0.02 0
    compare_with_whole "after a move of half of them"
    vesk set_select_mode vertex
    vesk select_elements set [lmap id [lrange $ids 0 2999] {string cat $id :0-3}]
    compare_with_whole "with some vertices of each"
    vesk set_select_mode surface
    vesk select_elements set [lmap id [lrange $ids 1000 3999] {string cat $id :1-2}]
    compare_with_whole "with some surfaces of each"
    shot large-many

    # Of many selected vertices a picture of motion has some, of each object that is selected a part.
    vesk set_select_mode vertex
    vesk select_all
    update
    check "many selected vertices leave quick pictures" {[string match *unfinished* [vesk view_layers 3]]}
    hold [widget xyz] 100 200 140 215
    check "which have some of them" {[share [on_screen [widget xyz] 0] {0 255 0} 60] > 0.001}
    release
    compare_with_whole "with all vertices of each"

    # Glass: objects from back to front, the surfaces of each as well; of the terrain half the rows.
    vesk set_select_mode edge
    vesk select_all
    compare_with_whole "with all edges of each"
    set stream [open [work cubes.vesk]]
    set text [string map {"trans 0\n" "trans 0.6\n"} [read $stream]]
    close $stream
    set stream [open [work glass.vesk] w]
    puts -nonewline $stream $text
    close $stream
    vesk clear_all
    vesk load_file [work glass.vesk]
    vesk clear_selection
    compare_with_whole "glass:"
    shot large-glass
    exec tclsh8.6 $terrain 450 0.5 > [work terrain.vesk]
    vesk clear_all
    vesk load_file [work terrain.vesk]
    vesk clear_selection
    compare_with_whole "glass and ground:"
    shot large-glass-terrain
}
