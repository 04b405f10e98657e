# modelling.tcl --
#   Box modelling by mouse and keys alone: a chair and a room with a window. Every gesture is one step
#   back, what it made is selected for the next one, and the results are sound bodies.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

# present --
#   The present place in the history.
proc present {} {return [lsearch -exact -index 2 [vesk history_list] 1]}

# gesture --
#   One gesture of a person: the surfaces there are afterwards, how many of them are selected, and
#   that it was one step.
proc gesture {what surfaces selected script} {
    set place [present]
    uplevel 1 $script
    check "$what: $surfaces surfaces, $selected selected, one step" {
        [info_of [lindex [top_objects] 0] surfaces] == $surfaces && [count surfaces] == $selected
        && [present] == $place + 1
    }
    incr ::gestures
}

# choose --
#   Clicks an entry of the menu bar.
proc choose {menu words} {
    press .mbar.$menu
    lassign [entry_of $menu $words] path entry
    wait_until {[winfo ismapped $path]}
    press $path 30 [expr {[$path yposition $entry] + 8}]
    wait_until {![winfo ismapped $path]}
}

# choose_with --
#   An operation of a menu with texts for its options: number of the field, text.
proc choose_with {menu words args} {
    choose $menu $words
    set options [::vesk::view::area].options
    wait_until {[front $options]}
    foreach {field text} $args {
        focus_field $options.in.f$field
        type $text
    }
    key Return
    wait_until {![winfo exists $options]}
}
proc focus_field {field} {
    while {[focus] ne $field} {key Tab}
    if {[winfo class $field] eq "TEntry"} {key ctrl+a}
}

# look --
#   Looks along an axis in the 3D view, by its cross.
proc look {from} {
    at xyz 60 200
    key space
    press [widget xyz] [expr {[winfo width [widget xyz]] - 40}] [dict get {above 16 below 64} $from]
}

# seat_size --
#   Pixels from the middle of the 3D view to the edge of the seat.
proc seat_size {} {
    set picture [picture xyz]
    set middle [expr {[dict get $picture width] / 2}]
    set y [expr {[dict get $picture height] / 2 - 7}]
    for {set x $middle} {[pixel $picture $x $y] ne {85 85 85}} {incr x} {}
    return [expr {$x - $middle}]
}

# click_seat --
#   Clicks into the 3D view, in halves of the seat from its middle.
proc click_seat {x y {modifier ""}} {
    set w [widget xyz]
    press $w [expr {[winfo width $w] / 2 + round($x * $::half)}] \
        [expr {[winfo height $w] / 2 + round($y * $::half)}] 1 1 $modifier
}

# sound --
#   No kind of fault; open edges are one.
proc sound {} {
    foreach line [split [vesk check_counts] \n] {
        if {[lindex $line 1] != 0} {return 0}
    }
    return 1
}

# taken_back --
#   As many steps back as there were gestures: nothing is left.
proc taken_back {} {
    shot modelling-$::model
    at xy 60 250
    key {*}[lrepeat $::gestures ctrl+z]
    check "as many times Control+Z give the empty scene" {
        [vesk object_tree] eq "" && [vesk undo_name] eq ""
    }
}

proc chair {} {
    set ::model chair
    set ::gestures 0
    press .main.tools.box
    gesture "a box" 6 0 {from_to -0.5 0.5 0.5 -0.5 "" xz}
    set cube [top_objects]
    gesture "made flat" 6 0 {enter .main.right.tabs.object.sizey.value 0.1}
    press .main.tools.loopcut
    foreach {x0 y0 x1 y1 surfaces} {0 0.5 0.35 0.5 10  -0.2 0.5 -0.35 0.5 14  0.5 0 0.5 0.35 22
            0.5 -0.2 0.5 -0.35 30} {
        gesture "a loop" $surfaces 0 {from_to $x0 $y0 $x1 $y1 "" xz}
    }
    at xyz 60 200
    key s m g Escape
    look below
    set ::half [seat_size]
    foreach {x y} {-0.9 -0.9 0.9 -0.9 -0.9 0.9 0.9 0.9} {click_seat $x $y shift}
    key e
    gesture "legs of a typed length" 46 4 {
        begin 0.2 0 0.4 -0.5
        key period 8 Return
        release
    }
    check "they go straight down" {[near [info_of $cube size] {1 0.9 1} 1e-5]}
    look above
    click_seat -0.9 -0.9
    foreach x {0 0.9} {click_seat $x -0.9 shift}
    gesture "the back" 54 3 {choose_with surface extrude_normal 1 1}
    # Both sides of the back, one behind the other, and an opening through it.
    press .opt.pick.through
    click_at 0 0.5
    click_at 0 0.5 shift
    press .opt.pick.through
    gesture "holes into both sides" 60 8 {choose_with surface hole_select 0 60}
    choose select select_boundary
    gesture "joined" 64 0 {choose_with edge bridge}
    press .opt.modes.surface
    click_seat 0 0
    gesture "a cushion" 68 1 {choose_with surface bevel_select 0 0.03}
    key e
    gesture "pressed in, in the side view" 72 1 {from_to 0.1 0.08 0.2 0.04 "" zy}
    check "the chair is a sound body" {[sound]}
    taken_back
}

proc room {} {
    set ::model room
    set ::gestures 0
    press .main.tools.box
    gesture "a box of typed sizes" 6 0 {
        begin -1 1 0.5 -0.5 "" xz
        key 3 Tab 1 Tab 2 Return
        release
    }
    at xy 60 250
    key m s ctrl+a
    gesture "walls" 12 6 {choose_with surface shell 0 0.1}
    # The front wall's two sides.
    press .opt.pick.through
    click_at 0.8 0
    click_at 0.8 0 shift
    press .opt.pick.through
    gesture "panes" 20 2 {choose_with surface inset 0 0.25}
    gesture "a window through the wall" 22 4 {choose_with edge bridge}
    check "the window has its size" {[near [size] {2.5 0.5 0.1} 1e-5]}
    check "the room is a sound body" {[sound]}
    taken_back
}

run {
    fresh {}
    chair
    fresh {}
    room
}
