# Run by "vesk -batch": the example plug-in loads, imports a grid and sets it on a height.
#   argv: the plug-in, a folder to write to

lassign $argv plugin folder

proc expect {what got wanted} {
    if {$got ne $wanted} {error "$what: \"$got\" instead of \"$wanted\""}
}

vesk plugin_load $plugin
expect "menu entry" [lindex $::vesk::plugin_items end 2] "vesk stand_on 0"

set file [file join $folder hill.heights]
set out [open $file w]
puts $out "3 2\n1 2 1\n2 5 2"
close $out
expect "import" [vesk file_load $file] 1
set hill [vesk object_get_children [vesk get_world]]
expect "surfaces" [dict get [vesk object_info $hill] surfaces] 2
expect "objects moved" [vesk stand_on 10] 1
expect "middle" [lmap x [vesk get_selection_centre] {format %g $x}] {0 12 0}
expect "undo's label" $::vesk::undo_label "stand on"
vesk undo
expect "middle after undo" [lmap x [vesk get_selection_centre] {format %g $x}] {0 3 0}

set out [open $file w]
puts $out "2000000000 2\n1 2"
close $out
expect "a damaged file" [vesk file_load $file] 0
expect "the scene after it" [vesk object_get_children [vesk get_world]] $hill
