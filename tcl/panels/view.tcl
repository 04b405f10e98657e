# view.tcl --
#   The four views: Togl widgets in cells that share an area. The borders of the cells are the
#   dividers; the frame of the focused view is its border in the view ring's colour. Keys are bound
#   on the Togl widgets only and handed to the executable.

namespace eval ::vesk::view {
    # Name of a view -> view id, and where it stands: column, row.
    variable ids {xy 0 zy 1 xz 2 xyz 3}
    variable places {xy {0 0} zy {1 0} xz {0 1} xyz {1 1}}
    variable detached {}        ;# views that have a window of their own
    variable area_path ""
    variable left 0.5           ;# width of the left column, share of the area
    variable top 0.5            ;# height of the upper row
    variable focused xyz
    variable translated 0       ;# keys were changed: they are looked up first
    variable dragging ""
    variable waiting ""         ;# a chip's menu that opens unless a second click follows
    variable projection 1       ;# of the 3D view, when its menu opened
    variable walks 0
    variable under ""           ;# the view that came under the pointer since its last motion
}

proc ::vesk::view::area {} {
    variable area_path
    return $area_path
}

# build --
#   Makes the area and the four views in it.
proc ::vesk::view::build {path} {
    variable ids
    variable area_path $path
    ::vesk::theme::on [frame $path] gap
    read_shares
    read_places
    foreach name [dict keys $ids] {build_cell $name}
    if {[::vesk::settings::get view_shown] in [dict keys $ids]} {
        set ::viewsetting [::vesk::settings::get view_shown]
    }
    trace add variable ::viewsetting write ::vesk::view::layout
    if {$::viewsetting ni {all xy zy xz xyz}} {
        set ::viewsetting all
    } else {
        layout
    }
    ::vesk::theme::follow {::vesk::view::colour_frames}
}

proc ::vesk::view::bounded {share} {
    return [expr {min(0.9, max(0.1, $share))}]
}

# build_cell --
#   One view: frame, Togl widget, and the chip that names it and opens its menu.
proc ::vesk::view::build_cell {name} {
    variable ids
    variable area_path
    set cell $area_path.$name
    ::vesk::theme::on [frame $cell] -
    set options {-rgba 1 -depth 1 -stencil 1 -width 300 -height 220}
    # The first widget owns what the others use; the name is its -ident. Views of one kind of buffer
    # have one context, whose programs are made once; others share its objects.
    set double [expr {$name eq "xyz" || $::prefs_doublebuffer_orth ? 1 : 0}]
    lappend options -ident view$name -double $double
    if {$name ne "xy"} {
        lappend options [expr {$double == !!$::prefs_doublebuffer_orth ? "-sharecontext" : "-sharelist"}] viewxy
    }
    togl $cell.togl {*}$options
    pack $cell.togl -fill both -expand 1 -padx [ring] -pady [ring]
    set ::ToglWinName($name) $cell.togl
    build_chip $cell [string trim [set ::prefs_window_label_$name]]
    fill_chip_menu $name $cell.chip.menu
    trace add variable ::prefs_window_label_$name write [list ::vesk::view::relabel $name]
    bind_view $name $cell
}

# ring --
#   Width of a view's frame.
proc ::vesk::view::ring {} {
    return [::vesk::theme::px [expr {$::vesk::theme::current eq "contrast" ? 3 : 2}]]
}

proc ::vesk::view::relabel {name args} {
    variable area_path
    $area_path.$name.chip configure -text [string trim [set ::prefs_window_label_$name]]
    title $name
}

# fill_chip_menu --
#   The menu of one view: its layout and what it draws.
proc ::vesk::view::fill_chip_menu {name path} {
    set rows [list [list call "&Maximise or restore" [list ::vesk::view::toggle $name] Ctrl+Space]]
    lappend rows [list call "&Window of its own, or back" [list ::vesk::view::detach_or_back $name]]
    lappend rows [list call "E&qual sizes" ::vesk::view::equal] {line}
    foreach other {xy zy xz xyz} {
        lappend rows [list radio [string trim [set ::prefs_window_label_$other]] \
            [list ::vesk::view::kind($name) $other ::vesk::view::exchange $name $other]]
    }
    lappend rows {line}
    foreach row [::vesk::menus::rows [expr {$name eq "xyz" ? "view3d" : "show"}]] {
        if {$row eq {line} && [lindex $rows end] eq {line}} {continue}
        if {[lindex $row 0] in {check radio line}} {lappend rows $row}
    }
    if {[lindex $rows end] eq {line}} {set rows [lrange $rows 0 end-1]}
    if {$name ne "xyz"} {
        set id [dict get $::vesk::view::ids $name]
        lappend rows {line} \
            [list run "&Background image..." [list file_select_background_image $id]] \
            [list run "N&o background image" [list clear_background_image $id]]
    }
    foreach row $rows {::vesk::menus::add_row $path $row}
    ::vesk::menus::align $path
    $path configure -postcommand [list ::vesk::view::refresh_chip_menu $path $rows]
}

proc ::vesk::view::refresh_chip_menu {path rows} {
    variable kind
    foreach name {xy zy xz xyz} {set kind($name) $name}
    read_camera
    set state [::vesk::menus::now]
    set entry 0
    foreach row $rows {
        if {[lindex $row 0] ne "line"} {
            $path entryconfigure $entry -state \
                [expr {[::vesk::menus::possible $row $state] ? "normal" : "disabled"}]
        }
        incr entry
    }
}

# read_camera --
#   Perspective and way of walking of the 3D view, for the marks of its menus.
proc ::vesk::view::read_camera {} {
    variable projection [vesk get_projection]
    variable walks $::person_walk_vehicle
}

# ---- layout ----

# layout --
#   Places the cells by `viewsetting` and the two shares. The neighbour of a view that has a window
#   of its own takes its place.
proc ::vesk::view::layout {args} {
    variable ids
    variable places
    variable area_path
    variable left
    variable top
    variable detached
    set attached [lmap name [dict keys $ids] {if {$name in $detached} continue; set name}]
    set alone [expr {$::viewsetting in $attached ? $::viewsetting : ""}]
    foreach name $attached {
        lassign [dict get $places $name] column row
        lappend row_of($row) $name
    }
    foreach name $attached {
        set cell $area_path.$name
        if {$alone ne ""} {
            if {$alone eq $name} {
                place $cell -relx 0 -rely 0 -relwidth 1 -relheight 1
            } else {
                place forget $cell
            }
            continue
        }
        lassign [dict get $places $name] column row
        set x {0 1}
        if {[llength $row_of($row)] == 2} {
            set x [expr {$column ? [list $left [expr {1 - $left}]] : [list 0 $left]}]
        }
        set y {0 1}
        if {[array size row_of] == 2} {
            set y [expr {$row ? [list $top [expr {1 - $top}]] : [list 0 $top]}]
        }
        place $cell -relx [lindex $x 0] -rely [lindex $y 0] -relwidth [lindex $x 1] \
            -relheight [lindex $y 1]
    }
    if {[llength $args] > 0} {::vesk::settings::set_value view_shown $::viewsetting}
}

# set_shares --
#   Moves the dividers and notes the 3D view's share for the next start.
proc ::vesk::view::set_shares {new_left new_top} {
    variable left [bounded $new_left]
    variable top [bounded $new_top]
    set ::prefs_window_3d_width_percent [expr {round(100 * (1 - $left))}]
    set ::prefs_window_3d_height_percent [expr {round(100 * (1 - $top))}]
    layout
}

# read_shares, take_shares --
#   The dividers as the preferences say.
proc ::vesk::view::read_shares {} {
    variable left [bounded [expr {1 - $::prefs_window_3d_width_percent / 100.0}]]
    variable top [bounded [expr {1 - $::prefs_window_3d_height_percent / 100.0}]]
}
proc ::vesk::view::take_shares {} {
    read_shares
    layout
}

proc ::vesk::view::equal {} {
    set ::viewsetting all
    set_shares 0.5 0.5
}

# toggle --
#   Shows one view alone, or the four again; a window of its own fills the screen, or not.
proc ::vesk::view::toggle {name} {
    variable detached
    variable area_path
    if {$name in $detached} {
        wm attributes $area_path.$name -zoomed [expr {![wm attributes $area_path.$name -zoomed]}]
        return
    }
    set ::viewsetting [expr {$::viewsetting eq $name ? "all" : $name}]
    focus_view $name
}
proc ::vesk::view::toggle_focused {} {
    variable focused
    toggle $focused
}

# ---- dividers ----

# edge --
#   The dividers at a place of a cell's border: x, y, both or none.
proc ::vesk::view::edge {name x y} {
    variable places
    variable area_path
    variable detached
    set cell $area_path.$name
    if {$name in $detached || [winfo width $cell] == [winfo width $area_path]
            && [winfo height $cell] == [winfo height $area_path]} {return ""}
    lassign [dict get $places $name] column row
    set ring [ring]
    set result ""
    set near [expr {$ring + [::vesk::theme::px 4]}]
    set on_x [expr {$column ? $x < $near : $x >= [winfo width $cell] - $near}]
    set on_y [expr {$row ? $y < $near : $y >= [winfo height $cell] - $near}]
    if {$on_x && [winfo width $cell] < [winfo width $area_path]} {append result x}
    if {$on_y && [winfo height $cell] < [winfo height $area_path]} {append result y}
    return $result
}

proc ::vesk::view::edge_cursor {name x y} {
    variable area_path
    set cursor [dict get {{} {} x sb_h_double_arrow y sb_v_double_arrow xy fleur} [edge $name $x $y]]
    if {[$area_path.$name cget -cursor] ne $cursor} {
        $area_path.$name configure -cursor $cursor
    }
}

# grip, drag --
#   A press on a border grips its dividers; the motion moves them.
proc ::vesk::view::grip {name x y} {
    variable dragging [edge $name $x $y]
}
proc ::vesk::view::drag {root_x root_y} {
    variable dragging
    variable area_path
    variable left
    variable top
    set new_left $left
    set new_top $top
    if {[string match *x* $dragging]} {
        set new_left [expr {($root_x - [winfo rootx $area_path]) / double([winfo width $area_path])}]
    }
    if {[string match *y* $dragging]} {
        set new_top [expr {($root_y - [winfo rooty $area_path]) / double([winfo height $area_path])}]
    }
    if {$dragging ne ""} {set_shares $new_left $new_top}
}

# ---- focus, mouse and keys ----

proc ::vesk::view::bind_view {name cell} {
    variable ids
    set id [dict get $ids $name]
    set togl $cell.togl
    bind $cell <Motion> [list ::vesk::view::edge_cursor $name %x %y]
    bind $cell <Button-1> [list ::vesk::view::grip $name %x %y]
    bind $cell <B1-Motion> {::vesk::view::drag %X %Y}
    bind $cell <ButtonRelease-1> {set ::vesk::view::dragging ""}
    bind $cell <Double-Button-1> {::vesk::view::equal}
    # A relayout brings another view under a resting pointer: only a motion takes the focus.
    bind $togl <Enter> [list set ::vesk::view::under $name]
    # The view would inherit the shape that the divider gave the pointer.
    bind $togl <Enter> +[list $cell configure -cursor ""]
    bind $togl <Motion> [list ::vesk::view::moved_in $name]
    bind $togl <FocusIn> [list ::vesk::view::focus_changed $name 1]
    bind $togl <FocusOut> [list ::vesk::view::focus_changed $name 0]
    bind $togl <Button> [list focus $togl]
    bind $togl <Button-4> [list vesk view_wheel $id 1]
    bind $togl <Button-5> [list vesk view_wheel $id -1]
    ::vesk::hovername::bind_view $name $id $togl
    bind $togl <Key> [list ::vesk::view::key $id %A %K %s]
    set popup {::vesk::menus::popup $::vesk::select_mode %X %Y}
    ::vesk::fields::on_keys $togl [list Key-Menu $popup Shift-Key-F10 $popup]
    # Tab goes on to the window's own bindings unless a number is being typed.
    foreach event {<Tab> <Shift-Tab> <ISO_Left_Tab>} {
        bind $togl $event {if {[vesk tool_key %K] eq "1"} break}
    }
    bind $cell.chip <Button-1> [list ::vesk::view::chip_pressed $name %x]
    bind $cell.chip <Button-3> [list ::vesk::view::post_chip $name]
    bind $cell.chip <ButtonRelease-1> break
    bind $cell.chip <B1-Motion> break
    bind $cell.chip <Double-Button-1> [list ::vesk::view::chip_double $name]
}

# key --
#   Hands a key to the executable: the character itself, or the keysym's name for keys without
#   one. The space bar is a character, Shift+space the keysym "space".
#   text  %A, keysym  %K, state  %s
proc ::vesk::view::key {id text keysym state} {
    if {[regexp {^(Shift|Control|Alt|Meta|Super|Caps|Num|ISO)_} $keysym]
            || ![::vesk::menus::known keypress] || [::vesk::menus::takes $keysym $state]} {return}
    ::vesk::hovername::hide
    # The keypad's keys without Num Lock.
    regsub {^KP_(Up|Down|Left|Right|Delete)$} $keysym {\1} keysym
    # A running drag or a half-drawn outline takes its keys first.
    if {[vesk tool_key $keysym] eq "1"} {return}
    # The options of an operation stand over the views.
    if {[winfo exists [area].options] && [::vesk::options::takes_key $keysym]} {return -code break}
    variable translated
    if {$translated && [::vesk::keys::pressed $id $text $keysym $state]} {return -code break}
    if {$keysym in {Up Down Left Right Delete BackSpace} || ($keysym eq "space" && $state & 1)} {
        press $id $keysym $state
    } elseif {[string length $text] == 1 && ([string is print $text] || $text eq "\x1b")
            && !($state & 0x2000c)} {
        # Characters with Control or Alt belong to the menus.
        press $id $text $state
    }
}

# press --
#   Hands a key to the executable and echoes it.
proc ::vesk::view::press {id key state} {
    # An unprintable character is echoed as its escape.
    if {[regexp {^[[:cntrl:]]$} $key]} {
        scan $key %c code
        ::vesk::console::say [format {vesk keypress %d \x%02x %d} $id $code $state] command
    } else {
        ::vesk::ops::echo vesk keypress $id $key $state
    }
    vesk keypress $id $key $state
}

# moved_in, entered --
#   The pointer came into a view by a motion: gives it the focus, unless a text is being edited.
proc ::vesk::view::moved_in {name} {
    variable under
    if {$under ne $name} {return}
    set under ""
    entered $name
}
proc ::vesk::view::entered {name} {
    variable area_path
    set now [focus]
    if {$now ne "" && [winfo class $now] in {Entry TEntry Text TCombobox} && ![::vesk::fields::is_done $now]} {
        return
    }
    if {$now eq "" || ![in_main $now]} {return}
    focus $area_path.$name.togl
}

proc ::vesk::view::focus_changed {name on} {
    variable focused
    if {$on} {set focused $name}
    colour_frames
}

# colour_frames --
#   Lights the frame of the focused view; the others have the colour of the gap.
proc ::vesk::view::colour_frames {} {
    variable ids
    variable area_path
    foreach name [dict keys $ids] {colour_frame $area_path.$name}
    ttk::style configure Chip.TMenubutton -background [::vesk::theme::view_background]
}

# colour_frame --
#   The frame of one view, which holds the Togl widget .togl.
proc ::vesk::view::colour_frame {cell} {
    set colour [expr {[focus] eq "$cell.togl" ? "view_ring" : "gap"}]
    if {$::vesk::theme::current eq "contrast" && $colour eq "gap"} {set colour line}
    $cell configure -background [::vesk::theme::colour $colour]
    pack configure $cell.togl -padx [ring] -pady [ring]
}

# build_chip --
#   The label of a view, which opens its menu.
proc ::vesk::view::build_chip {cell text} {
    ttk::menubutton $cell.chip -style Chip.TMenubutton -takefocus 0 -cursor hand2 -text $text \
        -menu $cell.chip.menu
    menu $cell.chip.menu -tearoff 0
    ::vesk::theme::recolour $cell.chip.menu
    place $cell.chip -x [expr {[ring] + [::vesk::theme::px 7]}] \
        -y [expr {[ring] + [::vesk::theme::px 6]}]
}

proc ::vesk::view::focus_view {name} {
    variable area_path
    focus $area_path.$name.togl
}
proc ::vesk::view::focus_last {} {
    variable focused
    focus_view $focused
}

# chip_pressed --
#   A click on the arrow opens the menu at once; on the text it waits for a second click.
proc ::vesk::view::chip_pressed {name x} {
    variable area_path
    variable waiting
    after cancel $waiting
    set chip $area_path.$name.chip
    if {$x > [winfo width $chip] - [::vesk::theme::px 20]} {
        post_chip $name
    } else {
        set waiting [after 220 [list ::vesk::view::post_chip $name]]
    }
    return -code break
}
proc ::vesk::view::chip_double {name} {
    variable waiting
    after cancel $waiting
    toggle $name
    return -code break
}
proc ::vesk::view::post_chip {name} {
    variable area_path
    set chip $area_path.$name.chip
    tk_popup $chip.menu [winfo rootx $chip] [expr {[winfo rooty $chip] + [winfo height $chip]}]
}

# place_options --
#   Puts the options of an operation at the lower left of the focused view, inside the area.
proc ::vesk::view::place_options {w} {
    variable area_path
    variable focused
    variable ids
    variable detached
    set name $focused
    # A view that is visible in the main window.
    foreach other [list $focused {*}[dict keys $ids]] {
        if {$other ni $detached && [winfo ismapped $area_path.$other]} {
            set name $other
            break
        }
    }
    set cell $area_path.$name
    update idletasks
    set x [expr {[winfo x $cell] + [ring] + [::vesk::theme::px 8]}]
    set y [expr {[winfo y $cell] + [winfo height $cell] - [ring] - [::vesk::theme::px 8]
        - [winfo reqheight $w]}]
    place $w -x $x -y [expr {max(0, $y)}]
    raise $w
}

# The executable reports a click of the right button in a view.
proc popup_3d_menu {x y} {
    ::vesk::menus::popup $::vesk::select_mode {*}[winfo pointerxy .]
}
proc popup_view_menu {view x y} {popup_3d_menu $x $y}
