# keys.tcl --
#   Changed keys: a key that is pressed in a view is translated before the executable sees it, and
#   the keys of the menus are bound anew. The standard keys need none of this; the file is read when
#   the keys page opens, or at the start when the settings hold other keys.

namespace eval ::vesk::keys {
    variable changed {}         ;# id -> key, where it is not the standard one
    variable in_views {}        ;# key -> action, of all keys that act in the views
    variable standard {}        ;# id -> key of the table, before anything was changed
    variable id_at {}           ;# {menu label} -> id of its action
    # Actions of the executable's own keys in the views: id, label, standard key, then the character
    # and the state for "keypress".
    variable native {
        view.object   "Object mode"                          O        o 0
        view.surface  "Surface mode"                         S        s 0
        view.edge     "Edge mode"                            D        d 0
        view.vertex   "Vertex mode"                          V        v 0
        view.band     "Rubber band"                          B        b 0
        view.behind   "Select the next behind"               Q        q 0
        view.move     "Move"                                 M        m 0
        view.rotate   "Rotate"                               R        r 0
        view.extrude  "Extrude (surfaces)"                   E        e 0
        view.fit      "Fit the selection; 3D: turn about it" F        f 0
        view.fitall   "Fit the selection in all views"       Shift+F  F 1
        view.centre   "Centre the selection; 3D: ground grid" G       g 0
        view.centreall "Centre the selection in all views"   Shift+G  G 1
        view.hide     "Hide"                                 H        h 0
        view.fill     "Fill; 3D: wireframe"                  W        w 0
        view.textures "Textures"                             T        t 0
        view.light    "Light; 3D: headlight"                 L        l 0
        view.normals  "Normals"                              N        n 0
        view.zoomin   "Zoom in"                              Z        z 0
        view.zoomout  "Zoom out"                             X        x 0
        view.origin   "Views back to the origin"             C        c 0
        view.reset    "Views back to the start"              Space    { } 0
        view.reset3d  "3D view back to the start"            Shift+Space space 1
        view.spin     "3D: spin the model"                   1        1 0
        view.walk     "3D: walk"                             2        2 0
        view.delete   "Delete"                               Del      Delete 0
        view.delete2  "Delete (second key)"                  .        . 0
        view.delete3  "Delete (third key)"                   BackSpace BackSpace 0
        view.none     "Select nothing"                       Escape   \x1b 0
    }
    # Presets: name, label, and the keys that differ from the standard ones.
    variable presets {
        standard "Standard" {}
        grs "G R S keys" {
            view.move G view.rotate R tool.scale S view.surface 3 view.edge 2 view.vertex 1 view.spin {}
            view.walk {} view.centre Shift+C view.centreall Ctrl+Shift+C view.delete X
            view.zoomout - view.zoomin + view.fill Z view.reset Home view.fit .
            view.delete2 {} "Edit > Duplicate" Shift+D "Select > All" A "Select > None" Alt+A
            "Object > Show all" Alt+H "Object > Merge" Ctrl+J
        }
        qwer "Q W E R keys" {
            tool.move W view.move Q view.behind {} view.rotate E tool.scale R view.extrude Shift+E view.fill 4
            view.textures 6 view.light 7 "View > Fit all" A "Select > All" Ctrl+Shift+A
            "Select > None" Ctrl+Alt+A "Edit > Repeat the last" Alt+R
        }
        laptop "Laptop" {
            "Tools > Search for a command" Ctrl+K "Window > Console" Ctrl+T
            "Window > Right panel" Ctrl+B "Window > Next region" Ctrl+] "Window > Previous region" Ctrl+[
            "Tools > Check the model" Ctrl+M "Help > Keys" Ctrl+/ "View > Maximise or restore" Ctrl+Return
        }
    }
}

# ---- the rows ----

# rows --
#   Every action that can have a key: {id group label standard-key}.
proc ::vesk::keys::rows {} {
    variable native
    variable standard
    remember
    set result {}
    foreach {id label key character state} $native {lappend result [list $id Views $label $key]}
    foreach words $::vesk::tools::rows {
        lappend result [list tool.[lindex $words 0] Tools "Tool: [lindex $words 5]" ""]
    }
    dict for {id key} $standard {
        set at [string last " > " $id]
        lappend result [list $id [string range $id 0 $at-1] [string range $id $at+3 end] $key]
    }
    return $result
}

# remember --
#   Notes the action of each menu row, and its key while the table still has the standard ones. Rows
#   with a key of the views stand for the executable's own actions.
proc ::vesk::keys::remember {} {
    variable standard
    variable id_at
    if {[dict size $standard] > 0} {return}
    foreach entry [::vesk::menus::all] {
        lassign $entry trail row name
        set key [lindex $row 3]
        set id [expr {$key eq "" ? "" : [native_of $key]}]
        if {$id eq ""} {
            set id [id_of $trail $row]
            dict set standard $id $key
        }
        dict set id_at [list $name [lindex $row 1]] $id
    }
}
proc ::vesk::keys::id_of {trail row} {
    return "$trail > [::vesk::menus::plain [lindex $row 1]]"
}
proc ::vesk::keys::native_of {key} {
    variable native
    foreach {id label standard_key character state} $native {
        if {$standard_key eq $key} {return $id}
    }
    return ""
}

# key_of --
#   The key that an action has now.
proc ::vesk::keys::key_of {id} {
    variable changed
    variable native
    variable standard
    if {[dict exists $changed $id]} {return [dict get $changed $id]}
    set place [lsearch -exact $native $id]
    if {$place >= 0} {return [lindex $native $place+2]}
    remember
    return [expr {[dict exists $standard $id] ? [dict get $standard $id] : ""}]
}

# users --
#   The ids of all actions that have a key.
proc ::vesk::keys::users {key} {
    if {$key eq ""} {return {}}
    return [lmap row [rows] {
        if {[key_of [lindex $row 0]] ne $key} continue
        lindex $row 0
    }]
}

# ---- changing ----

# set_key --
#   Gives an action another key, or none with "".
proc ::vesk::keys::set_key {id key} {
    variable changed
    dict unset changed $id
    if {[key_of $id] ne $key} {dict set changed $id $key}
    take_effect
}

# use --
#   Takes over a preset.
proc ::vesk::keys::use {preset} {
    variable changed
    variable presets
    foreach {name label keys} $presets {
        if {$name eq $preset} {set changed [dict create {*}$keys]}
    }
    take_effect
}

# preset --
#   The name of the preset that the keys are, or "".
proc ::vesk::keys::preset {} {
    variable changed
    variable presets
    foreach {name label keys} $presets {
        if {[lsort -stride 2 $keys] eq [lsort -stride 2 $changed]} {return $name}
    }
    return ""
}

# restore --
#   Takes the keys of the settings at the start; a damaged list is ignored.
proc ::vesk::keys::restore {} {
    variable changed
    set kept [::vesk::settings::get keys]
    if {[catch {dict size $kept}] || [dict size $kept] == 0} {return}
    set changed $kept
    take_effect
}

# take_effect --
#   Shows and binds the keys in the menus, rebuilds the map of the views, and keeps the settings.
proc ::vesk::keys::take_effect {} {
    variable changed
    variable in_views
    variable native
    remember
    ::vesk::settings::set_value keys $changed
    set_menu_keys
    set in_views {}
    set ::vesk::view::translated [expr {[dict size $changed] > 0}]
    if {!$::vesk::view::translated} {return}
    # A key that was taken from an action does nothing, unless another action has it.
    foreach {id label key character state} $native {
        if {[dict exists $changed $id]} {dict set in_views $key {}}
    }
    foreach words $::vesk::tools::rows {
        set key [key_of tool.[lindex $words 0]]
        if {$key ne ""} {dict set in_views $key [list tool [lindex $words 0]]}
    }
    foreach pair [::vesk::menus::all] {
        lassign $pair trail row
        set id [id_of $trail $row]
        if {[dict exists $changed $id] && [::vesk::menus::event_of [key_of $id]] eq ""} {
            dict set in_views [key_of $id] [list row $row]
        }
    }
    foreach {id label key character state} $native {
        if {[key_of $id] ne ""} {dict set in_views [key_of $id] [list native $character $state]}
    }
}

# set_menu_keys --
#   Writes the keys into the menu table and the menus that stand, and binds them.
proc ::vesk::keys::set_menu_keys {} {
    dict for {name menu} $::vesk::menus::table {
        lassign $menu label rows
        set new {}
        set entry -1
        foreach row $rows {
            incr entry
            if {[lindex $row 0] in {line menu}} {lappend new $row; continue}
            set key [menu_key $name $row]
            if {$key ne [lindex $row 3]} {
                lset row 3 $key
                show_key $name $entry $key
            }
            lappend new $row
        }
        dict set ::vesk::menus::table $name [list $label $new]
    }
    ::vesk::menus::bind_again
}

# menu_key --
#   The key that a row of a menu shows now.
proc ::vesk::keys::menu_key {name row} {
    variable id_at
    remember
    set place [list $name [lindex $row 1]]
    return [expr {[dict exists $id_at $place] ? [key_of [dict get $id_at $place]] : [lindex $row 3]}]
}

proc ::vesk::keys::show_key {name entry key} {
    if {![dict exists $::vesk::menus::paths $name]} {return}
    set path [dict get $::vesk::menus::paths $name]
    if {![::vesk::menus::is_filled $path]} {return}
    $path entryconfigure $entry -accelerator [::vesk::menus::accelerator $key]
}

# ---- pressing ----

# text_of --
#   The key text of a press: "G", "Shift+F", "Ctrl+Space"; "" for a lone modifier.
proc ::vesk::keys::text_of {text keysym state} {
    if {[regexp {^(Shift|Control|Alt|Meta|Super|Hyper|Caps|Num|ISO|Mode)_} $keysym]} {return ""}
    set named {Delete Del KP_Delete Del space Space comma , period . minus - plus + slash /
        bracketleft [ bracketright ] equal = semicolon ; apostrophe ' grave ` backslash \\
        KP_Add + KP_Subtract - KP_Enter Return Prior PageUp Next PageDown ISO_Left_Tab Tab}
    set key $keysym
    if {[dict exists $named $keysym]} {
        set key [dict get $named $keysym]
    } elseif {[string length $keysym] == 1} {
        set key [string toupper $keysym]
    } elseif {[string length $text] == 1 && [string is graph $text]} {
        set key $text
    }
    set modifiers ""
    if {$state & 4} {append modifiers Ctrl+}
    if {$state & 8} {append modifiers Alt+}
    # The sign of a sign key differs with Shift already.
    if {$state & 1 && ([string length $key] > 1 || [string is alnum $key])} {
        append modifiers Shift+
    }
    return $modifiers$key
}

# pressed --
#   Handles a key in a view while keys are changed; returns 1 when it has an action.
proc ::vesk::keys::pressed {view text keysym state} {
    variable in_views
    set key [text_of $text $keysym $state]
    if {![dict exists $in_views $key]} {return 0}
    lassign [dict get $in_views $key] kind what more
    switch -- $kind {
        native {::vesk::view::press $view $what $more}
        tool   {::vesk::tools::choose $what}
        row    {try {::vesk::menus::key [focus] $what} on break {} {}}
    }
    return 1
}
