# uvwindow.tcl --
#   The window of texture coordinates: bar with modes, tools, numbers and the picture; the drawing; a
#   panel with everything that arranges coordinates and what is shown; a status line.

namespace eval ::vesk::uvedit {
    variable mode surface       ;# corner, surface or island
    variable tool move          ;# move, rotate or scale
    variable number             ;# fields of the tool: u, v
    variable extent "Proportions"
    variable margin 2           ;# pixels, between packed islands
    variable picture ""         ;# what the choice of pictures shows
    variable option             ;# checker, stretch, overlaps, repeat, snap
    variable info {}            ;# uv_info at the last refresh
    variable edits {}           ;# buttons that need something shown
    variable dragged ""         ;# what the status line tells of a running drag
    array set number {u 0.000 v 0.000}
    array set option {checker 0 stretch 0 overlaps 0 repeat 0 snap 0}

    variable modes {
        corner  m-corner  Corner  1 "Corners, with those joined to them."
        surface m-surface Surface 2 "Surfaces."
        island  m-island  Island  3 "Surfaces that hang together."
    }
    variable tools {
        move   Move   M "Drag what is chosen. X, Y lock an axis."
        rotate Rotate R "Drag to turn. Shift: steps of 15 degrees."
        scale  Scale  S "Drag away from the middle, or a handle. Shift keeps proportions."
    }
    variable hints {
        move   "Drag to move. X, Y lock an axis, digits enter a number."
        rotate "Drag to turn. Shift: steps of 15 degrees, digits enter an angle."
        scale  "Drag to scale. X, Y lock an axis, digits enter a factor."
    }
    # Sections of the panel: title, then buttons {icon label words help}; "call" runs a procedure.
    variable sections {
        Project {
            {u-planar "Planar X" {project planar_x} "As the side view shows it."}
            {u-planar "Planar Y" {project planar_y} "As the plan view shows it."}
            {u-planar "Planar Z" {project planar_z} "As the front view shows it."}
            {u-box Box {project box} "Each surface from the side that it faces."}
            {u-cylinder Cylinder {project cylinder} "Once round the vertical axis; the ends apart."}
            {u-sphere Sphere {project sphere} "Round the middle."}
        }
        Arrange {
            {u-fit Fit {run uv_fit 1} "Fills the square, keeps the proportions."}
            {u-align Align {align} "Brings corners or islands to one line."}
            {u-fliph "Flip U" {run uv_flip u} "Mirrors to the side."}
            {u-flipv "Flip V" {run uv_flip v} "Mirrors upside down."}
            {u-rot90 "Rotate 90" {run uv_rotate_90} "Turns to the left."}
            {u-pack Pack {pack} "Lays islands side by side into the square."}
        }
        Corners {
            {u-weld Weld {run uv_weld} "Brings the chosen corners of each vertex together."}
            {u-split Split {run uv_split} "Parts what is chosen from its neighbours."}
            {u-pixel Snap {run uv_snap} "Moves corners to whole pixels."}
            {u-stretch Relax {run uv_relax 20} "Lowers the distortion; repeat for more."}
        }
    }
    variable sides {left "Left edge" right "Right edge" centre "Centre" top "Top edge"
        bottom "Bottom edge" middle "Middle"}
    variable measures {"Area and shape" 1 Area 2 Shape 3}
    variable measured "Area and shape"
    variable extents {Proportions 1 "Whole square" 2 "Model units" 0}
}

# ---- building ----

proc ::vesk::uvedit::build {w} {
    toplevel $w -class Vesk
    wm withdraw $w
    wm title $w "Texture coordinates - VESK"
    ::vesk::theme::on $w gap
    wm minsize $w [::vesk::theme::px 700] [::vesk::theme::px 480]
    build_bar $w.bar
    build_view $w.view
    build_panel $w.panel
    build_status $w.status
    ::vesk::theme::on [frame $w.under -height [::vesk::theme::px 1]] gap
    ::vesk::theme::on [frame $w.over -height [::vesk::theme::px 1]] gap
    grid $w.bar - -sticky we
    grid $w.under - -sticky we
    grid $w.view $w.panel -sticky nswe
    grid $w.over - -sticky we
    grid $w.status - -sticky we
    grid columnconfigure $w 0 -weight 1
    grid rowconfigure $w 2 -weight 1
    grid configure $w.panel -padx [list [::vesk::theme::px 1] 0]
    bind_window $w
    set width [expr {min([::vesk::theme::px 1040], [winfo screenwidth .] - 40)}]
    set height [expr {min([::vesk::theme::px 700], [winfo screenheight .] - 80)}]
    wm geometry $w ${width}x$height
}

proc ::vesk::uvedit::build_bar {bar} {
    variable modes
    variable tools
    ttk::frame $bar -padding [::vesk::theme::pad 8 5 8 5]
    ttk::frame $bar.modes -style Axis.TFrame -padding [::vesk::theme::px 2]
    foreach {name icon label key help} $modes {
        set button $bar.modes.$name
        ttk::radiobutton $button -style Segment.Toolbutton -text $label -compound left \
            -variable ::vesk::uvedit::mode -value $name -image [::vesk::icons::get $icon] \
            -command [list ::vesk::uvedit::run uv_select_mode $name]
        ::vesk::tips::attach $button $label $key $help
        ::pack $button -side left
    }
    ttk::frame $bar.tools
    foreach {name label key help} $tools {
        set button $bar.tools.$name
        ttk::radiobutton $button -style Tool.Toolbutton -variable ::vesk::uvedit::tool \
            -value $name -command [list ::vesk::uvedit::choose_tool $name] \
            -image [list [::vesk::icons::get $name] selected [::vesk::icons::get $name active]]
        ::vesk::tips::attach $button $label $key $help
        ::pack $button -side left -padx [::vesk::theme::pad 0 2]
    }
    ttk::frame $bar.numbers
    foreach {name colour} {u x v y} {
        set entry [::vesk::dialogs::axis_field $bar.numbers.$name $colour \
            ::vesk::uvedit::number($name) "" 7]
        $bar.numbers.$name.letter configure -text [string toupper $name]
        foreach event {<Return> <KP_Enter>} {bind $entry $event {::vesk::uvedit::apply; break}}
        bind $entry <Escape> {focus .uv.view.togl; break}
        bind $entry <FocusIn> {+%W selection range 0 end}
        ::pack $bar.numbers.$name -side left -padx [::vesk::theme::pad 0 4]
    }
    ttk::button $bar.numbers.apply -text Apply -command ::vesk::uvedit::apply
    ::pack $bar.numbers.apply -side left
    ttk::checkbutton $bar.snap -text "Snap to pixels" -variable ::vesk::uvedit::option(snap) \
        -command {::vesk::uvedit::set_option snap}
    ::vesk::tips::attach $bar.snap "Snap to pixels" "" \
        "Drags stop at whole pixels; Control does the opposite."
    ttk::label $bar.label -text Texture -style Dim.TLabel
    ttk::combobox $bar.picture -state readonly -width 20 \
        -textvariable ::vesk::uvedit::picture -postcommand ::vesk::uvedit::list_pictures
    bind $bar.picture <<ComboboxSelected>> {::vesk::uvedit::choose_picture; %W selection clear}
    ::pack $bar.picture $bar.label -side right -padx [::vesk::theme::pad 8 0]
    ::pack configure $bar.picture -padx [::vesk::theme::pad 8 0]
    foreach number {1 2 3} {::vesk::optionbar::hairline $bar.line$number}
    ::pack $bar.modes $bar.line1 $bar.tools $bar.line2 $bar.numbers $bar.line3 $bar.snap -side left
}

# build_view --
#   The drawing in a frame that is lit while it has the focus, and its chip.
proc ::vesk::uvedit::build_view {path} {
    ::vesk::theme::on [frame $path] -
    togl $path.togl -rgba 1 -double 1 -depth 1 -stencil 1 -ident viewuv -sharelist viewxy \
        -width 400 -height 300
    ::pack $path.togl -fill both -expand 1 -padx [::vesk::view::ring] -pady [::vesk::view::ring]
    ::vesk::uv_bind $path.togl
    ttk::menubutton $path.chip -style Chip.TMenubutton -takefocus 0 -cursor hand2 -text UV \
        -menu $path.chip.menu
    menu $path.chip.menu -tearoff 0
    ::vesk::theme::recolour $path.chip.menu
    foreach row {
        {call "&Fit the square" {vesk uv_view_fit 0} F ""}
        {call "Fit what is &chosen" {vesk uv_view_fit 1} Shift+F ""}
        {call "Zoom &in" {vesk uv_view_zoom 1} + ""}
        {call "Zoom &out" {vesk uv_view_zoom -1} - ""}
        {line}
        {check "C&hecker" {::vesk::uvedit::option(checker) ::vesk::uvedit::set_option checker}}
        {check "&Stretch" {::vesk::uvedit::option(stretch) ::vesk::uvedit::set_option stretch}}
        {check "O&verlaps" {::vesk::uvedit::option(overlaps) ::vesk::uvedit::set_option overlaps}}
        {check "&Repeat texture" {::vesk::uvedit::option(repeat) ::vesk::uvedit::set_option repeat}}
    } {::vesk::menus::add_row $path.chip.menu $row}
    place $path.chip -x [expr {[::vesk::view::ring] + [::vesk::theme::px 7]}] \
        -y [expr {[::vesk::view::ring] + [::vesk::theme::px 6]}]
    bind $path.togl <Button> {+focus %W}
    bind $path.togl <Enter> {+::vesk::uvedit::entered}
    bind $path.togl <Leave> {+::vesk::uvedit::pointer "" "" "" ""}
    bind $path.togl <FocusIn> {+::vesk::uvedit::colour_frame}
    bind $path.togl <FocusOut> {+::vesk::uvedit::colour_frame}
    bind $path.togl <Key> {if {[::vesk::uvedit::key %K %s]} break}
    foreach event {<Tab> <Shift-Tab> <ISO_Left_Tab>} {
        bind $path.togl $event {if {[vesk uv_key %K] eq "1"} break}
    }
    colour_frame
}

proc ::vesk::uvedit::build_panel {path} {
    variable sections
    variable edits {}
    variable extents
    ttk::frame $path -style Panel.TFrame -padding [::vesk::theme::pad 12 10 10 10]
    set row -1
    set count 0
    dict for {title buttons} $sections {
        ttk::label $path.title[incr row] -text $title -style Panel.Bold.TLabel
        grid $path.title$row - -row $row -sticky w \
            -pady [::vesk::theme::pad [expr {$row ? 12 : 0}] 4] -padx [::vesk::theme::pad 2 0]
        set column 1
        foreach button $buttons {
            if {[set column [expr {!$column}]] == 0} {incr row}
            lassign $button icon label words help
            set w $path.b[incr count]
            ttk::button $w -style Panel.Icon.Toolbutton -text $label -compound left \
                -image [list [::vesk::icons::get $icon] disabled \
                    [::vesk::icons::get $icon disabled]] \
                -command [call_of $words]
            ::vesk::tips::attach $w $label "" $help
            grid $w -row $row -column $column -sticky w
            lappend edits $w
        }
        if {$title eq "Project"} {
            ttk::combobox $path.extent -state readonly -width 12 -style Panel.TCombobox \
                -values [dict keys $extents] -textvariable ::vesk::uvedit::extent
            bind $path.extent <<ComboboxSelected>> {%W selection clear}
            ::vesk::tips::attach $path.extent "Extent" "" \
                "What the whole square is: all of it in proportion, each side by itself, a unit."
            grid $path.extent - -row [incr row] -sticky we -pady [::vesk::theme::pad 4 0]
        }
        if {$title eq "Arrange"} {
            ttk::label $path.lmargin -text "Pack margin, pixels" -style Panel.Dim.TLabel
            ttk::entry $path.margin -width 5 -justify right -font VeskNumber \
                -style Panel.TEntry -textvariable ::vesk::uvedit::margin
            foreach event {<Return> <KP_Enter>} {
                bind $path.margin $event {::vesk::uvedit::pack; break}
            }
            bind $path.margin <Escape> {focus .uv.view.togl; break}
            grid $path.lmargin -row [incr row] -column 0 -sticky w -padx [::vesk::theme::pad 4 0]
            grid $path.margin -row $row -column 1 -sticky e -pady [::vesk::theme::pad 4 0]
        }
    }
    ttk::checkbutton $path.keep -text "Keep the picture in place" -style Panel.TCheckbutton \
        -variable ::vesk::uvedit::keep -command ::vesk::uvedit::keep_changed
    ::vesk::tips::attach $path.keep "Keep the picture in place" "" \
        "Coordinates slide while vertices move in the views."
    grid $path.keep - -row [incr row] -sticky w -pady [::vesk::theme::pad 6 0]
    build_show $path [incr row]
    menu $path.align -tearoff 0
    ::vesk::theme::recolour $path.align
    foreach {side label} $::vesk::uvedit::sides {
        ::vesk::menus::add_row $path.align \
            [list call $label [list ::vesk::uvedit::run uv_align $side] "" ""]
    }
    grid columnconfigure $path {0 1} -weight 1 -uniform buttons
}

# build_show --
#   The check boxes of what is drawn, and what the stretch comes to.
proc ::vesk::uvedit::build_show {path row} {
    ttk::label $path.show -text Show -style Panel.Bold.TLabel
    grid $path.show - -row $row -sticky w -pady [::vesk::theme::pad 12 4] \
        -padx [::vesk::theme::pad 2 0]
    foreach {name label help} {
        checker  Checker          "A checker instead of the picture."
        stretch  Stretch          "Where the picture is spread thin or crowded."
        overlaps Overlaps         "Surfaces that lie on others."
        repeat   "Repeat texture" "The picture beyond the square."
    } {
        ttk::checkbutton $path.$name -text $label -style Panel.TCheckbutton \
            -variable ::vesk::uvedit::option($name) \
            -command [list ::vesk::uvedit::set_option $name]
        ::vesk::tips::attach $path.$name $label "" $help
        grid $path.$name - -row [incr row] -sticky w -pady [::vesk::theme::px 3]
        if {$name ne "stretch"} {continue}
        ttk::combobox $path.measured -state readonly -width 14 -style Panel.TCombobox \
            -values [dict keys $::vesk::uvedit::measures] -textvariable ::vesk::uvedit::measured
        bind $path.measured <<ComboboxSelected>> {
            ::vesk::uvedit::set_option stretch
            %W selection clear
        }
        ::vesk::tips::attach $path.measured "Stretch" "" "What the colours tell: the worse of both, or one."
        grid $path.measured - -row [incr row] -sticky we -pady [::vesk::theme::pad 2 4]
    }
    ttk::checkbutton $path.smooth -text "Smooth lines" -style Panel.TCheckbutton \
        -variable ::prefs_uveditor_antialias -command {vesk redraw_all}
    ::vesk::tips::attach $path.smooth "Smooth lines" "" "Outlines without steps."
    grid $path.smooth - -row [incr row] -sticky w -pady [::vesk::theme::px 3]
    ttk::label $path.measure -style Panel.Dim.TLabel -justify left -anchor w \
        -wraplength [::vesk::theme::px 190]
    grid $path.measure - -row [incr row] -sticky we -pady [::vesk::theme::pad 6 0]
}

proc ::vesk::uvedit::build_status {path} {
    ttk::frame $path -padding [::vesk::theme::pad 12 7 12 7]
    ttk::label $path.hint -anchor w
    ttk::label $path.place -font VeskNumber -style Dim.TLabel
    ttk::label $path.pixel -font VeskNumber -style Dim.TLabel
    ttk::label $path.counts -font VeskNumber -style Dim.TLabel
    ::pack $path.counts $path.pixel $path.place -side right -padx [::vesk::theme::pad 18 0]
    ::pack $path.hint -side left -fill x -expand 1
}

# bind_window --
#   Keys that work wherever the focus is, as in the main window.
proc ::vesk::uvedit::bind_window {w} {
    foreach {event words} {<Control-Key-z> undo <Control-Key-Z> redo <Control-Key-y> redo} {
        bind $w $event [list ::vesk::uvedit::undo_key %W $words]
    }
    foreach event {<Key-F8> <Control-Key-w>} {bind $w $event {destroy .uv; break}}
    wm protocol $w WM_DELETE_WINDOW [list destroy $w]
}

# ---- what buttons and keys do ----

# call_of --
#   The script of a button: a procedure of this window with its words.
proc ::vesk::uvedit::call_of {words} {
    return [lreplace $words 0 0 ::vesk::uvedit::[lindex $words 0]]
}

# run --
#   An executable command, told in the window's own status line too.
proc ::vesk::uvedit::run {args} {
    ::vesk::ops::run {*}$args
    refresh
}

proc ::vesk::uvedit::project {kind} {
    variable extent
    variable extents
    run uv_project $kind [dict get $extents $extent]
}

proc ::vesk::uvedit::pack {} {
    variable margin
    if {[catch {::vesk::arith::value $margin} pixels] || $pixels < 0} {
        ::vesk::dialogs::mark_invalid .uv.panel.margin 1
        tell "The margin is a number of pixels, 0 or more."
        return
    }
    ::vesk::dialogs::mark_invalid .uv.panel.margin 0
    run uv_pack $pixels
}

proc ::vesk::uvedit::align {} {
    foreach w [winfo children .uv.panel] {
        if {[winfo class $w] eq "TButton" && [$w cget -text] eq "Align"} {
            tk_popup .uv.panel.align [winfo rootx $w] [expr {[winfo rooty $w] + [winfo height $w]}]
        }
    }
}

proc ::vesk::uvedit::choose_tool {name} {
    variable tool $name
    variable number
    vesk uv_tool $name
    array set number [dict get {move {u 0.000 v 0.000} rotate {u 0.000 v 0.000}
        scale {u 1.000 v 1.000}} $name]
    set numbers .uv.bar.numbers
    $numbers.u.letter configure -text [expr {$name eq "rotate" ? "\u00b0" : "U"}]
    if {$name eq "rotate"} {
        ::pack forget $numbers.v
    } else {
        ::pack $numbers.v -side left -padx [::vesk::theme::pad 0 4] -before $numbers.apply
    }
    show_hint
}

# apply --
#   Runs the tool with the typed numbers.
proc ::vesk::uvedit::apply {} {
    variable tool
    variable number
    foreach name {u v} {
        if {[catch {::vesk::arith::value $number($name)} $name]} {
            ::vesk::dialogs::mark_invalid .uv.bar.numbers.$name.value 1
            tell [set $name]
            return
        }
        ::vesk::dialogs::mark_invalid .uv.bar.numbers.$name.value 0
        set number($name) [::vesk::arith::shown [set $name]]
    }
    switch -- $tool {
        move   {run uv_move $u $v}
        rotate {run uv_rotate $u}
        scale  {run uv_scale $u $v}
    }
}

proc ::vesk::uvedit::set_option {name} {
    variable option
    variable measures
    variable measured
    set value $option($name)
    if {$name eq "stretch" && $value} {set value [dict get $measures $measured]}
    vesk uv_option $name $value
    show_measure
}

# key --
#   A key in the drawing: first for a running drag, then the window's own. Returns 1 when used.
proc ::vesk::uvedit::key {keysym state} {
    if {[vesk uv_key $keysym] eq "1"} {return 1}
    if {$state & 12} {return [expr {$state & 4 && [control_key $keysym]}]}
    set step [expr {$state & 1 ? 10 : 1}]
    switch -- $keysym {
        1 {run uv_select_mode corner}
        2 {run uv_select_mode surface}
        3 {run uv_select_mode island}
        m - M {choose_tool move}
        r - R {choose_tool rotate}
        s - S {choose_tool scale}
        a - A {run uv_select all}
        i - I {run uv_select invert}
        l - L {run uv_select linked}
        Escape {run uv_select none}
        f {vesk uv_view_fit 0}
        F {vesk uv_view_fit 1}
        plus - equal - KP_Add {vesk uv_view_zoom 1}
        minus - KP_Subtract {vesk uv_view_zoom -1}
        Left  {run uv_move_pixels -$step 0}
        Right {run uv_move_pixels $step 0}
        Up    {run uv_move_pixels 0 $step}
        Down  {run uv_move_pixels 0 -$step}
        default {return 0}
    }
    return 1
}
proc ::vesk::uvedit::control_key {keysym} {
    if {$keysym ne "a"} {return 0}
    run uv_select all
    return 1
}

# undo_key --
#   Undo is the model's, unless a text is being edited.
proc ::vesk::uvedit::undo_key {w command} {
    if {[winfo class $w] in {Entry TEntry} && [::vesk::dialogs::being_typed $w]} {return}
    run $command
    return -code break
}

# popup --
#   A right click in the drawing.
proc ::vesk::uvedit::popup {x y} {
    variable sections
    if {![winfo exists .uv]} {return}
    set menu .uv.popup
    destroy $menu
    menu $menu -tearoff 0
    ::vesk::theme::recolour $menu
    foreach {label words key} {
        "Choose &all" {uv_select all} A "Choose &none" {uv_select none} Esc
        "&Invert" {uv_select invert} I "&Linked islands" {uv_select linked} L
        "&Overlapping" {uv_select overlapping} "" "&Flipped" {uv_select flipped} ""
    } {
        ::vesk::menus::add_row $menu [list call $label [list ::vesk::uvedit::run {*}$words] $key ""]
    }
    foreach title {Arrange Corners} {
        $menu add separator
        foreach button [dict get $sections $title] {
            lassign $button icon label words help
            ::vesk::menus::add_row $menu [list call $label [call_of $words] "" ""]
        }
    }
    tk_popup $menu {*}[winfo pointerxy .uv]
}

# ---- pictures ----

proc ::vesk::uvedit::list_pictures {} {
    .uv.bar.picture configure -values [concat [list "Of the objects"] \
        [lmap texture [vesk texture_list] {file tail [lindex $texture 0]}]]
}
proc ::vesk::uvedit::choose_picture {} {
    vesk uv_option picture [expr {[.uv.bar.picture current] - 1}]
    refresh
}

# ---- showing ----

# refresh --
#   Brings everything up to date with the executable.
proc ::vesk::uvedit::refresh {} {
    variable info
    variable mode
    variable keep
    variable edits
    if {![winfo exists .uv.status.counts]} {return}
    set before $info
    set info [vesk uv_info]
    set mode [dict get $info mode]
    set keep [dict get $info keep]
    if {$info eq $before} {return}
    set shown [dict get $info surfaces]
    foreach button $edits {$button state [expr {$shown ? "!disabled" : "disabled"}]}
    .uv.bar.numbers.apply state [expr {$shown ? "!disabled" : "disabled"}]
    .uv.status.counts configure -text [count_text]
    show_picture
    show_hint
    show_measure
}

proc ::vesk::uvedit::show_picture {} {
    variable picture
    variable info
    set chosen [dict get [vesk uv_option] picture]
    if {$chosen >= 0} {
        set picture [file tail [lindex [vesk texture_list] $chosen 0]]
    } else {
        set name [dict get $info picture]
        set picture [expr {$name eq "" ? "No texture" : [file tail $name]}]
    }
}

# count_text --
#   "1 of 9 islands, 20 of 183 surfaces".
proc ::vesk::uvedit::count_text {} {
    variable info
    dict with info {
        if {$surfaces == 0} {return ""}
        set text "[::vesk::arith::grouped $chosen_islands] of\
            [::vesk::arith::grouped $islands] island[expr {$islands == 1 ? "" : "s"}], "
        if {$mode eq "corner"} {
            return "$text[::vesk::arith::grouped $chosen_corners] of\
                [::vesk::arith::grouped $corners] corners"
        }
        return "$text[::vesk::arith::grouped $chosen_surfaces] of\
            [::vesk::arith::grouped $surfaces] surface[expr {$surfaces == 1 ? "" : "s"}]"
    }
}

proc ::vesk::uvedit::show_hint {} {
    variable info
    variable tool
    variable hints
    variable dragged
    if {![winfo exists .uv.status.hint]} {return}
    if {$dragged ne ""} {
        tell $dragged
        return
    }
    if {![dict exists $info surfaces] || [dict get $info surfaces] == 0} {
        tell "Select objects or surfaces in the views."
    } elseif {[dict get $info chosen_corners] == 0} {
        tell "Click or drag a rectangle to choose; buttons work on everything shown."
    } else {
        tell [dict get $hints $tool]
    }
}

proc ::vesk::uvedit::tell {text} {
    if {[winfo exists .uv.status.hint]} {.uv.status.hint configure -text $text}
}

# show_measure --
#   Numbers of the stretch and overlaps, while they are shown.
proc ::vesk::uvedit::show_measure {} {
    variable option
    set lines {}
    if {$option(stretch)} {
        set stretch [vesk uv_stretch]
        if {[llength $stretch]} {
            dict with stretch {
                lappend lines "Area \u00d7 [format %.2f $area_least] to [format %.2f $area_most]" \
                    "Shape 1 : [format %.2f $angle_mean], at most [format %.2f $angle_most]"
                if {$flipped} {lappend lines "[::vesk::arith::grouped $flipped] flipped"}
            }
        }
    }
    if {$option(overlaps)} {
        lappend lines "[::vesk::arith::grouped [vesk uv_overlaps]] surfaces overlap"
    }
    .uv.panel.measure configure -text [join $lines \n]
}

# pointer --
#   Where the pointer is; empty texts when it left. Pixels count from the upper left corner.
proc ::vesk::uvedit::pointer {u v x y} {
    variable info
    if {![winfo exists .uv.status.place]} {return}
    if {$u eq ""} {
        .uv.status.place configure -text ""
        .uv.status.pixel configure -text ""
        return
    }
    .uv.status.place configure -text "U  $u    V  $v"
    if {[dict exists $info pixels]} {
        lassign [dict get $info pixels] width height
        .uv.status.pixel configure -text "$x, [format %.0f [expr {$height - $y}]] px of\
            [format %.0f $width] \u00d7 [format %.0f $height]"
    }
}

# drag --
#   How far a running drag has come; "" at its end.
proc ::vesk::uvedit::drag {text} {
    variable dragged $text
    show_hint
}

proc ::vesk::uvedit::entered {} {
    set now [focus]
    if {$now eq "" || [winfo toplevel $now] ne ".uv"} {return}
    if {[winfo class $now] ni {Entry TEntry TCombobox}} {focus .uv.view.togl}
}

# colour_frame --
#   The drawing's frame is lit while it has the focus; the chip lies on its background.
proc ::vesk::uvedit::colour_frame {} {
    if {![winfo exists .uv.view.togl]} {return}
    set colour [expr {[focus] eq ".uv.view.togl" ? "view_ring" : "gap"}]
    if {$::vesk::theme::current eq "contrast" && $colour eq "gap"} {set colour line}
    .uv.view configure -background [::vesk::theme::colour $colour]
    ::pack configure .uv.view.togl -padx [::vesk::view::ring] -pady [::vesk::view::ring]
}

::vesk::ops::listen any ::vesk::uvedit::refresh
::vesk::theme::follow ::vesk::uvedit::colour_frame
