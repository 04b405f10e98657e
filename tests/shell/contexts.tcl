# contexts.tcl --
#   The menus of the right button and of the menu key, what the status line tells about an entry,
#   keys that are the menus' and not the views', and an objects panel that keeps in step.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

proc labels {} {
    set result {}
    for {set i 0} {$i <= [.popup index end]} {incr i} {
        if {[.popup type $i] ne "separator"} {lappend result [string trim [.popup entrycget $i -label]]}
    }
    return $result
}
# popped --
#   The labels of the menu that a script opens; Escape closes it.
proc popped {script} {
    destroy .popup
    uplevel 1 $script
    ::test::wait_until {[winfo exists .popup] && [winfo ismapped .popup]} 2000
    if {![winfo exists .popup] || ![winfo ismapped .popup]} {return ""}
    set labels [labels]
    ::test::key Escape
    return $labels
}
proc on_entry {menu words} {
    set rows [::vesk::menus::rows $menu]
    set path [dict get $::vesk::menus::paths $menu]
    set place [lsearch -exact $rows [::vesk::menus::find $menu $words]]
    set y [expr {[winfo rooty $path] + [$path yposition $place] + 8}]
    foreach shift {40 44} {
        exec xdotool mousemove [expr {[winfo rootx $path] + $shift}] $y
        ::test::pause 200
    }
    return $::vesk::status::message
}

::test::run {
    set tabs .main.right.tabs
    set tree $::vesk::objects::tree
    ::test::check "an empty scene says how to begin" {[winfo ismapped .main.right.objects.empty]}
    vesk new_cube
    vesk objects_set [vesk object_get_children [vesk get_world]] name cube
    vesk clear_selection
    ::vesk::ops::request
    ::test::pause 300
    ::test::check "and then no more" {![winfo ismapped .main.right.objects.empty]}

    # ---- the status line tells what entries are for ----
    set before $::vesk::status::message
    ::test::press .mbar.edit
    ::test::check "an entry tells what it does" {
        [on_entry edit clipboard_paste] eq "Adds what the clipboard holds."
    }
    ::test::check "a grey one what it needs" {
        [string match "*select something first" [on_entry edit delete]]
    }
    ::test::key Escape Escape
    ::test::check "afterwards the message is back" {$::vesk::status::message eq $before}
    ::test::at xy 150 150
    key ctrl+d
    ::test::check "and so does a key that is not possible" {
        [string match "Duplicate - select something first" $::vesk::status::message]
    }

    # ---- keys of the menus are none of the views' ----
    ::test::at xyz 150 150
    foreach {keys entries} {alt+w Window alt+v View F1 Keys} {
        key $keys
        key Escape
        destroy .textkeys
    }
    ::test::check "Alt and a letter open menus only" {
        $::prefs_view3dmode == 0 && [lindex [vesk get_app_mode] 0] eq "tree"
    }
    ::test::check "and such keys are not echoed as the view's" {
        [lsearch -regexp [::vesk::console::last 20] {keypress . ([wvs]|F1) }] < 0
    }
    foreach pressed {BackSpace KP_Delete} {
        vesk select_all
        key $pressed
        ::test::check "$pressed deletes in the 3D view, too" {[lindex [vesk get_counts] 1] == 0}
        vesk undo
    }

    # ---- the right button and the menu key ----
    vesk set_select_mode object
    vesk select_all
    ::test::pause 200
    ::test::at xy 150 150
    ::test::check "the menu key opens the view's menu" {"Duplicate" in [popped {exec xdotool key Menu}]}
    focus -force $tree
    ::test::check "and the list's" {"Group" in [popped {exec xdotool key shift+F10}]}
    $tabs select $tabs.palette
    ::test::pause 200
    set step [::vesk::palette::swatch_step]
    lassign [$tabs.palette.grid bbox swatch] left top right
    ::test::check "eight materials fill the width" {
        $right - $left > 0.8 * [winfo width $tabs.palette.grid]
    }
    ::test::check "a material has a menu" {
        [popped {
            ::test::point_at $tabs.palette.grid [expr {2 * $step + 8}] 8
            exec xdotool click 3
        }] eq {Apply {Select surfaces} Edit New Duplicate {Next unused}}
    }
    ::test::check "of the material that was clicked, which nothing gets by that" {
        $::vesk::palette::current == 2 && [lindex [vesk material_counts] 2] == 0
    }
    set count [llength [vesk get_palette]]
    ::test::press $tabs.palette.row.add
    ::test::check "a new material" {
        [llength [vesk get_palette]] == $count + 1 && [$tabs select] eq "$tabs.material"
    }
    for {set i 0} {$i < 200} {incr i} {vesk new_palette_entry 3}
    $tabs select $tabs.palette
    ::vesk::ops::request
    ::test::pause 400
    set row $tabs.palette.row
    ::test::check "hundreds of materials leave the buttons where they can be seen" {
        [winfo rooty $row] + [winfo height $row] <= [winfo rooty $tabs] + [winfo height $tabs]
        && [winfo ismapped $tabs.palette.bar]
    }
    focus -force $tabs.palette.grid
    ::vesk::palette::select 180
    ::test::check "the current one is scrolled to" {
        [lindex [$tabs.palette.grid yview] 0] > 0.4
    }
    $tabs select $tabs.object
    ::test::pause 200
    set field $tabs.object.name
    ::test::press $field
    key ctrl+a
    ::test::check "fields have the clipboard's menu" {
        [popped {
            ::test::point_at $field
            exec xdotool click 3
        }] eq {Cut Copy Paste {Select all}}
    }
    # What stands in a field is not given to what is selected while it has the focus.
    vesk objects_set [vesk get_selected_objects] name first
    ::test::pause 200
    vesk create box 0 2 0 0 3 1 1
    ::vesk::ops::request
    ::test::pause 300
    ::test::press [::vesk::view::area].xy.togl 30 30
    ::test::pause 300
    ::test::check "a name stays with its object" {
        [lsort [lmap {id parent type name surfaces visible locked} [vesk object_tree] {set name}]]
        eq {cube first}
    }
    set chip [::vesk::view::area].zy.chip
    ::test::press $chip "" "" 3
    ::test::check "the label's menu comes by the right button, too" {[winfo ismapped $chip.menu]}
    ::test::key Escape

    # ---- the objects panel keeps in step ----
    vesk clear_all
    vesk new_cube
    vesk select_all
    set cube [vesk get_selected_objects]
    vesk group
    ::test::pause 300
    set group [vesk object_get_children [vesk get_world]]
    vesk objects_set $group name group
    vesk objects_select $cube
    ::test::pause 300
    vesk surface_triangulate
    ::test::pause 300
    ::test::check "the panel's numbers follow an operation" {[$tree set $cube surfaces] == 12}
    set ::vesk::objects::filter group
    ::test::pause 400
    ::test::check "the filter leaves the selection as it is" {[vesk get_selected_objects] eq $cube}
    set ::vesk::objects::filter ""
    vesk clear_selection
    ::test::pause 400
    $tree item $group -open 0
    set ::vesk::objects::filter nothing
    ::test::pause 400
    ::test::check "says when nothing matches" {[winfo ismapped .main.right.objects.empty]}
    set ::vesk::objects::filter ""
    ::test::pause 400
    ::test::check "and what was closed is still closed" {![$tree item $group -open]}

    # ---- what was taken back leaves nothing behind ----
    vesk clear_all
    vesk reset_views
    vesk new_cube
    vesk select_all
    ::test::pause 300
    ::vesk::files::mark_saved
    begin 0 0 0.5 0.3
    key Escape
    finish
    ::test::check "not when it was taken back" {!$::unsaved_changes}
    vesk move_with_undo 1 0 0
    ::test::pause 300
    set changed $::unsaved_changes
    vesk undo
    ::test::pause 300
    ::test::check "nor a step that was undone" {$changed && !$::unsaved_changes}
    click_at 0.58 0.58
    ::test::check "a click on a handle leaves the selection" {[llength [vesk get_selected_objects]] == 1}
    click_at -1.5 1
    ::test::check "a click beside does not" {[vesk get_selected_objects] eq ""}

    # ---- little room ----
    set before [wm geometry .]
    wm geometry . 580x430
    ::test::pause 500
    # inside --
    #   Whether a widget lies in another with all of it.
    proc inside {w other} {
        return [expr {[winfo rootx $w] + [winfo width $w] <= [winfo rootx $other] + [winfo width $other]
            && [winfo rooty $w] + [winfo height $w] <= [winfo rooty $other] + [winfo height $other]}]
    }
    ::test::check "all menus can be reached in a small window" {[inside .mbar.help .]}
    ::test::check "and all tools" {[inside .main.tools.zoom .main] && [inside .main.tools.text .main]}
    ::test::shot contexts-small
    wm geometry . $before
    ::test::pause 500
    ::test::check "two columns are enough in a large one" {$::vesk::tools::columns == 2}
    toplevel .huge
    pack [frame .huge.in -width 5000 -height 4000]
    update idletasks
    ::vesk::dialogs::place_over .huge
    ::test::pause 300
    ::test::check "no window is larger than the screen" {
        [winfo width .huge] <= [winfo screenwidth .] && [winfo height .huge] <= [winfo screenheight .]
    }
    destroy .huge
    ::test::check "no script failed" {$::test::errors eq {}}
}
