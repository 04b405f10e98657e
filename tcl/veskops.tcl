# veskops.tcl --
#   The first script: reads widgets and libraries; procedures that read the other files.

namespace eval ::vesk {
    variable script_folder [file dirname [file normalize [info script]]]
    variable files_read {}          ;# names below the folder, without suffix
    variable select_mode tree       ;# kept by set_select_mode_ui
    variable draw_mode move         ;# kept by set_draw_mode_ui
    variable view_tool none         ;# kept by set_view_tool_ui
    variable theme_name dark
    variable panel_shown 1
    variable console_shown 0
}

# need --
#   Reads files of a folder, each once.
#   folder  widgets, panels, windows or lib
proc ::vesk::need {folder args} {
    variable script_folder
    variable files_read
    foreach name $args {
        if {"$folder/$name" in $files_read} {continue}
        lappend files_read $folder/$name
        uplevel #0 [list source [file join $script_folder $folder $name.tcl]]
    }
}

# later --
#   Reads a file when one of its procedures is first called, so that seldom used files cost nothing
#   at the start.
#   args  procedures of the file's namespace
proc ::vesk::later {folder file args} {
    namespace eval ::vesk::$file {}
    foreach name $args {
        proc ::vesk::${file}::$name args [list ::vesk::call_later $folder $file $name]
    }
}
proc ::vesk::call_later {folder file name} {
    upvar 1 args args
    need $folder $file
    return [uplevel 2 [list ::vesk::${file}::$name {*}$args]]
}

::vesk::need widgets palettes icons theme tooltips parts fields dialogs
::vesk::need lib ops arith settings files menus_table menus_table_view menus
::vesk::later widgets filebox ask
::vesk::later widgets colourbox ask
::vesk::later widgets fieldmenu popup
::vesk::later widgets prefwidgets make show
::vesk::later lib thumbs request cancel can_draw
::vesk::later windows options ask again can_again ask_file note
