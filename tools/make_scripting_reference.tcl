# Writes the part of docs/scripting.md that describes the commands: usage and help from the program,
# the paragraphs from docs/commands/*.md, an example of each with its result. Text above the marker
# stays as it is. A command without a paragraph, a paragraph without a command and an example that does
# not run are errors.
#   vesk -noplugins -batch tools/make_scripting_reference.tcl docs/scripting.md
# With the word "check" after the file nothing is written: errors only.

set marker "<!-- written by tools/make_scripting_reference.tcl: do not edit below -->"
set topics {
    selecting objects creating transforms copies surfaces edges editing check materials texture-coordinates files
    views program
}

# What stands for an argument in an example, by the words of its description; the first that fits.
set samples {
    *object_ids {{3 4}}  *parent_object_id* 1  *before_object_id* 0  *object*id* 3
    *entrynum* 2  "texture id" 0  "view*" 0  win* 0  "int window" 0
    *geometryfilename* model.vesk  *filename* model.vesk
    *texturename* wood.png  *file* wood.png
    checker* checker  "string name,*" visible  "string value" 1  "string element" 0-1
    "string command" move  "string text" Hello  *title* Open
    *angle* 90  *degs* 45  *degrees* 30  *scale* 2  *steps* 4  *size* 128
    *dist* 0.1  *red* 0.8  *green* 0.7  *blue* 0.6  *shini* 20  *transp* 0.3  *name* lamp
    "float ?2" 1  "float ?1" 0  "float u" 0.25  "float v" 0  "float x" 1  "*on" 1  * 0
}

# Commands whose examples the rules would not make well.
set own_samples {
    create {box 0 0 0 0 1 1 1}  create_light {0 2 0}  objects_place {{3 4} 2 0}
    select_elements {set {2:0-2,5}}  measure_points {{0 0 0 3 4 0}}  set_view_tool measure
    insert_vertex_at {2 0 1 0.5}  resize_with_undo {0 0 0 2 1 1}  rotate_each_with_undo {0 45}
    check_fix_all open_edge  check_select {unused_vertex 3 7}  check_fix {unused_vertex 3 7}
    export_model lamp.wrl  write_3ds lamp.3ds  write_dxf lamp.dxf  write_vesk_old lamp.vesk  write_vrml lamp.wrl  write_vrml2 lamp.wrl
    write_vrml2_tree lamp.wrl
    write_vrml2_proto lamp.wrl  write_inventor lamp.iv  write_POV lamp.pov  write_rib lamp.rib
    write_tri lamp.tri  write_dive lamp.vr  write_dvs lamp.biz  write_massive lamp.txt
    set_images_folder textures  plugins_skip images.p  plugin_load my-plugin.p
    add_new_texture wood.png  load_background_image {wood.png 0}  write_thumbnail {128 out.png}
    load_vesk lamp.vesk  load_file lamp.vesk  autosave copy.vesk
    search_and_set_new_texture {model.vesk wood.png}  uv_select_islands {{0 2}}
    rotate_about {0 45 0 1 0 0}  rotate {0 45 0}  rotate_with_undo {0 45 0}
    rotate_about_with_undo {0 45 0 1 0 0}  viewer_flyto {20 0 1 5 0 0 -1}
    surface_loop_subdivision 1  surface_set_twosided 1  surface_set_shaded 1  size_to {1 2 1}
    set_texture_repeats {2 2}  set_texture_offsets {0.5 0}  uv_scale {2 2}  uv_move_pixels {4 0}
    set_draw_mode box  history_goto 1  do_perspective 1  object_at {0 200 150}
    highlight_at {0 200 150}  scale_about_with_undo {2 2 2 0 0 0}
    uv_option {checker 1}  keypress {0 f 0}  axis_colours {0xF07F76 0x8CCB6B 0x7CB4F5}
    uv_view_zoom 1  remap_textures 1  extrude {0 0 1}  reduce 50  set_select_mode vertex
    select_by_name cube  unselect_by_name cube  object_set_data {3 {any text}}
    object_set_url {3 https://example.org/}  set_current_object_data {{any text}}
    set_current_object_url https://example.org/  set_backup_versions 5  history_limit 256
    uv_select_mode island  uv_select linked  uv_flip u  uv_align left  uv_tool move  uv_key Return
    uv_pack 2  uv_relax 4  uv_outlines 2  uv_project {box 1}  uv_weld 0.1  uv_select_box {0 0 1 1}
    uv_select_corners 0-3  uv_transform {move 1 0 0 1 0.25 0}
    tool_key Return  transform_begin move  window_draw_texture {0 .preview}
    load_file_select Open  execute {{ls -l}}  start_web_browser https://example.org/
    person_set_loc_dir {{0 1 5 0 0 -1}}  get_plugin_info images.p  get_plugin_about images.p
    execute_surface_filter surface_filter_1  snaptogetherdistance 0.1  zoomview {0 1}
    recovery_drop old.autosave  createsurface 0  set_surface_type 0  revolve 1
    material_set_name {2 lamp}  object_set_name {3 lamp}  set_current_object_name lamp
    scale {2 2 2}  move {1 0 0}  move_to {1 0 0}  move_with_undo {1 0 0}  mirror 0
}

# Answers that differ from one run or machine to the next, or are too long to print.
set untold {
    get_info list prefs_rows get_importer_info get_exporters get_texture_loaders get_version_number get_version_string
    get_plugin_info_all get_plugin_list autosave_result recovery_list model_state change_count report_json
    import_report texture_list uv_info uv_option
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

source [file join [file dirname [file normalize [info script]]] text_files.tcl]

# wrapped -- a text in lines of at most 100 characters.
proc wrapped {text} {
    set lines {}
    set line ""
    foreach word [split [string map {\n " "} [string trim $text]] " "] {
        if {[string length $line] + [string length $word] >= 100} {
            lappend lines $line
            set line $word
        } else {
            append line [expr {$line eq "" ? "" : " "}] $word
        }
    }
    return [join [lappend lines $line] \n]
}

# parse_topic -- reads one file of paragraphs into ::groups: a list of {topic names paragraph code}.
#   Returns title and introduction.
proc parse_topic {file topic} {
    set parts [split [string map [list "\n### " \u0001] [read_text $file]] \u0001]
    foreach part [lrange $parts 1 end] {
        regexp {^([^\n]*)\n(.*)$} $part -> names text
        set code ""
        regexp {```tcl\n(.*?)```} $text -> code
        regsub {```tcl\n.*?```\n?} $text "" text
        set names [split [string map {", " ,} $names] ,]
        lappend ::groups [list $topic $names [wrapped $text] [string trim $code]]
        foreach name $names {
            if {[dict exists $::described $name]} {
                lappend ::wrong "docs/commands: $name has two paragraphs"
            }
            dict set ::described $name 1
        }
        if {[string trim $text] eq ""} {lappend ::wrong "$file: [lindex $names 0] has no text"}
    }
    regexp {^# ([^\n]*)\n(.*)$} [lindex $parts 0] -> title introduction
    return [list $title [wrapped $introduction]]
}

# run_example -- the result of an example, run in a fresh program.
proc run_example {name code} {
    set file [file join $::folder example.tcl]
    write_text $file $code
    set here [pwd]
    cd $::folder
    set failed [catch {
        exec -ignorestderr $::program -noplugins -batch $::runner $file 2> errors.txt
    } result]
    cd $here
    set told [read_text [file join $::folder errors.txt]]
    if {$failed || [regexp {Exception occured|not found!} $told] ||
        [string match "incorrect number of args*" $result] || $result eq "command not found"} {
        error "the example of $name does not run: $code\n$result\n$told"
    }
    return [string trim $result]
}

# shown -- an example and its result, as blocks of the reference.
proc shown {names code} {
    set result [run_example [lindex $names 0] $code]
    set out "```tcl\n$code\n```\n"
    set untold [lmap name $names {expr {$name in $::untold ? $name : [continue]}}]
    if {$result ne "" && $untold eq ""} {
        set first [lindex [split $result \n] 0]
        if {[string length $first] > 90} {set first "[string range $first 0 86]..."}
        append out "Result: `$first`\n"
    }
    return $out\n
}

# sample -- an example of one command that the rules make.
proc sample {name} {
    lassign [vesk command_info $name] nargs - usage
    set call [example $name $usage]
    if {[llength $call] < $nargs + 2} {
        error "the example \"$call\" does not have the $nargs arguments of $name"
    }
    return $call
}

# section -- the part of the reference for commands that share a paragraph.
proc section {names paragraph code} {
    append out "### [join $names {, }]\n\n"
    foreach name $names {
        lassign [vesk command_info $name] - - usage help
        append out "- `[string trim "vesk $name [regsub -all {\s+} $usage " "]"]`"
        append out [expr {$help eq "" ? "" : ": [string map {< &lt; > &gt;} $help]"}] \n
    }
    append out \n$paragraph\n\n
    if {$code ne ""} {append out [shown $names $code]}
    foreach name $names {
        if {$code eq "" || ![regexp "vesk $name\\M" $code]} {append out [shown $name [sample $name]]}
    }
    return $out
}

lassign $argv file check
set root [file dirname [file dirname [file normalize [info script]]]]
set runner [file join $root tools run_example.tcl]
set program [info nameofexecutable]
set folder [file join [expr {[info exists env(TMPDIR)] ? $env(TMPDIR) : "/tmp"}] vesk-examples-[pid]]
file mkdir $folder
file copy -force [file join $root tests data blender wood.png] $folder

set groups {}
set described {}
set wrong {}
set headings {}
foreach topic $topics {
    dict set headings $topic [parse_topic [file join $root docs commands $topic.md] $topic]
}
set names {}
foreach line [split [string trim [vesk list]] \n] {lappend names [lindex [split $line] 0]}
foreach name $names {
    if {![dict exists $described $name]} {lappend wrong "$name has no paragraph in docs/commands"}
}
foreach name [dict keys $described] {
    if {$name ni $names} {lappend wrong "docs/commands: there is no command $name"}
}
set body ""
foreach topic $topics {
    lassign [dict get $headings $topic] title introduction
    append body "## $title\n\n"
    if {$introduction ne ""} {append body $introduction\n\n}
    foreach group $groups {
        lassign $group its_topic its_names paragraph code
        if {$its_topic ne $topic} continue
        if {[catch {append body [section $its_names $paragraph $code]} problem]} {
            lappend wrong $problem
        }
    }
}
file delete -force $folder
if {$wrong ne ""} {error [join $wrong \n]}
if {$check eq "check"} {
    set text [read_text $file]
    foreach group $groups {
        lassign $group - its_names paragraph
        if {[string first "### [join $its_names {, }]\n" $text] < 0 ||
            [string first "\n$paragraph\n" $text] < 0} {
            error "$file: [lindex $its_names 0] is not as in docs/commands: make the reference anew"
        }
    }
} else {
    set text [read_text $file]
    set kept [string first $marker $text]
    if {$kept < 0} {error "$file: no marker"}
    set out [string range $text 0 [expr {$kept - 1}]]$marker\n\n
    append out "## All commands\n\n"
    append out [wrapped "[llength $names] commands, by topic. An argument is a number or one word; a wrong\
        number of arguments is told and nothing is done. The examples start from a model of a box (object\
        2), a cylinder (3) and an icosahedron (4), all selected in object mode."] \n\n
    append out [string trimright $body] \n
    write_text $file $out
}
