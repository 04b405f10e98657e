# json_check.tcl FILE: fails unless the file is JSON.

proc blanks {} {
    global text at
    regexp -indices -start $at {\A[ \t\r\n]*} $text found
    set at [expr {[lindex $found 1] + 1}]
}

# take -- the next words when they match; else an error.
proc take {pattern} {
    global text at
    blanks
    if {![regexp -indices -start $at "\\A(?:$pattern)" $text found]} {
        error "no $pattern at $at: [string range $text $at $at+20]"
    }
    set at [expr {[lindex $found 1] + 1}]
    blanks
    return [string range $text {*}$found]
}

proc next {} {
    global text at
    blanks
    return [string index $text $at]
}

proc members {end} {
    take {[\[\{]}
    while {[next] ne $end} {
        if {$end eq "\}"} {
            take {"(?:[^"\\\u0000-\u001f]|\\.)*"}
            take :
        }
        value
        if {[next] ne $end} {
            take ,
            if {[next] eq $end} {
                error "a comma too many"
            }
        }
    }
    take {[\]\}]}
}

proc value {} {
    switch -- [next] {
        "\{" {members "\}"}
        "\[" {members "\]"}
        default {
            take {"(?:[^"\\\u0000-\u001f]|\\.)*"|-?[0-9]+(?:\.[0-9]+)?(?:e[-+]?[0-9]+)?|true|false|null}
        }
    }
}

set file [open [lindex $argv 0]]
fconfigure $file -encoding utf-8
set text [read $file]
set at 0
value
if {$at != [string length $text]} {
    error "something behind the value"
}
