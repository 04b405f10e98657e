# mock_vesk.tcl --
#   Stands in for the executable while the interface is worked on: a small fake scene, the
#   preferences of base/prefs_rows.inc and real Togl widgets.
#   usage: wish mock_vesk.tcl HOME_FOLDER [WIDTHxHEIGHT] [script to run when idle]
#   HOME_FOLDER holds tcl/ and icons/ as the build stages them.

package require Tk
package require Togl
lassign $::argv ::VESK_HOME mock_size mock_script
set mock_root [file dirname [file dirname [file dirname [file normalize [info script]]]]]

proc mock_preferences {file} {
    set channel [open $file]
    foreach line [split [read $channel] \n] {
        if {[regexp {^PREF\("([^"]+)", \w+, (\w+), (.*)\)$} $line -> key kind value]} {
            if {$kind eq "string"} {set value [subst -nocommands -novariables [string range $value 1 end-1]]}
            if {$kind eq "hex"} {set value [expr {$value}]}
            set ::prefs_$key $value
        }
    }
    close $channel
}
mock_preferences [file join $mock_root base prefs_rows.inc]
set vesk_version_string "VESK v3.6"
foreach {name value} {viewsetting all undo_count 0 objects_are_hidden 0 objects_are_locked 0
        person_walk_vehicle 0 unsaved_changes 0 escape_pressed 0} {set ::$name $value}

# id parent type name surfaces visible locked
set mock_tree {
    2 1 group aeroplane 1014 1 0  3 2 poly fuselage 128 1 0  4 2 poly canopy 52 1 0
    5 2 group wings 84 1 0  6 5 poly wing_left 42 1 0  7 5 poly wing_right 42 1 0
    8 2 group tail 78 1 0  9 8 poly fin 30 1 0  10 2 group engine 176 1 0
    11 10 poly cowling 44 1 0  12 10 poly spinner 38 0 0  13 10 group propeller 54 1 0
    14 13 poly blade 27 1 0  15 2 group gear 548 1 1  16 1 light lamp 0 1 0
}
set mock_selected {}
set mock_changes 0
set mock_stamps {0 0 0}
set mock_palette {#000000 #FFFFFF #A04040 #FF0000 #FF7700 #FFFF00 #00FF00 #448877 #A0C0E0 #0000FF
    #800040 #EE88EE #444444 #888888 #CCCCCC #E0A848}
set mock_missing {extrude create redo revolve create_text convexhull reduce delaunay measure}

proc mock_touch {place} {
    lset ::mock_stamps $place [expr {[lindex $::mock_stamps $place] + 1}]
    if {$place != 1} {incr ::mock_changes}
    sync_ui
}
proc vesk {command args} {
    global mock_tree mock_selected mock_palette
    switch -- $command {
        object_tree {return $mock_tree}
        model_state {return [concat $::mock_changes $::mock_stamps]}
        get_counts {return [list [llength $mock_selected] [expr {[llength $mock_tree] / 7}] 0 1014 0 1082]}
        get_selected_objects {return $mock_selected}
        get_world {return 1}
        get_selection_centre {return "-2.2 -0.131 0.475"}
        get_selection_size {return "3.5 0.468 1.55"}
        get_palette {return $mock_palette}
        get_material {
            set c [lindex $mock_palette [lindex $args 0]]
            scan $c "#%2x%2x%2x" r g b
            return [list [expr {[lindex $args 0] == 15 ? "wing ochre" : ""}] [expr {$r / 255.0}] \
                [expr {$g / 255.0}] [expr {$b / 255.0}] 0.2 0.15 0.1 0 0 0 0.3 0.3 0.3 24 0]
        }
        object_info {
            set place [lsearch -exact $mock_tree [lindex $args 0]]
            return [list type poly surfaces 42 vertices 48 children 0 name \
                [lindex $mock_tree $place+3] url "" data "" centre "0 0 0" size "1 1 1"]
        }
        command_info {
            return [expr {[lindex $args 0] in $::mock_missing ? "" : [list 0 "" "" ""]}]
        }
        objects_select {
            set mock_selected [lindex $args 0]
            mock_touch 1
        }
        object_select {
            lappend mock_selected [lindex $args 0]
            mock_touch 1
        }
        object_deselect {
            set mock_selected [lsearch -all -inline -not -exact $mock_selected [lindex $args 0]]
            mock_touch 1
        }
        clear_selection {
            set mock_selected {}
            mock_touch 1
        }
        object_set_name - object_hide - object_unhide - object_lock - object_unlock {
            foreach {id parent type name surfaces visible locked} $mock_tree {
                if {$id == [lindex $args 0]} {
                    switch -- $command {
                        object_set_name {set name [lindex $args 1]}
                        object_hide {set visible 0}
                        object_unhide {set visible 1}
                        object_lock {set locked 1}
                        object_unlock {set locked 0}
                    }
                }
                lappend told $id $parent $type $name $surfaces $visible $locked
            }
            set mock_tree $told
            mock_touch 0
        }
        set_palette_entry {
            lset mock_palette [lindex $args 0] [format "#%02X%02X%02X" \
                {*}[lmap n [lrange $args 1 3] {expr {int($n * 255)}}]]
            mock_touch 2
        }
        set_select_mode {set_select_mode_ui [lindex $args 0]}
        set_draw_mode {set_draw_mode_ui [lindex $args 0]}
        move - scale - new_cube - clear_all {incr ::mock_changes; sync_ui}
        file_save - file_load {return 1}
        list {return "move <float x> <float y> <float z> translate selection\nundo  undo\n"}
    }
    return ""
}

wm geometry . [expr {$mock_size eq "" ? "1280x800" : $mock_size}]+0+0
foreach script {veskops veskhier veskpalette veskprefs veskview vesk veskuvedit veskplugins vesktips} {
    source [file join $::VESK_HOME tcl $script.tcl]
}
foreach name [array names ::ToglWinName] {
    proc mock_draw {w} {$w makecurrent; $w swapbuffers}
}
set_select_mode_ui object
set_draw_mode_ui move
mock_touch 2
mock_touch 0
set mock_changes 0
update
puts "script: $mock_script"; if {$mock_script ne ""} {after 300 [list uplevel #0 $mock_script]}
