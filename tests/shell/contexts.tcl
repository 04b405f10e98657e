# contexts.tcl --
#   The menus of the right button and of the menu key, what the status line tells about an entry,
#   keys that are the menus' and not the views', and an objects panel that keeps in step.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

# popped --
#   The labels of the menu that a script opens; Escape closes it.
proc popped {script} {
    destroy .popup
    uplevel 1 $script
    wait_until {[winfo ismapped .popup]}
    set labels [menu_labels .popup]
    key Escape
    return $labels
}
proc on_entry {menu words} {
    lassign [entry_of $menu $words] path place
    foreach shift {40 44} {point_at $path $shift [expr {[$path yposition $place] + 8}]}
    return [status]
}
# inside --
#   Whether a widget lies in another with all of it.
proc inside {w other} {
    return [expr {[winfo rootx $w] + [winfo width $w] <= [winfo rootx $other] + [winfo width $other]
        && [winfo rooty $w] + [winfo height $w] <= [winfo rooty $other] + [winfo height $other]}]
}

run {
    set tabs .main.right.tabs
    set tree $::vesk::objects::tree
    check "an empty scene says how to begin" {[winfo ismapped .main.right.objects.empty]}
    fresh
    vesk objects_set $::cube name cube
    vesk clear_selection
    check "and then no more" {![winfo ismapped .main.right.objects.empty]}

    # ---- the status line tells what entries are for ----
    set before [status]
    press .mbar.edit
    check "an entry tells what it does" {
        [on_entry edit repeat_last] eq "Does the last operation again."
    }
    check "there is nothing to paste yet" {
        [string match "*the clipboard is empty" [on_entry edit clipboard_paste]]
    }
    check "a grey one what it needs" {
        [string match "*select something first" [on_entry edit delete]]
    }
    key Escape Escape
    check "afterwards the message is back" {[status] eq $before}
    at xy 150 150
    key ctrl+d
    check "and so does a key that is not possible" {
        [string match "Duplicate - select something first" [status]]
    }

    # ---- keys of the menus are none of the views' ----
    at xyz 150 150
    vesk set_select_mode tree
    foreach keys {alt+w alt+v F1} {
        key $keys
        key Escape
        destroy .textkeys
    }
    check "Alt and a letter open menus only" {
        $::prefs_view3dmode == 0 && [lindex [vesk get_app_mode] 0] eq "tree"
    }
    check "and such keys are not echoed as the view's" {
        [lsearch -regexp [::vesk::console::last 20] {keypress . ([wvs]|F1) }] < 0
    }
    foreach pressed {BackSpace KP_Delete} {
        vesk select_all
        key $pressed
        check "$pressed deletes in the 3D view, too" {[lindex [vesk get_counts] 1] == 0}
        vesk undo
    }

    # ---- the right button and the menu key ----
    vesk set_select_mode object
    vesk clear_selection
    popped {press [widget xy] {*}[spot 0.2 0.2] 3}
    check "the right button selects what its menu is for" {[vesk get_selected_objects] eq $::cube}
    press .mbar.view
    lassign [entry_of view3d {::vesk::view::walks 1}] path entry
    check "the menu marks how the 3D view is drawn and moved" {
        $::vesk::view::projection == 1 && $::vesk::view::walks == 0
    }
    key Escape
    vesk select_all
    at xy 150 150
    check "the menu key opens the view's menu" {"Duplicate" in [popped {xdo key Menu}]}
    focus -force $tree
    check "and the list's" {"Group" in [popped {xdo key shift+F10}]}
    open_tab palette
    set step [::vesk::palette::swatch_step]
    lassign [$tabs.palette.grid bbox swatch] left top right
    check "eight materials fill the width" {
        $right - $left > 0.8 * [winfo width $tabs.palette.grid]
    }
    check "a material has a menu" {
        [popped {press $tabs.palette.grid [expr {2 * $step + 8}] 8 3}]
            eq {Apply {Select surfaces} Edit New Duplicate {Next unused}}
    }
    check "of the material that was clicked, which nothing gets by that" {
        $::vesk::palette::current == 2 && [lindex [vesk material_counts] 2] == 0
    }
    set count [llength [vesk get_palette]]
    press $tabs.palette.row.add
    check "a new material" {
        [llength [vesk get_palette]] == $count + 1 && [$tabs select] eq "$tabs.material"
    }
    for {set i 0} {$i < 200} {incr i} {vesk new_palette_entry 3}
    ::vesk::ops::request
    open_tab palette
    set row $tabs.palette.row
    check "hundreds of materials leave the buttons where they can be seen" {
        [winfo rooty $row] + [winfo height $row] <= [winfo rooty $tabs] + [winfo height $tabs]
        && [winfo ismapped $tabs.palette.bar]
    }
    focus -force $tabs.palette.grid
    ::vesk::palette::select 180
    check "the current one is scrolled to" {
        [lindex [$tabs.palette.grid yview] 0] > 0.4
    }
    open_tab object
    set field $tabs.object.name
    press $field
    key ctrl+a
    check "fields have the clipboard's menu" {
        [popped {press $field "" "" 3}] eq {Cut Copy Paste {Select all}}
    }
    # What stands in a field is not given to what is selected while it has the focus.
    vesk objects_set [vesk get_selected_objects] name first
    settle
    vesk create box 0 2 0 0 3 1 1
    ::vesk::ops::request
    settle
    press [::vesk::view::area].xy.togl 30 30
    check "a name stays with its object" {
        [lsort [lmap {id parent type name surfaces visible locked} [vesk object_tree] {set name}]]
        eq {cube first}
    }
    set chip [::vesk::view::area].zy.chip
    press $chip "" "" 3
    check "the label's menu comes by the right button, too" {[winfo ismapped $chip.menu]}
    key Escape

    # ---- the objects panel keeps in step ----
    fresh
    vesk group
    settle
    set group [top_objects]
    vesk objects_set $group name group
    vesk objects_select $::cube
    vesk surface_triangulate
    check "the panel's numbers follow an operation" {[$tree set $::cube surfaces] == 12}
    set ::vesk::objects::filter group
    check "the filter leaves the selection as it is" {
        ![$tree exists $::cube] && [vesk get_selected_objects] eq $::cube
    }
    set ::vesk::objects::filter ""
    vesk clear_selection
    wait_until {[$tree exists $::cube]}
    $tree item $group -open 0
    set ::vesk::objects::filter nothing
    check "says when nothing matches" {[winfo ismapped .main.right.objects.empty]}
    set ::vesk::objects::filter ""
    check "and what was closed is still closed" {
        [$tree exists $group] && ![$tree item $group -open]
    }

    # ---- what was taken back leaves nothing behind ----
    fresh
    ::vesk::files::mark_saved
    begin 0 0 0.5 0.3
    key Escape
    release
    check "not when it was taken back" {!$::unsaved_changes}
    vesk move_with_undo 1 0 0
    check "a step is a change" {$::unsaved_changes}
    vesk undo
    check "but not one that was undone" {!$::unsaved_changes}
    click_at 0.58 0.58
    check "a click on a handle leaves the selection" {[llength [vesk get_selected_objects]] == 1}
    click_at -1.5 1
    check "a click beside does not" {[vesk get_selected_objects] eq ""}

    # ---- little room ----
    set before [wm geometry .]
    resize 580x430
    check "all menus can be reached in a small window" {[inside .mbar.help .]}
    check "and all tools" {[inside .main.tools.zoom .main] && [inside .main.tools.text .main]}
    shot contexts-small
    resize $before
    check "two columns are enough in a large one" {$::vesk::tools::columns == 2}
    toplevel .huge
    pack [frame .huge.in -width 5000 -height 4000]
    update idletasks
    ::vesk::dialogs::place_over .huge
    check "no window is larger than the screen" {
        [winfo width .huge] <= [winfo screenwidth .] && [winfo height .huge] <= [winfo screenheight .]
    }
    destroy .huge
}
