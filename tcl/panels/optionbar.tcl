# optionbar.tcl --
#   The bar below the menus: select modes, how they pick, fields of the current tool, snapping, pivot,
#   search. Where the fields of a tool need the room the search field shrinks first; then the near
#   snap, the pivot and the snap are left out. The modes keep their places while a tool fits so: the
#   window's width decides whether the inactive ones have their texts.

namespace eval ::vesk::optionbar {
    variable path ""
    variable pivot Selection
    variable shown ""           ;# the tool whose fields are shown
    variable level -1           ;# number of groups left out at the last fit
    variable modes {
        tree m-tree "Tree" "" "Whole top-level objects."
        object m-object "Object" O "Single objects."
        surface m-surface "Surface" S "Surfaces."
        edge m-edge "Edge" D "Edges: the sides of surfaces."
        vertex m-vertex "Vertex" V "Vertices."
        light m-light "Light" "" "Lights."
    }
}

proc ::vesk::optionbar::build {bar} {
    variable path $bar
    variable modes
    ttk::frame $bar -padding [::vesk::theme::pad 8 5 8 5]
    ::vesk::parts::segments $bar.modes "" ::vesk::select_mode {::vesk::ops::run set_select_mode} \
        $modes
    foreach {mode icon label key help} $modes {
        ::vesk::fields::on_keys $bar.modes.$mode [list \
            Left [list ::vesk::optionbar::step_mode $mode -1] \
            Right [list ::vesk::optionbar::step_mode $mode 1]]
    }
    build_pick $bar.pick
    ::vesk::parts::hairline $bar.line1
    ttk::frame $bar.tool
    ::vesk::parts::hairline $bar.line2
    build_snap $bar.snap
    ::vesk::parts::hairline $bar.line3
    build_pivot $bar.pivot
    ttk::button $bar.settings -style Icon.Toolbutton -image [::vesk::icons::get settings] \
        -command ::vesk::operations::toggle
    ::vesk::tooltips::attach $bar.settings "Operation settings" Ctrl+E \
        "Hole, bevel, spike, spline, reduce and other numbers."
    build_search $bar.search
    # Packed first, so that a narrow window does not cut them off.
    pack $bar.search $bar.settings -side right
    pack $bar.modes $bar.pick $bar.line1 $bar.tool $bar.line2 $bar.snap $bar.line3 $bar.pivot \
        -side left
    pack configure $bar.pick -padx [::vesk::theme::pad 8 0]
    pack configure $bar.settings -padx [::vesk::theme::pad 4 4]
    ::vesk::parts::at_least $bar 31
    bind $bar <Configure> ::vesk::optionbar::fit
    # New fields have their width only after the geometry managers ran.
    bind $bar.tool <Configure> ::vesk::optionbar::fit
    trace add variable ::vesk::select_mode write ::vesk::optionbar::mode_changed
    show_fields $::vesk::tools::current
}

# build_pick --
#   The buttons of the rubber band, which is pressed until the drag, and of selecting through.
proc ::vesk::optionbar::build_pick {path} {
    ttk::frame $path -style Axis.TFrame -padding [::vesk::theme::px 2]
    ttk::checkbutton $path.band -variable ::vesk::view_tool -onvalue band -offvalue none \
        -command {::vesk::ops::run set_view_tool $::vesk::view_tool}
    ttk::checkbutton $path.through -variable ::prefs_select_through \
        -command {::vesk::menus::changed prefs_select_through {}}
    foreach {name icon words} {band select-box band through select-through prefs_select_through} {
        $path.$name configure -style Segment.Toolbutton -image [::vesk::icons::or_disabled $icon]
        pack $path.$name -side left
        lassign [::vesk::menus::find select \
            [expr {$name eq "band" ? {set_view_tool band} : "prefs_select_through"}]] \
            kind label target key needs help
        ::vesk::tooltips::attach $path.$name $label $key $help
    }
}

proc ::vesk::optionbar::build_snap {path} {
    ttk::frame $path
    ttk::checkbutton $path.on -text Snap -variable ::prefs_gridsnap \
        -command {::vesk::menus::changed prefs_gridsnap {}}
    ttk::entry $path.grid -width 5 -justify right -font VeskNumber \
        -textvariable ::vesk::optionbar::grid_text
    ttk::checkbutton $path.near -text Near -variable ::prefs_snap_near \
        -command {::vesk::menus::changed prefs_snap_near {}}
    pack $path.on $path.grid $path.near -side left -padx [::vesk::theme::pad 0 8]
    pack configure $path.near -padx 0
    ::vesk::fields::follow_preference $path.grid ::vesk::optionbar::grid_text grid number
    ::vesk::tooltips::attach $path.on "Snap to the grid" "" "Points go to multiples of the spacing."
    ::vesk::tooltips::attach $path.grid "Grid spacing" "" "Distance of the snap points."
    ::vesk::tooltips::attach $path.near "Snap to near vertices" "" "Points go to vertices close by."
}

proc ::vesk::optionbar::build_pivot {path} {
    ttk::frame $path
    ttk::label $path.label -image [::vesk::icons::get pivot dim]
    ttk::combobox $path.value -state readonly -width 9 -values {Selection Origin "3D cursor" Picked} \
        -textvariable ::vesk::optionbar::pivot
    pack $path.label $path.value -side left -padx [::vesk::theme::pad 0 6]
    pack configure $path.value -padx 0
    bind $path.value <<ComboboxSelected>> {%W selection clear}
    foreach part {label value} {::vesk::tooltips::attach $path.$part "Pivot" "" "What typed angles turn about, and where factors and mirroring start."}
}

# build_search --
#   A button in the look of a field that opens the command search.
proc ::vesk::optionbar::build_search {path} {
    ttk::frame $path -style Axis.TFrame -padding [::vesk::theme::pad 6 3 6 3] -takefocus 1 \
        -width [::vesk::theme::px 197] -height [::vesk::theme::px 27]
    pack propagate $path 0
    ttk::label $path.icon -style Field.TLabel -image [::vesk::icons::get search dim]
    ttk::label $path.text -style Field.Dim.TLabel -text Search
    ttk::label $path.key -style Field.Hint.TLabel -text F3
    pack $path.icon -side left
    pack $path.text -side left -padx [::vesk::theme::pad 5 0]
    pack $path.key -side right
    foreach part [list $path $path.icon $path.text $path.key] {
        bind $part <Button-1> {::vesk::search::open}
        bind $part <Enter> [list $path state active]
        bind $part <Leave> [list $path state !active]
    }
    foreach event {<Key-Return> <Key-space>} {bind $path $event {::vesk::search::open}}
    ::vesk::fields::lit $path $path
}

# ---- the tool's fields ----

# show_fields --
#   Puts the fields of a tool into the bar.
proc ::vesk::optionbar::show_fields {tool} {
    variable path
    variable shown
    variable level
    if {$path eq "" || $shown eq $tool} {return}
    set shown $tool
    set frame $path.tool
    destroy {*}[winfo children $frame]
    ttk::label $frame.name -text [dict get [::vesk::tools::row $tool] label] -style Bold.TLabel
    pack $frame.name -side left -padx [::vesk::theme::pad 0 10]
    set number 0
    foreach item [::vesk::tools::fields_of $tool] {
        lassign $item label kind key last
        set choices [expr {$kind eq "option" ? $last : ""}]
        set without [expr {$kind eq "option" ? "" : $last}]
        if {$without ne "" && [set ::vesk::tools::$without]} {continue}
        if {$label eq "vector"} {
            add_vector $frame $kind
        } else {
            add_item $frame [incr number] $label $kind $key $choices
        }
    }
    set level -1
    fit_soon
}

# show_again --
#   Builds the fields anew after a change of a switch that some of them depend on.
proc ::vesk::optionbar::show_again {} {
    variable shown
    set tool $shown
    set shown ""
    show_fields $tool
}

# add_item --
#   One field of a tool.
#   kind  bool, int or number: a preference;  switch: a variable of the tools;  run: a command;
#         measures: sizes of the selection;  option: of the tool, a number or one of `choices`
#         (text value ...)
proc ::vesk::optionbar::add_item {frame number label kind {key ""} {choices {}}} {
    set field $frame.f$number
    set gap [::vesk::theme::px 6]
    if {$kind in {bool switch run}} {
        if {$kind eq "switch"} {
            ttk::checkbutton $field -text $label -variable ::vesk::tools::$key \
                -command ::vesk::tools::${key}_changed
        } elseif {$kind eq "bool"} {
            ttk::checkbutton $field -text $label -variable ::prefs_$key \
                -command [list ::vesk::menus::changed prefs_$key {}]
        } else {
            ttk::button $field -text $label -command [list ::vesk::ops::run $key]
        }
        pack $field -side left -padx [list $gap 0]
        return
    }
    ttk::label $frame.l$number -text $label -style Dim.TLabel
    pack $frame.l$number -side left -padx $gap
    if {$kind eq "measures"} {
        ttk::label $field -textvariable ::vesk::tools::measured -style Status.TLabel
        pack $field -side left -padx $gap
    } elseif {$kind eq "option"} {
        add_option $field $key $choices
        pack $field -side left -padx [list 0 $gap]
    } else {
        ttk::entry $field -width 5 -justify right -font VeskNumber \
            -textvariable ::vesk::optionbar::field$number
        ::vesk::fields::follow_preference $field ::vesk::optionbar::field$number $key $kind
        foreach event {<Return> <KP_Enter>} {bind $field $event {+after idle ::vesk::view::focus_last}}
        pack $field -side left -padx [list 0 $gap]
    }
}

# add_option --
#   The field of an option that the executable keeps for a tool.
proc ::vesk::optionbar::add_option {field key choices} {
    set ::vesk::tools::option($key) [vesk get_tool_option $key]
    if {[llength $choices] > 0} {
        ttk::combobox $field -state readonly -width 10 -values [dict keys $choices]
        $field set [dict get [lreverse $choices] $::vesk::tools::option($key)]
        bind $field <<ComboboxSelected>> [list ::vesk::optionbar::choose_option $field $key $choices]
        return
    }
    ttk::entry $field -width 5 -justify right -font VeskNumber \
        -textvariable ::vesk::tools::option($key)
    set apply [list ::vesk::optionbar::type_option $key]
    bind $field <FocusOut> +$apply
    ::vesk::fields::on_keys $field [list Return ::vesk::view::focus_last \
        Escape ::vesk::view::focus_last]
}
proc ::vesk::optionbar::choose_option {field key choices} {
    ::vesk::tools::set_option $key [dict get $choices [$field get]]
    ::vesk::view::focus_last
}
proc ::vesk::optionbar::type_option {key} {
    if {[catch {::vesk::arith::value $::vesk::tools::option($key)} number]} {set number ""}
    ::vesk::tools::set_option $key $number
}

# add_vector --
#   Three axis fields and the button that applies them.
#   start  the number that changes nothing
proc ::vesk::optionbar::add_vector {frame start} {
    foreach axis {x y z} {
        set ::vesk::tools::vector($axis) [::vesk::arith::shown $start]
        set entry [::vesk::fields::axis_field $frame.$axis $axis ::vesk::tools::vector($axis) "" 6]
        ::vesk::fields::on_keys $entry [list Return [list ::vesk::optionbar::apply_vector $start] \
            Escape ::vesk::view::focus_last]
        foreach {key step} {Up 0.1 Down -0.1 Shift-Key-Up 1 Shift-Key-Down -1} {
            bind $entry <$key> [list ::vesk::optionbar::step_vector $axis $step]
        }
        bind $entry <FocusIn> {+%W selection range 0 end}
        bind $entry <FocusOut> +[list ::vesk::optionbar::tidy_vector $axis]
        pack $frame.$axis -side left -padx [::vesk::theme::pad 0 4]
    }
    ttk::button $frame.apply -text Apply -command [list ::vesk::optionbar::apply_vector $start]
    pack $frame.apply -side left
}

# apply_vector --
#   Applies the three numbers once: the next ones start anew, and keys are the views' again.
proc ::vesk::optionbar::apply_vector {start} {
    if {![::vesk::tools::apply]} {return}
    foreach axis {x y z} {set ::vesk::tools::vector($axis) [::vesk::arith::shown $start]}
    ::vesk::view::focus_last
}

proc ::vesk::optionbar::step_vector {axis step} {
    if {[catch {::vesk::arith::value $::vesk::tools::vector($axis)} number]} {return}
    set ::vesk::tools::vector($axis) [::vesk::arith::shown [expr {$number + $step}]]
    return -code break
}

# tidy_vector --
#   Replaces a typed sum by its value; a text that is no sum stays.
proc ::vesk::optionbar::tidy_vector {axis} {
    if {![catch {::vesk::arith::value $::vesk::tools::vector($axis)} number]} {
        set ::vesk::tools::vector($axis) [::vesk::arith::shown $number]
    }
}

proc ::vesk::optionbar::focus_fields {} {
    variable path
    foreach name {x.value f1} {
        if {[winfo exists $path.tool.$name]} {
            focus $path.tool.$name
            return
        }
    }
}

proc ::vesk::optionbar::step_mode {mode step} {
    variable path
    variable modes
    set names [lmap {name icon label key help} $modes {set name}]
    set place [expr {([lsearch -exact $names $mode] + $step) % [llength $names]}]
    focus $path.modes.[lindex $names $place]
    return -code break
}

proc ::vesk::optionbar::mode_changed {args} {
    variable level
    variable shown
    if {$shown in {move rotate scale}} {show_again}
    set level -1
    fit_soon
}

# ---- fitting the width ----

# fit_soon --
#   Once the new widgets have told their widths, each to the frame around it in turn.
proc ::vesk::optionbar::fit_soon {} {
    after idle {update idletasks; ::vesk::optionbar::fit}
}

# fit --
#   Leaves out as few groups as the width requires.
proc ::vesk::optionbar::fit {} {
    variable path
    variable level
    if {![winfo exists $path]} {return}
    set room [expr {[winfo width $path] - 2 * [::vesk::theme::px 8]}]
    if {$room < 100} {return}
    set texts [expr {$room >= [modes_width 1] + [::vesk::theme::px 740]}]
    for {set wanted 0} {$wanted < 4} {incr wanted} {
        if {[needed_width $wanted $texts] <= $room} {break}
    }
    if {$wanted == 4} {set texts 0}
    show_texts $texts
    if {$wanted != $level} {
        set level $wanted
        apply_level $wanted
    }
    set rest [expr {$room - [needed_width $wanted $texts]}]
    set small [::vesk::theme::px 56]
    set full [::vesk::theme::px 197]
    $path.search configure -width [expr {min($full, $small + max(0, $rest))}]
    set narrow [expr {[$path.search cget -width] < [::vesk::theme::px 100]}]
    if {$narrow} {pack forget $path.search.text} elseif {![winfo ismapped $path.search.text]} {
        pack $path.search.text -side left -padx [::vesk::theme::pad 5 0]
    }
}

# show_texts --
#   Whether the inactive modes have their texts, too.
proc ::vesk::optionbar::show_texts {on} {
    variable path
    variable modes
    foreach {mode icon label key help} $modes {
        set compound [expr {$on || $mode eq $::vesk::select_mode ? "left" : "image"}]
        if {[$path.modes.$mode cget -compound] ne $compound} {
            $path.modes.$mode configure -compound $compound
        }
    }
}

# modes_width --
#   Width of the modes, with the texts of all or of the active one.
proc ::vesk::optionbar::modes_width {texts} {
    variable modes
    set width [::vesk::theme::px 4]
    foreach {mode icon label key help} $modes {
        incr width [::vesk::theme::px 31]
        if {$texts || $mode eq $::vesk::select_mode} {
            incr width [expr {[font measure TkDefaultFont $label] + [::vesk::theme::px 6]}]
        }
    }
    return $width
}

# needed_width --
#   Width of the bar at a level, with the search field at its smallest.
proc ::vesk::optionbar::needed_width {level texts} {
    variable path
    set width [expr {[modes_width $texts] + [::vesk::theme::px 86]
        + [winfo reqwidth $path.settings]}]
    foreach group {pick line1 tool} {incr width [winfo reqwidth $path.$group]}
    if {$level < 2} {
        incr width [expr {[winfo reqwidth $path.pivot] + [winfo reqwidth $path.line3]}]
    }
    if {$level < 3} {
        incr width [expr {[winfo reqwidth $path.snap.on] + [winfo reqwidth $path.snap.grid]
            + 2 * [::vesk::theme::px 8] + [winfo reqwidth $path.line2]}]
    }
    if {$level < 1} {incr width [winfo reqwidth $path.snap.near]}
    return $width
}

# apply_level --
#   1: without the near snap; 2: without the pivot; from 3 on without the snap.
proc ::vesk::optionbar::apply_level {level} {
    variable path
    foreach part {line2 snap line3 pivot} {pack forget $path.$part}
    if {$level < 3} {
        pack $path.line2 $path.snap -side left -after $path.tool
    }
    if {$level < 2} {
        pack $path.line3 $path.pivot -side left -after $path.snap
    }
    pack forget $path.snap.near
    if {$level < 1} {pack $path.snap.near -side left}
}

# set_select_mode_ui --
#   The executable's select mode changed: the bar follows.
proc set_select_mode_ui {mode} {
    if {$::vesk::select_mode ne $mode} {set ::vesk::select_mode $mode}
    ::vesk::status::hint
}
