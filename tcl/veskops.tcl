# veskops.tcl --
#   The first script: reads the files that the others build on and defines how the interface calls
#   the executable: one place that echoes to the console, tells refusals and keeps things in step.

namespace eval ::vesk {
    variable script_folder [file dirname [file normalize [info script]]]
    variable select_mode tree       ;# kept by set_select_mode_ui
    variable draw_mode move         ;# kept by set_draw_mode_ui
    variable view_tool none         ;# kept by set_view_tool_ui
    variable theme_name dark
    variable panel_shown 1
    variable console_shown 0
}

# later --
#   Has a file read when one of its procedures is first called: what is seldom used costs nothing at
#   the start.
#   file   name without folder and suffix
#   names  full names of the procedures
proc ::vesk::later {file args} {
    foreach name $args {
        namespace eval [namespace qualifiers $name] {}
        proc $name args [list ::vesk::load_later $file $name]
    }
}
proc ::vesk::load_later {file name} {
    variable script_folder
    upvar 1 args args
    uplevel #0 [list source [file join $script_folder $file.tcl]]
    return [uplevel 2 [list $name {*}$args]]
}

foreach vesk_file {palettes icons theme arith settings dialogs filebox files menu_table
        menu_table_view menubar} {
    source [file join $::vesk::script_folder $vesk_file.tcl]
}
unset vesk_file

namespace eval ::vesk::ops {
    variable pending 0          ;# a refresh is waiting for the idle loop
    variable last {}            ;# model_state at the last refresh
    variable listeners {}       ;# aspect -> scripts
}

# run --
#   Calls an executable command, echoes it to the console and tells a refusal in the status line.
#   Returns the command's result.
proc ::vesk::ops::run {args} {
    echo vesk {*}$args
    set result [vesk {*}$args]
    if {$result eq "command not found"
            || [string match "incorrect number of args for *" $result]} {
        ::vesk::console::say $result error
        display_message [lindex [split $result \n] 0]
    }
    request
    return $result
}

# echo --
#   Writes the line that repeats an action to the console.
proc ::vesk::ops::echo {args} {
    ::vesk::console::say [list {*}$args] command
}

# ---- keeping the interface in step ----

# listen --
#   Has `script` (a list of words) run when an aspect changed: model, tree, selection, palette, or
#   any for every refresh.
proc ::vesk::ops::listen {aspect script} {
    variable listeners
    dict lappend listeners $aspect $script
}

# request --
#   Asks for one refresh in the idle loop, however often it is called.
proc ::vesk::ops::request {} {
    variable pending
    if {!$pending} {
        set pending 1
        after idle ::vesk::ops::refresh
    }
}

# refresh --
#   Compares the stamps of the model with those of the last time and tells who listens.
proc ::vesk::ops::refresh {} {
    variable pending
    variable last
    variable listeners
    set pending 0
    set state [vesk model_state]
    if {[llength $state] != 4} {return}
    set changed {any}
    foreach aspect {model tree selection palette} new $state old $last {
        if {$new ne $old} {lappend changed $aspect}
    }
    set last $state
    foreach aspect {palette tree selection model any} {
        if {$aspect ni $changed || ![dict exists $listeners $aspect]} {continue}
        foreach script [dict get $listeners $aspect] {{*}$script}
    }
}

# change_count --
#   The number of what the model holds: the same after undo, redo and a drag that was taken back.
proc ::vesk::ops::change_count {} {
    return [vesk change_count]
}

# failed --
#   An error in a script of the interface: told in the status line, with its stack in the console.
proc ::vesk::ops::failed {message options} {
    set stack [dict get $options -errorinfo]
    puts stderr $stack
    catch {
        ::vesk::console::say $stack error
        display_message "script error: [lindex [split $message \n] 0]"
    }
}
interp bgerror {} ::vesk::ops::failed

# render --
#   Tools > Render: the one preference whose text is a script.
proc ::vesk::ops::render {} {
    echo uplevel #0 $::prefs_render_command
    if {[catch {uplevel #0 $::prefs_render_command} message]} {
        ::vesk::console::say $message error
        display_message "render: [lindex [split $message \n] 0] (preference render_command)"
    }
}

proc sync_ui {} {::vesk::ops::request}

# What was done with the mouse in the views, told by the executable.
proc echo_command {args} {::vesk::ops::echo vesk {*}$args}
proc echo_note {text} {::vesk::console::say "# $text" note}
