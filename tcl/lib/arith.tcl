# arith.tcl --
#   Numbers as people type them: 1/3, 2*(0.5+1), -2, 1e-3, and relative to what a field shows:
#   +=0.1, -=1, *=2, /=4. A parser of its own, because typed text is never evaluated.

namespace eval ::vesk::arith {}

# value --
#   Returns the number that a text means; raises an error that names the mistake.
#   current  the number in the field, for the relative forms; "" when there is none
proc ::vesk::arith::value {text {current ""}} {
    set text [string trim $text]
    if {$text eq ""} {error "a number is missing"}
    if {[regexp {^([-+*/])=(.*)$} $text -> operator rest]} {
        if {$current eq ""} {error "\"$operator=\" needs one number to start from"}
        return [checked [combine $operator $current [whole $rest]]]
    }
    return [checked [whole $text]]
}

# whole --
#   Parses all of a text as one sum.
proc ::vesk::arith::whole {text} {
    set tokens [tokens $text]
    set place 0
    set result [sum]
    if {$place < [llength $tokens]} {
        error "\"[lindex $tokens $place]\" does not belong here"
    }
    return $result
}

proc ::vesk::arith::tokens {text} {
    set tokens {}
    set number {^(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?}
    while {[set text [string trimleft $text]] ne ""} {
        if {[regexp $number $text token] || [regexp {^[-+*/()]} $text token]} {
            lappend tokens $token
            set text [string range $text [string length $token] end]
        } else {
            error "\"[string index $text 0]\" is no part of a number"
        }
    }
    return $tokens
}

# sum, product, factor --
#   The three levels of the grammar; `tokens` and `place` belong to `whole`, which every level
#   hands down.
proc ::vesk::arith::sum {} {
    upvar 1 tokens tokens place place
    set result [product]
    while {[set operator [lindex $tokens $place]] in {+ -}} {
        incr place
        set result [combine $operator $result [product]]
    }
    return $result
}
proc ::vesk::arith::product {} {
    upvar 1 tokens tokens place place
    set result [factor]
    while {[set operator [lindex $tokens $place]] in {* /}} {
        incr place
        set result [combine $operator $result [factor]]
    }
    return $result
}
proc ::vesk::arith::factor {} {
    upvar 1 tokens tokens place place
    set token [lindex $tokens $place]
    incr place
    switch -glob -- $token {
        ""  {error "a number is missing at the end"}
        -   {return [expr {-[factor]}]}
        +   {return [factor]}
        "(" {
            # Deeply nested typing must not exhaust the interpreter's stack.
            if {$place > 100} {error "too many brackets"}
            set result [sum]
            if {[lindex $tokens $place] ne ")"} {error "a \")\" is missing"}
            incr place
            return $result
        }
        {[0-9.]*} {return [expr {double($token)}]}
    }
    error "\"$token\" does not belong here"
}

proc ::vesk::arith::combine {operator a b} {
    switch -- $operator {
        + {return [expr {double($a) + $b}]}
        - {return [expr {double($a) - $b}]}
        * {return [expr {double($a) * $b}]}
    }
    if {$b == 0} {error "division by zero"}
    return [expr {double($a) / $b}]
}

# checked --
#   Refuses a number that single precision cannot hold.
proc ::vesk::arith::checked {number} {
    if {!(abs($number) < 3.4e38)} {error "the number is too large"}
    return $number
}

# shown --
#   A number as the fields show it: three places, or four digits where three places would show none.
proc ::vesk::arith::shown {number} {
    if {![string is double -strict $number] || $number != $number} {return ""}
    set size [expr {abs($number)}]
    if {!($size < 1e6) || ($size > 0 && $size < 0.0005)} {return [format %.4g $number]}
    set text [format %.3f $number]
    if {$text eq "-0.000"} {return 0.000}
    return $text
}

# grouped --
#   A count with a comma between groups of three digits.
proc ::vesk::arith::grouped {count} {
    while {[regsub {^(-?\d+)(\d{3})} $count {\1,\2} count]} {}
    return $count
}

# counted --
#   "1 surface", "24 surfaces".
proc ::vesk::arith::counted {count one {many ""}} {
    if {$count == 1} {return "1 $one"}
    return "[grouped $count] [expr {$many eq "" ? "${one}s" : $many}]"
}
