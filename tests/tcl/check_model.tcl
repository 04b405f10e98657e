# Checks model files line by line, independently of the program's reader: every count is followed
# by as many lines, every index is in range, no corner is doubled, and every closed shell of
# one-sided polygons faces outwards (its signed volume is positive). Prints one line a file; exits
# with 1 on a fault.
#   tclsh check_model.tcl file ...

namespace eval check {}

proc check::fault {text} {
    variable file
    variable line
    error "$file:$line: $text"
}

proc check::next {} {
    variable input
    variable line
    incr line
    if {[gets $input text] < 0} {fault "the file ends too early"}
    return $text
}

# expect -- the next line as words; the first must be `word`, followed by `count` more.
proc check::expect {word count} {
    set words [split [next]]
    if {[lindex $words 0] ne $word || [llength $words] != $count + 1} {
        fault "\"$word\" and $count words expected, not \"$words\""
    }
    return [lrange $words 1 end]
}

proc check::numbers {words count} {
    if {[llength $words] != $count} {fault "$count numbers expected"}
    foreach word $words {
        if {![string is double -strict $word]} {fault "\"$word\" is no number"}
    }
    return $words
}

proc check::surface {points} {
    variable materials
    lassign [expect SURF 1] flags
    if {$flags & ~0x3F || ($flags & 15) > 2} {fault "unknown flags $flags"}
    lassign [expect mat 1] material
    if {$material < 0 || $material >= $materials} {fault "no material $material"}
    set corners {}
    lassign [expect refs 1] count
    if {$count < (($flags & 15) ? 2 : 3)} {fault "a surface of $count corners"}
    for {set i 0} {$i < $count} {incr i} {
        lassign [numbers [split [next]] 3] vertex
        if {$vertex < 0 || $vertex >= [llength $points]} {fault "no vertex $vertex"}
        lappend corners [lindex $points $vertex]
    }
    if {($flags & 15) == 0 && [lindex $corners 0] eq [lindex $corners end]} {fault "doubled corner"}
    foreach a [lrange $corners 0 end-1] b [lrange $corners 1 end] {
        if {$a eq $b} {fault "doubled corner"}
    }
    return [list $flags $corners]
}

# block -- one object and its children; `volumes` counts the closed shells.
proc check::block {} {
    variable input
    variable line
    variable objects
    incr objects
    set points {}
    set polygons {}
    set type [lindex [expect OBJECT 1] 0]
    if {$type ni {world group poly light}} {fault "unknown type \"$type\""}
    while {1} {
        set text [next]
        set words [split $text]
        set keyword [lindex $words 0]
        switch -- $keyword {
            name - url {
                if {![regexp {^\w+ "(?:[^"\\]|\\.)*"$} $text]} {fault "text is not quoted"}
            }
            loc {numbers [lrange $words 1 end] 3}
            rot {numbers [lrange $words 1 end] 9}
            data {
                set data [read $input [lindex $words 1]]
                incr line [regexp -all \n $data]
                if {[next] ne ""} {fault "data is longer than told"}
            }
            numvert {
                for {set i [lindex $words 1]} {$i > 0} {incr i -1} {
                    lappend points [numbers [split [next]] 3]
                }
            }
            numsurf {
                for {set i [lindex $words 1]} {$i > 0} {incr i -1} {
                    lassign [surface $points] flags corners
                    if {($flags & 0x2F) == 0} {lappend polygons $corners}
                }
            }
            kids {
                shells $polygons
                for {set i [lindex $words 1]} {$i > 0} {incr i -1} {block}
                return
            }
            default {fault "unknown line \"$text\""}
        }
    }
}

# shells -- divides polygons that touch into shells; the closed ones must face outwards.
proc check::shells {polygons} {
    variable shells
    array set top {}
    foreach corners $polygons {
        set first [root top [lindex $corners 0]]
        foreach corner $corners {
            set top([root top $corner]) $first
            set first [root top $first]
        }
    }
    foreach corners $polygons {
        set shell [root top [lindex $corners 0]]
        lappend members($shell) $corners
        foreach from $corners to [concat [lrange $corners 1 end] [list [lindex $corners 0]]] {
            incr open($shell) 0
            # an edge and its opposite cancel
            if {[info exists edge($to,$from)]} {
                incr open($shell) -1
                unset edge($to,$from)
            } else {
                incr open($shell)
                set edge($from,$to) 1
            }
        }
    }
    foreach shell [array names members] {
        if {$open($shell) != 0} continue
        set volume 0.0
        foreach corners $members($shell) {
            for {set i 2} {$i < [llength $corners]} {incr i} {
                lassign [lindex $corners 0] ax ay az
                lassign [lindex $corners $i-1] bx by bz
                lassign [lindex $corners $i] cx cy cz
                set volume [expr {$volume + $ax * ($by * $cz - $bz * $cy)
                    + $ay * ($bz * $cx - $bx * $cz) + $az * ($bx * $cy - $by * $cx)}]
            }
        }
        if {$volume <= 0} {fault "a closed shell of the object above faces inwards"}
        incr shells
    }
}

proc check::root {name point} {
    upvar 1 $name top
    if {![info exists top($point)]} {
        set top($point) $point
    }
    while {$top($point) ne $point} {
        set top($point) $top($top($point))
        set point $top($point)
    }
    return $point
}

proc check::model {name} {
    variable file $name
    variable line 0
    variable input [open $name rb]
    variable materials 0
    variable objects 0
    variable shells 0
    if {[next] ne "VESKb"} {fault "no header"}
    set first [tell $input]
    while {[regexp {^MATERIAL "[^"]*" rgb (.*)} [next] -> values]} {
        set words [regexp -all -inline {\S+} $values]
        if {[llength $words] != 19} {fault "a material has 14 numbers"}
        incr materials
        set first [tell $input]
    }
    seek $input $first
    incr line -1
    block
    if {[read $input] ne ""} {fault "text after the last object"}
    close $input
    puts "$name: $materials materials, $objects objects, $shells closed shells"
}

foreach name $argv {
    if {[catch {check::model $name} message]} {
        puts stderr $message
        exit 1
    }
}
