# settings.tcl --
#   The scripts' own settings: veskui.txt beside the settings file, one Tcl list {key value} a
#   line, parsed and never sourced, written to a temporary file and renamed.

namespace eval ::vesk::settings {
    variable values {
        theme dark
        interface_scale 100
        maximised 0
        panel_shown 1
        panel_width 316
        panel_tab object
        objects_height 300
        issues_open {}
        console_shown 0
        console_height 130
        keep_proportions 0
        reduce_percent 50
        loop_smoothing 1
        autosave_seconds 120
        backup_versions 1
        keys {}
        plugins_off {}
        view_shown all
        view_places {}
        view_windows {}
        saved_tools {}
    }
    variable defaults $values
    # Keys that the file may hold although no default stands above: {pattern ...}
    variable free {recent_colour search_history}
    # Those of pairs; others whose default is empty are lists.
    variable pairs {issues_open keys view_places view_windows saved_tools}
}

# file_name --
#   Where the settings lie: the user's profile folder, else the current one.
proc ::vesk::settings::file_name {} {
    if {[info exists ::env(USERPROFILE)] && $::env(USERPROFILE) ne ""} {
        return [file join $::env(USERPROFILE) veskui.txt]
    }
    return [file join [pwd] veskui.txt]
}

# fits --
#   Whether a value has the shape of its key: what reads a list later need not ask.
proc ::vesk::settings::fits {key value} {
    variable defaults
    variable pairs
    if {![dict exists $defaults $key] || [dict get $defaults $key] ne ""} {return 1}
    if {[catch {llength $value} count]} {return 0}
    return [expr {$key ni $pairs || $count % 2 == 0}]
}

# read --
#   Takes the values of the file; a missing file, unknown keys and damaged lines are ignored.
proc ::vesk::settings::read {{name ""}} {
    variable values
    variable free
    if {$name eq ""} {set name [file_name]}
    if {[catch {open $name} channel]} {return}
    fconfigure $channel -encoding utf-8
    while {[gets $channel line] >= 0} {
        if {[catch {llength $line} count] || $count != 2} {continue}
        lassign $line key value
        if {![dict exists $values $key] && $key ni $free} {continue}
        if {[fits $key $value]} {dict set values $key $value}
    }
    close $channel
}

# save --
#   Writes all settings; returns "" or an error message.
proc ::vesk::settings::save {{name ""}} {
    variable values
    if {$name eq ""} {set name [file_name]}
    remove_left $name
    set temporary $name.[pid].tmp
    set failed [catch {
        set channel [open $temporary w]
        fconfigure $channel -encoding utf-8
        dict for {key value} $values {
            puts $channel [list $key [string map {\n " " \r " "} $value]]
        }
        close $channel
        file rename -force $temporary $name
    } message]
    if {!$failed} {return ""}
    catch {close $channel}
    file delete $temporary
    return $message
}

# remove_left --
#   Removes the temporary files of processes that were killed while they saved.
proc ::vesk::settings::remove_left {name} {
    set folder [file dirname $name]
    foreach file [glob -nocomplain -directory $folder -tails *.tmp] {
        if {[regexp {^(.*)\.[0-9]+\.tmp$} $file -> of] && $of eq [file tail $name]} {
            catch {
                if {[file mtime $folder/$file] < [clock seconds] - 60} {file delete $folder/$file}
            }
        }
    }
}

proc ::vesk::settings::get {key} {
    variable values
    return [dict get $values $key]
}

# number --
#   A numeric setting within bounds; a text that is no number counts as `low`.
proc ::vesk::settings::number {key low high} {
    set value [get $key]
    if {![string is integer -strict $value]} {return $low}
    return [expr {min($high, max($low, $value))}]
}

proc ::vesk::settings::set_value {key value} {
    variable values
    dict set values $key $value
}
