# Writes the part of docs/scripting.md that lists the commands, from what the program tells about
# itself; the text above the marker stays as it is.
#   vesk -noplugins -batch tools/make_scripting_reference.tcl docs/scripting.md

set marker "<!-- written by tools/make_scripting_reference.tcl: do not edit below -->"

# cell -- a text as a cell of a table.
proc cell {text} {
    return [string map {| \\| < &lt; > &gt; \n " "} $text]
}

# row -- the table row of one command.
proc row {name} {
    lassign [vesk command_info $name] nargs template usage help
    set words [string trim "`$name` [cell $usage]"]
    return "| $words | [cell $help] |"
}

set names {}
foreach line [split [string trim [vesk list]] \n] {
    lappend names [lindex [split $line] 0]
}

set file [lindex $argv 0]
set channel [open $file]
fconfigure $channel -encoding utf-8
set text [read $channel]
close $channel
set kept [string first $marker $text]
if {$kept < 0} {error "$file: no marker"}
set out [string range $text 0 [expr {$kept - 1}]]$marker\n\n
append out "## All commands\n\n"
append out "[llength $names] commands, in the order of `vesk list`. An argument is a number or one "
append out "word; a wrong number\nof arguments is told and nothing is done.\n\n"
append out "| command and arguments | what it does |\n|---|---|\n"
foreach name $names {append out [row $name]\n}
set channel [open $file w]
fconfigure $channel -encoding utf-8
puts -nonewline $channel $out
close $channel
