# pipe.tcl --
#   vesk -pipe ?FILE ...?
#   Reads commands from standard input, a line each, and answers each with one line of JSON on
#   standard output: {"result": text, "words": the result's elements, "message": text, "error": text or
#   null}. The model stays between them; the end of the input ends the program. A line is words parted by blanks, words with
#   blanks in double quotes with the escapes of JSON, or all words as an array of JSON. Nothing in a
#   line is evaluated. FILEs are loaded first.

namespace eval ::vesk::pipe {
    variable messages {}           ;# of the command at hand
    variable boxes {}
    # Parts of a line: a word in quotes, or one without.
    variable quoted {"((?:[^"\\]|\\.)*)"}
}

# ---- JSON ----

proc ::vesk::pipe::json_text {text} {
    variable escapes
    return "\"[string map $escapes $text]\""
}
proc ::vesk::pipe::make_escapes {} {
    variable escapes {\\ \\\\ \" \\\" \n \\n \t \\t \r \\r}
    for {set code 0} {$code < 32} {incr code} {
        if {$code ni {9 10 13}} {
            lappend escapes [format %c $code] [format {\u%04x} $code]
        }
    }
}

# plain --
#   The text that a JSON text between its quotes stands for.
proc ::vesk::pipe::plain {text} {
    set result ""
    while {[regexp -indices {\\(u[0-9a-fA-F]{4}|.)} $text all code]} {
        append result [string range $text 0 [expr {[lindex $all 0] - 1}]]
        set code [string range $text {*}$code]
        append result [switch -- [string index $code 0] {
            u {expr {[string length $code] == 5 ? [format %c 0x[string range $code 1 end]] : "u"}}
            n {format \n}
            t {format \t}
            r {format \r}
            b {format \b}
            f {format \f}
            default {set code}
        }]
        set text [string range $text [expr {[lindex $all 1] + 1}] end]
    }
    return $result$text
}

# words --
#   The words of a line; an error tells what is wrong with it.
proc ::vesk::pipe::words {line} {
    variable quoted
    set rest [string trim $line]
    set array [string match {\[*} $rest]
    set separator {^\s+}
    set bare {[^\s"]+}
    if {$array} {
        if {![regexp {^\[(.*)\]$} $rest -> rest]} {
            error "the array has no end"
        }
        set rest [string trim $rest]
        set separator {^\s*,\s*}
        set bare {[-+.0-9eE]+|true|false|null}
    }
    set words {}
    while {$rest ne ""} {
        if {[regexp "^(?:$quoted)(.*)\$" $rest -> text rest]} {
            lappend words [plain $text]
        } elseif {[regexp "^($bare)(.*)\$" $rest -> text rest]} {
            lappend words $text
        } else {
            error "what is this: [string range $rest 0 20]"
        }
        if {$rest ne "" && (![regsub $separator $rest "" rest] || ($array && $rest eq ""))} {
            error "words are not parted: [string range $rest 0 20]"
        }
    }
    return $words
}

# ---- commands ----

proc ::vesk::pipe::do {line} {
    variable messages {}
    variable boxes {}
    set result ""
    set error ""
    if {[catch {set result [vesk {*}[words $line]]} text]} {
        set error $text
    } elseif {$result eq "command not found" || [string match "incorrect number of args for *" $result]} {
        set error $result
        set result ""
    } elseif {[llength $boxes] > 0} {
        set error [join $boxes \n]
    }
    set elements [expr {[string is list $result] ? $result : [list $result]}]
    set fields [list \
        "\"result\": [json_text $result]" \
        "\"words\": \[[join [lmap element $elements {json_text $element}] ", "]\]" \
        "\"message\": [json_text [join $messages \n]]" \
        "\"error\": [expr {$error eq "" ? "null" : [json_text $error]}]"]
    puts "{[join $fields ", "]}"
}

proc ::vesk::pipe::run {files} {
    make_escapes
    foreach channel {stdin stdout} {
        fconfigure $channel -encoding utf-8 -translation lf
    }
    fconfigure stdout -buffering line
    foreach file $files {
        if {[vesk file_load $file] ne "1"} {
            return 1
        }
    }
    proc ::display_message {text} {lappend ::vesk::pipe::messages $text}
    proc ::message_box {text} {lappend ::vesk::pipe::boxes $text}
    while {[gets stdin line] >= 0} {
        if {[string trim $line] ne ""} {
            do $line
        }
    }
    return 0
}

exit [::vesk::pipe::run $argv]
