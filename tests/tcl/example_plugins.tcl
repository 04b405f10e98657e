# Run by "vesk -batch": the example plug-ins load and do what they say.
#   argv: the folder of the plug-ins, a folder to write to

lassign $argv plugins folder

proc expect {what got wanted} {
    if {$got ne $wanted} {error "$what: \"$got\" instead of \"$wanted\""}
}

foreach name {command importer filter menu} {
    vesk plugin_load [file join $plugins plugin-$name.p]
}
expect "loaded" [lmap path [vesk get_plugin_list] {file tail $path}] \
    {plugin-command.p plugin-importer.p plugin-filter.p plugin-menu.p}
expect "menu entries" [lmap item [lrange $::vesk::plugin_items end-1 end] {lrange $item 0 2}] \
    [list {surface {Shade by slope} {vesk execute_surface_filter surface_filter_1}} \
        {tools {Count triangles} {vesk count_triangles}}]
expect "information" [vesk get_plugin_info [lindex [vesk get_plugin_list] 1]] "heights 1.0"

set file [file join $folder hill.heights]
set out [open $file w]
puts $out "3 2\n1 2 1\n2 5 2"
close $out
expect "import" [vesk file_load $file] 1
set hill [vesk object_get_children [vesk get_world]]
expect "surfaces" [dict get [vesk object_info $hill] surfaces] 2
expect "triangles" [vesk count_triangles] 4
expect "objects moved" [vesk stand_on 10] 1
expect "middle" [lmap x [vesk get_selection_centre] {format %g $x}] {0 12 0}
expect "undo's label" $::vesk::undo_label "stand on"
vesk undo
expect "middle after undo" [lmap x [vesk get_selection_centre] {format %g $x}] {0 3 0}

vesk execute_surface_filter surface_filter_1
expect "filter's undo" $::vesk::undo_label "Shade by slope"
set greys [lsort -unique [lmap entry [lrange [vesk get_palette] 15 end] {
    scan $entry "#%2x%2x%2x" r g b
    expr {$r == $g && $g == $b}
}]]
expect "greys were added" $greys 1

set out [open $file w]
puts $out "2000000000 2\n1 2"
close $out
expect "a damaged file" [vesk file_load $file] 0
expect "the scene after it" [llength [vesk object_get_children [vesk get_world]]] 1
