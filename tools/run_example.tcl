# Runs one example of the scripting reference in the scene that all of them start from, and writes the
# result of its last command. In a folder of its own: examples write files.
#   vesk -noplugins -batch tools/run_example.tcl example.tcl
# Object 2 is a box, 3 a cylinder, 4 an icosahedron, all selected in object mode; texture 0 is wood.png.

set channel [open [lindex $argv 0]]
fconfigure $channel -encoding utf-8
set example [read $channel]
close $channel

vesk set_select_mode object
vesk create box 0 0 0 0 2 1 1
vesk create cylinder 2 3 0 0 4 1 2
vesk create ico 0 6 0 0 7 1 1
vesk plugin_load [file join [file dirname [info nameofexecutable]] plugins images.p]
vesk add_new_texture wood.png
vesk select_all
vesk file_save model.vesk
vesk file_save lamp.vesk
puts [eval $example]
