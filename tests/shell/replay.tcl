# replay.tcl --
#   What is done with a real mouse is echoed in the console as lines that do the same: the lines are
#   taken from there, the work is undone, the lines are run, and both models are saved and compared.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

proc saved {} {
    vesk file_save [work replay.vesk]
    return [contents [work replay.vesk]]
}

# commands --
#   The commands in the console since it was emptied.
proc commands {} {
    return [lmap line [::vesk::console::last 200] {
        if {![regexp {^> (.*)$} $line -> command]} continue
        set command
    }]
}

# replays --
#   Whether the lines of `script` bring the same model again.
proc replays {what script} {
    ::vesk::console::empty
    set records $::undo_count
    uplevel #0 $script
    set lines [commands]
    set by_mouse [saved]
    while {$::undo_count > $records} {vesk undo}
    set before [saved]
    foreach line $lines {uplevel #0 $line}
    set again [saved]
    while {$::undo_count > $records} {vesk undo}
    check "$what: [lindex $lines end]" {
        [llength $lines] > 0 && $before ne $by_mouse && $again eq $by_mouse
    }
}

run {
    show_console 1
    fresh
    vesk clear_selection
    replays "select and move" {
        click_at 0.3 0.2
        from_to 0.1 0 0.63 0.31
    }
    replays "key, turn" {
        key r
        from_to 0.4 0.1 0.1 0.4
    }
    vesk set_draw_mode move
    replays "a handle, then a typed distance" {
        from_to 0.58 0 0.91 0
        begin 0.1 0 0.3 0.1
        key 2 Tab 1 Return
        release
    }
    replays "mode by key, band, vertices" {
        key v
        click_at -1.5 1
        from_to -1 0.3 1 0.8
        from_to 0.5 0.5 0.7 0.62
    }
    vesk set_select_mode surface
    vesk clear_selection
    replays "surface, extrude" {
        click_at 0.2 0.2
        key e
        from_to 0.5 0 1.2 0 "" zy
    }
    foreach tool {box sphere rect} {
        replays "create a $tool" {
            ::vesk::tools::choose $::tool
            from_to -0.7 0.43 0.6 -0.31
        }
    }
    replays "a polygon" {
        ::vesk::tools::choose polygon
        foreach {x y} {-0.9 -0.6 0.8 -0.5 0.1 0.7} {click_at $x $y}
        key Return
    }
    replays "a light" {
        ::vesk::tools::choose light
        click_at 0.5 0.7
    }
}
