# Writes the part of docs/scripting.md that lists the commands, from what the program tells about
# itself; the text above the marker stays as it is.
#   vesk -noplugins -batch tools/make_scripting_reference.tcl docs/scripting.md

set marker "<!-- written by tools/make_scripting_reference.tcl: do not edit below -->"

# cell -- a text as a cell of a table.
proc cell {text} {
    return [string map {| \\| < &lt; > &gt; \n " "} $text]
}

# What stands for an argument in an example, by the words of its description; the first that fits.
set samples {
    *object_ids {{3 4}}  *parent_object_id* 0  *before_object_id* 0  *object*id* 3
    *entrynum* 2  "texture id" 0  "view*" 0  win* 3  "int window" 0
    *geometryfilename* desk.obj  *file.png* out.png  *file.ppm* view.ppm  *filename* model.vesk
    *texturename* wood.png  *file* wood.png  *plugin* images.p
    "*kind" box  *planar_x* box  checker* checker  "string corner*" island  "string all*" linked
    "string u or v" u  "string left*" left  "string move*" move  "string name,*" visible
    "string value" 1  "string element" 0-1  "string mode" vertex  *keysym* Return  key f
    *moving* rest  <all* all  "string command" move  *system-command* {{ls -l}}
    "string text" Hello  *title* Open  *url* {https://example.org/}  *data* {{any text}}
    "string filter" {{Flip normals}}  "string numbers" {{0.5 0 0}}  *6* {{0 1 5 0 0 -1}}
    "*name*" lamp  *versions* 5  *megabytes* 256  *most* 100  *frames* 10
    *angle* 90  *degs* 45  *degrees* 30  *scale* 2  *percentage* 50  *steps* 4  *size* 128
    *margin* 2  *dist* 0.1  *red* 0.8  *green* 0.7  *blue* 0.6  *shini* 20  *transp* 0.3  *qual* 1
    "float ?2" 1  "float ?1" 0  "float u" 0.25  "float v" 0  "float x" 1  "*up*" 1  "*on" 1
    "int direction" 1  * 0
}

# Commands whose examples the rules would not make well.
set own_samples {
    check_fix_all open_edge  check_select {open_edge 3 0-1}  check_fix {unused_vertex 3 7}
    export_model lamp.glb  write_3ds lamp.3ds  write_vrml lamp.wrl  write_vrml2 lamp.wrl
    write_vrml2_proto lamp.wrl  write_inventor lamp.iv  write_POV lamp.pov  write_rib lamp.rib
    write_tri lamp.tri  write_dive lamp.vr  write_dvs lamp.biz  write_massive lamp.txt
    set_images_folder textures  plugins_skip images.p  plugin_load my-plugin.p
    add_new_texture wood.png  load_background_image {front.png 0}  clear_background_image 0
    file_select_background_image 0  load_vesk lamp.vesk  load_file lamp.obj
    search_and_set_new_texture {model.vesk wood.png}  uv_select_islands {{0 2}}
    rotate_about {0 45 0 1 0 0}  rotate {0 45 0}  rotate_with_undo {0 45 0}
    rotate_about_with_undo {0 45 0 1 0 0}  viewer_flyto {20 0 1 5 0 0 -1}
    surface_loop_subdivision 1  surface_set_twosided 1  surface_set_shaded 1  size_to {1 2 1}
    set_texture_repeats {2 2}  set_texture_offsets {0.5 0}  uv_scale {2 2}  uv_move_pixels {4 0}
    set_draw_mode box  history_goto 2  revolve 1  do_perspective 1  object_at {0 200 150}
    uv_option {checker 1}  keypress {0 f 0}  axis_colours {0xF07F76 0x8CCB6B 0x7CB4F5}  autosave copy.vesk
    uv_view_zoom 2  remap_textures 1  select_elements {set 3:0-5,9}  create_light {1 2 0}
    measure_points {{0 0 0 1 0 0}}  set_view_tool measure  insert_vertex_at {3 0 1 0.5}
    create_outline {polygon {{0 0 0 1 0 0 0 1 0}}}  resize_with_undo {0 0 0 1 2 1}
}

# example -- a call of one command, made of its usage.
proc example {name usage} {
    if {[dict exists $::own_samples $name]} {return "vesk $name [dict get $::own_samples $name]"}
    set words [list vesk $name]
    foreach {- argument} [regexp -all -inline {<([^>]*)>} $usage] {
        foreach {pattern value} $::samples {
            if {[string match $pattern $argument]} {
                lappend words $value
                break
            }
        }
    }
    return [join $words]
}

# row -- the table row of one command.
proc row {name} {
    lassign [vesk command_info $name] nargs template usage help
    set words [string trim "`$name` [cell $usage]"]
    set call [example $name $usage]
    if {[llength $call] < $nargs + 2} {
        error "the example \"$call\" does not have the $nargs arguments of $name"
    }
    return "| $words | [cell $help] | `$call` |"
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
append out "| command and arguments | what it does | example |\n|---|---|---|\n"
foreach name $names {append out [row $name]\n}
set channel [open $file w]
fconfigure $channel -encoding utf-8
puts -nonewline $channel $out
close $channel
