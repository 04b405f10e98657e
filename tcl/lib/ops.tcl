# ops.tcl --
#   Calls of the executable, in one place that echoes them to the console, shows refusals in the
#   status line and keeps the panels in step with the model.

namespace eval ::vesk::ops {
    variable pending 0          ;# a refresh waits for the idle loop
    variable last {}            ;# model_state at the last refresh
    variable listeners {}       ;# aspect -> scripts
    # Operations of the mouse whose options can be opened afterwards.
    variable dragged {slide edge_bevel vertex_bevel inset extrude_each extrude_normals extrude_edges
        shell}
    variable due {}             ;# scripts that the next refresh runs whatever changed
    variable waiting {}         ;# scripts of a refresh that are still to be run
    variable slice 8            ;# milliseconds of them between two events
    variable turn_taken 0       ;# some panel has worked since the last events
}

# run --
#   Calls an executable command, echoes it to the console and shows a refusal in the status line.
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
#   Has `script` (a list of words) run after a change of an aspect: model, tree, selection or
#   palette; any means every refresh.
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

# soon --
#   Has `script` (a list of words) run by the next refresh in any case.
proc ::vesk::ops::soon {script} {
    variable due
    lappend due $script
    request
}

# refresh --
#   Compares the stamps of the model with the last ones and runs the scripts of the changed aspects:
#   each once, also when several of its aspects changed.
proc ::vesk::ops::refresh {} {
    variable pending 0
    variable last
    variable listeners
    variable due
    variable waiting
    set state [vesk model_state]
    if {[llength $state] != 4} {return}
    set changed {any}
    foreach aspect {model tree selection palette} new $state old $last {
        if {$new ne $old} {lappend changed $aspect}
    }
    set last $state
    set scripts $due
    set due {}
    foreach aspect {palette tree selection model any} {
        if {$aspect in $changed && [dict exists $listeners $aspect]} {
            lappend scripts {*}[dict get $listeners $aspect]
        }
    }
    foreach script $scripts {
        if {$script ni $waiting} {lappend waiting $script}
    }
    run_waiting
}

# run_waiting --
#   Runs the scripts of a refresh; where they take long, events come between them.
proc ::vesk::ops::run_waiting {} {
    variable waiting
    variable slice
    after cancel ::vesk::ops::run_in_turn
    take_turn
    set until [expr {[clock milliseconds] + $slice}]
    while {[llength $waiting] > 0 && [clock milliseconds] <= $until} {
        set waiting [lassign $waiting script]
        {*}$script
    }
    if {[llength $waiting] > 0} {after 1 ::vesk::ops::run_in_turn}
}

proc ::vesk::ops::run_in_turn {} {
    variable turn_taken
    if {$turn_taken} {after 1 ::vesk::ops::run_in_turn} else run_waiting
}

# take_turn --
#   What panels do piece by piece takes turns: only one of them works between two events. Returns 1
#   when it is the caller's turn; else it asks again in a millisecond.
proc ::vesk::ops::take_turn {} {
    variable turn_taken
    if {$turn_taken} {return 0}
    set turn_taken 1
    after 0 {set ::vesk::ops::turn_taken 0}
    return 1
}

# change_count --
#   A number for the content of the model; undo and a cancelled drag bring the old one back.
proc ::vesk::ops::change_count {} {
    return [vesk change_count]
}

# failed --
#   Shows an error of the interface's scripts in the status line, and its stack in the console.
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
#   Tools > Render: the one preference whose text is a script. A program that is not there is named
#   before anything is written.
proc ::vesk::ops::render {} {
    set missing [missing_program $::prefs_render_command]
    if {$missing ne ""} {
        if {[::vesk::dialogs::question "The renderer was not found" \
                "The render command runs \"$missing\", which is not on this computer. Install a\
                renderer, or say in the preferences which program draws the scene." \
                {cancel Cancel open "Render command..."} open cancel] eq "open"} {
            ::vesk::preferences::open "Import and export"
            ::vesk::preferences::seek "render command"
        }
        return
    }
    echo uplevel #0 $::prefs_render_command
    if {[catch {uplevel #0 $::prefs_render_command} message]} {
        ::vesk::console::say $message error
        display_message "render: [lindex [split $message \n] 0] (preference render_command)"
    }
}

# missing_program --
#   The program that the script of the render command starts by "vesk execute", when it is nowhere.
proc ::vesk::ops::missing_program {script} {
    if {![regexp {vesk\s+execute\s+(\{[^\}]*\}|"[^"]*"|\S+)} $script -> line]} {return ""}
    set line [string trim $line " {}"]
    if {![regexp {^\s*"([^"]+)"} $line -> program]} {set program [lindex [split $line] 0]}
    # What the shell knows itself is left to it.
    if {$program eq "" || [regexp {[$`=]} $program] || [auto_execok $program] ne ""
            || [file executable $program]} {return ""}
    return $program
}

proc sync_ui {} {::vesk::ops::request}

# What a boolean shows ends by itself; the options may never have been opened.
proc boolean_live_ended {} {
    if {[info procs ::vesk::options::follow_ended] ne ""} {after idle ::vesk::options::follow_ended}
}

# The executable reports actions of the mouse in the views.
proc echo_command {args} {
    ::vesk::ops::echo vesk {*}$args
    # Its step is not in the history yet.
    if {[lindex $args 0] in $::vesk::ops::dragged} {
        after idle [list ::vesk::options::note $args]
    }
}
proc echo_note {text} {::vesk::console::say "# $text" note}
