# support.tcl --
#   What the scripts of the window tests use: checks, waiting, the mouse, pictures.

namespace eval ::test {
    variable failures 0
    variable errors {}          ;# of the interface's scripts
}

# What the interface does about an error of its own, and noted here.
if {[info commands ::vesk::ops::failed] ne ""} {
    trace add execution ::vesk::ops::failed enter {apply {{words operation} {
        lappend ::test::errors [lindex $words 1]
    }}}
}

# check --
#   Counts a failure and says what was expected when the condition (an expression) does not hold.
proc ::test::check {what condition} {
    variable failures
    if {[uplevel 1 [list expr $condition]]} {
        puts "ok   $what"
    } else {
        incr failures
        puts "FAIL $what: $condition"
    }
}

# pause --
#   Lets events in for a while.
proc ::test::pause {msecs} {
    set ::test::done 0
    after $msecs {set ::test::done 1}
    vwait ::test::done
}

# run --
#   Evaluates the tests once the window stands, then ends the program with their result.
proc ::test::run {body} {
    pause 1000
    if {[catch {uplevel #0 $body}]} {
        puts "FAIL $::errorInfo"
        exit 1
    }
    exit [expr {$::test::failures != 0}]
}

proc ::test::widget {view} {return $::ToglWinName($view)}

# at --
#   Moves the pointer to a place of a view, in its own pixels.
proc ::test::at {view x y} {
    set w [widget $view]
    exec xdotool mousemove [expr {[winfo rootx $w] + $x}] [expr {[winfo rooty $w] + $y}]
    pause 60
}

# drag --
#   Drags with a button from the place x, y by dx, dy, in steps, and rests before the release.
proc ::test::drag {view button x y dx dy} {
    at $view $x $y
    exec xdotool mousedown $button
    pause 60
    for {set i 1} {$i <= 5} {incr i} {at $view [expr {$x + $dx * $i / 5}] [expr {$y + $dy * $i / 5}]}
    pause 120
    exec xdotool mouseup $button
    pause 350
}

proc ::test::click {view button x y} {
    at $view $x $y
    exec xdotool click $button
    pause 350
}

# picture --
#   What a view shows, as a dictionary: width, height, pixels (three bytes each).
proc ::test::picture {view} {
    set file [file join $::env(VESK_TEST_WORK) view.ppm]
    vesk view_save_picture [dict get {xy 0 zy 1 xz 2 xyz 3} $view] $file
    return [read_ppm $file]
}
proc ::test::read_ppm {file} {
    set stream [open $file rb]
    gets $stream
    lassign [gets $stream] width height
    gets $stream
    set pixels [read $stream]
    close $stream
    return [dict create width $width height $height pixels $pixels]
}

# pixel --
#   "r g b" of one pixel.
proc ::test::pixel {picture x y} {
    set place [expr {3 * ($y * [dict get $picture width] + $x)}]
    binary scan [dict get $picture pixels] "@${place}cu3" rgb
    return $rgb
}

# share --
#   Share of the pixels (every third in both directions) of a colour, within a tolerance.
proc ::test::share {picture rgb {tolerance 12}} {
    lassign $rgb r g b
    set found 0
    set all 0
    for {set y 0} {$y < [dict get $picture height]} {incr y 3} {
        for {set x 0} {$x < [dict get $picture width]} {incr x 3} {
            lassign [pixel $picture $x $y] pr pg pb
            incr all
            if {abs($pr - $r) <= $tolerance && abs($pg - $g) <= $tolerance
                && abs($pb - $b) <= $tolerance} {
                incr found
            }
        }
    }
    return [expr {double($found) / $all}]
}

# difference --
#   Share of the looked-at pixels in which two pictures of one size differ clearly.
proc ::test::difference {a b} {
    if {[dict get $a width] != [dict get $b width] || [dict get $a height] != [dict get $b height]} {
        return 1.0
    }
    set differing 0
    set all 0
    for {set y 0} {$y < [dict get $a height]} {incr y 3} {
        for {set x 0} {$x < [dict get $a width]} {incr x 3} {
            incr all
            foreach p [pixel $a $x $y] q [pixel $b $x $y] {
                if {abs($p - $q) > 24} {
                    incr differing
                    break
                }
            }
        }
    }
    return [expr {double($differing) / $all}]
}

# shot --
#   Keeps a picture of the whole screen among the artefacts.
proc ::test::shot {name} {
    exec import -window root [file join $::env(VESK_TEST_ARTEFACTS) $name.png]
}

# key, type --
#   Keys go to the window below the pointer.
proc ::test::key {args} {
    exec xdotool key --delay 30 {*}$args
    pause 250
}
proc ::test::type {text} {
    exec xdotool type --delay 12 $text
    pause 200
}

# point_at, press --
#   Moves the pointer to a place of a widget (its middle when none is given); presses a button
#   there.
proc ::test::point_at {w {x ""} {y ""}} {
    if {$x eq ""} {set x [expr {[winfo width $w] / 2}]}
    if {$y eq ""} {set y [expr {[winfo height $w] / 2}]}
    exec xdotool mousemove [expr {[winfo rootx $w] + $x}] [expr {[winfo rooty $w] + $y}]
    pause 60
}
proc ::test::press {w {x ""} {y ""} {button 1} {count 1}} {
    point_at $w $x $y
    exec xdotool click --repeat $count --delay 60 $button
    pause 300
}

# press_row --
#   Clicks on a row of a list.
proc ::test::press_row {list row {button 1}} {
    $list see $row
    update
    lassign [$list bbox $row #0] x y width height
    press $list [expr {$x + 60}] [expr {$y + $height / 2}] $button
}

# wait_until --
#   Lets events in until a condition holds or so many milliseconds have passed.
proc ::test::wait_until {condition {msecs 5000}} {
    set end [expr {[clock milliseconds] + $msecs}]
    while {![uplevel 1 [list expr $condition]] && [clock milliseconds] < $end} {pause 50}
}
