#!/usr/bin/env tclsh
# make_keys.tcl --
#   Writes docs/keys.md, the table of all keys, from the tables that the program itself uses.
#   usage: make_keys.tcl docs/keys.md

set scripts [file join [file dirname [file dirname [file normalize [info script]]]] tcl]
foreach file {lib/menus_table lib/menus_table_view lib/menus windows/help} {
    source [file join $scripts $file.tcl]
}

# cell --
proc cell {text} {return [string map {| \\| < &lt; > &gt; ` \\`} $text]}

# table --
#   Rows of a key and what it does.
proc table {pairs} {
    set text "| key | what it does |\n|---|---|\n"
    foreach {keys what} $pairs {
        append text "| [cell [regsub -all {  +} $keys ", "]] | [cell $what] |\n"
    }
    return $text
}

set page "# Keys\n\nAll of them can be changed in *Preferences > Keys*, where presets translate the keys\
    of other\nmodellers. No single key acts while a field has the focus.\n"
foreach {title rows} $::vesk::help::views {append page "\n## $title\n\n[table $rows]"}
set pairs {}
foreach pair [::vesk::menus::all] {
    lassign $pair trail row
    set key [lindex $row 3]
    if {[::vesk::menus::event_of $key] eq ""} {continue}
    lappend pairs $key "$trail > [::vesk::menus::plain [lindex $row 1]]: [lindex $row end]"
}
lappend pairs "Alt+letter, F10" "The menus."
append page "\n## Everywhere in the window\n\n[table $pairs]"
set channel [open [lindex $argv 0] w]
fconfigure $channel -encoding utf-8
puts -nonewline $channel $page
close $channel
