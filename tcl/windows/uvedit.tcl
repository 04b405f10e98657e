# uvedit.tcl --
#   The window of texture coordinates: a bar with modes, tools, numbers and the picture; the
#   drawing; a panel (uvedit_panel.tcl); a status line.

namespace eval ::vesk::uvedit {
    variable mode surface       ;# corner, surface or island
    variable tool move          ;# move, rotate or scale
    variable number             ;# fields of the tool: u, v
    variable picture ""         ;# text of the box that chooses the picture
    variable option             ;# checker, stretch, overlaps, repeat, snap
    variable info {}            ;# uv_info at the last refresh
    variable edits {}           ;# buttons that need surfaces in the drawing
    variable dragged ""         ;# text of the status line during a drag
    variable told 0             ;# milliseconds at the last message, which hints leave for a while
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
}

::vesk::need windows uvedit_panel

# open --
#   F8: shows the window, in front of the others. F8 in it closes it.
proc ::vesk::uvedit::open {} {
    if {![winfo exists .uv]} {build .uv}
    wm deiconify .uv
    raise .uv
    focus .uv.view.togl
    refresh
}

# keep_changed --
#   The switch that keeps pictures in place was turned.
proc ::vesk::uvedit::keep_changed {} {
    variable keep
    ::vesk::ops::run uv_keep $keep
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
    ::vesk::parts::segments $bar.modes "" ::vesk::uvedit::mode \
        {::vesk::uvedit::run uv_select_mode} $modes
    ttk::frame $bar.tools
    foreach {name label key help} $tools {
        set button $bar.tools.$name
        ttk::radiobutton $button -style Tool.Toolbutton -variable ::vesk::uvedit::tool \
            -value $name -command [list ::vesk::uvedit::choose_tool $name] \
            -image [list [::vesk::icons::get $name] selected [::vesk::icons::get $name active]]
        ::vesk::tooltips::attach $button $label $key $help
        pack $button -side left -padx [::vesk::theme::pad 0 2]
    }
    ttk::frame $bar.numbers
    foreach name {u v} {
        set entry [::vesk::fields::axis_field $bar.numbers.$name $name \
            ::vesk::uvedit::number($name) "" 7]
        ::vesk::fields::on_keys $entry {Return ::vesk::uvedit::apply Escape {focus .uv.view.togl}}
        bind $entry <FocusIn> {+%W selection range 0 end}
        pack $bar.numbers.$name -side left -padx [::vesk::theme::pad 0 4]
    }
    ttk::button $bar.numbers.apply -text Apply -command ::vesk::uvedit::apply
    pack $bar.numbers.apply -side left
    ttk::checkbutton $bar.snap -text "Snap to pixels" -variable ::vesk::uvedit::option(snap) \
        -command {::vesk::uvedit::set_option snap}
    ::vesk::tooltips::attach $bar.snap "Snap to pixels" "" \
        "Drags stop at whole pixels; Control does the opposite."
    ttk::label $bar.label -text Texture -style Dim.TLabel
    ttk::combobox $bar.picture -state readonly -width 20 \
        -textvariable ::vesk::uvedit::picture -postcommand ::vesk::uvedit::list_pictures
    bind $bar.picture <<ComboboxSelected>> {::vesk::uvedit::choose_picture; %W selection clear}
    pack $bar.picture $bar.label -side right -padx [::vesk::theme::pad 8 0]
    pack configure $bar.picture -padx [::vesk::theme::pad 8 0]
    foreach number {1 2 3} {::vesk::parts::hairline $bar.line$number}
    pack $bar.modes $bar.line1 $bar.tools $bar.line2 $bar.numbers $bar.line3 $bar.snap -side left
}

# build_view --
#   The drawing in a frame that is lit while it has the focus, and its chip.
proc ::vesk::uvedit::build_view {path} {
    ::vesk::theme::on [frame $path] -
    togl $path.togl -rgba 1 -double 1 -depth 1 -stencil 1 -ident viewuv -sharecontext viewxyz \
        -width 400 -height 300
    pack $path.togl -fill both -expand 1 -padx [::vesk::view::ring] -pady [::vesk::view::ring]
    ::vesk::uv_bind $path.togl
    ::vesk::view::build_chip $path UV
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
    bind $path.togl <Button> {+focus %W}
    bind $path.togl <Enter> {+::vesk::uvedit::entered}
    bind $path.togl <Leave> {+::vesk::uvedit::pointer "" "" "" ""}
    foreach event {<FocusIn> <FocusOut>} {bind $path.togl $event {+::vesk::uvedit::colour_frame}}
    bind $path.togl <Key> {if {[::vesk::uvedit::key %K %s]} break}
    foreach event {<Tab> <Shift-Tab> <ISO_Left_Tab>} {
        bind $path.togl $event {if {[vesk uv_key %K] eq "1"} break}
    }
    colour_frame
}

proc ::vesk::uvedit::build_status {path} {
    ttk::frame $path -padding [::vesk::theme::pad 12 7 12 7]
    ttk::label $path.hint -anchor w
    ttk::label $path.place -font VeskNumber -style Dim.TLabel
    ttk::label $path.pixel -font VeskNumber -style Dim.TLabel
    ttk::label $path.counts -font VeskNumber -style Dim.TLabel
    pack $path.counts $path.pixel $path.place -side right -padx [::vesk::theme::pad 18 0]
    pack $path.hint -side left -fill x -expand 1
}

# bind_window --
#   Keys of the whole window, as in the main window.
proc ::vesk::uvedit::bind_window {w} {
    foreach {event words} {<Control-Key-z> undo <Control-Key-Z> redo <Control-Key-y> redo} {
        bind $w $event [list ::vesk::uvedit::undo_key %W $words]
    }
    foreach event {<Key-F8> <Control-Key-w>} {bind $w $event {destroy .uv; break}}
    wm protocol $w WM_DELETE_WINDOW [list destroy $w]
}

# ---- actions of buttons and keys ----

# run --
#   Runs an executable command; the refresh that follows shows its result.
proc ::vesk::uvedit::run {args} {::vesk::ops::run {*}$args}

proc ::vesk::uvedit::choose_tool {name} {
    variable tool $name
    variable number
    vesk uv_tool $name
    array set number [dict get {move {u 0.000 v 0.000} rotate {u 0.000 v 0.000}
        scale {u 1.000 v 1.000}} $name]
    set numbers .uv.bar.numbers
    $numbers.u.letter configure -text [expr {$name eq "rotate" ? "\u00b0" : "U"}]
    if {$name eq "rotate"} {
        pack forget $numbers.v
    } else {
        pack $numbers.v -side left -padx [::vesk::theme::pad 0 4] -before $numbers.apply
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
            ::vesk::fields::mark_invalid .uv.bar.numbers.$name.value 1
            tell [set $name]
            return
        }
        ::vesk::fields::mark_invalid .uv.bar.numbers.$name.value 0
        set number($name) [::vesk::arith::shown [set $name]]
    }
    switch -- $tool {
        move   {run uv_move $u $v}
        rotate {run uv_rotate $u}
        scale  {run uv_scale $u $v}
    }
}

# key --
#   Handles a key in the drawing, first for a running drag, then as a key of the window. Returns 1
#   when the key has an effect.
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
#   Undo and redo belong to the model, unless a text is being edited.
proc ::vesk::uvedit::undo_key {w command} {
    if {[winfo class $w] in {Entry TEntry} && [::vesk::fields::being_typed $w]} {return}
    run $command
    return -code break
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
#   Shows the present state of the executable.
proc ::vesk::uvedit::refresh {} {
    variable info
    variable mode
    variable keep
    variable edits
    if {![winfo exists .uv.status.counts] || [vesk uv_view_waits] eq "gathers"} {return}
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
#   The counts in words: "1 of 9 islands, 20 of 183 surfaces".
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
    variable told
    if {[clock milliseconds] - $told < 4000} {return}
    if {![dict exists $info surfaces] || [dict get $info surfaces] == 0} {
        tell "Select objects or surfaces in the views."
    } elseif {[dict get $info chosen_corners] == 0} {
        tell "Click or drag a rectangle to choose; buttons work on everything shown."
    } else {
        tell [dict get $hints $tool]
    }
}

# message --
#   Shows a message of an operation in this window's own line.
proc ::vesk::uvedit::message {text} {
    variable told [clock milliseconds]
    tell $text
    after cancel ::vesk::uvedit::show_hint
    after 4100 ::vesk::uvedit::show_hint
}
proc ::vesk::uvedit::tell {text} {
    if {[winfo exists .uv.status.hint]} {.uv.status.hint configure -text $text}
}

# pointer --
#   Shows the place of the pointer; empty texts after it left. Pixels count from the upper left
#   corner.
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
#   Shows the distance of a running drag; "" at its end.
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
#   Lights the frame of the drawing while it has the focus.
proc ::vesk::uvedit::colour_frame {} {
    if {[winfo exists .uv.view.togl]} {::vesk::view::colour_frame .uv.view}
}

# ---- what the executable calls; it only does while the window stands ----

proc uvedit_pointer {u v x y} {::vesk::uvedit::pointer $u $v $x $y}
proc uvedit_drag {text} {::vesk::uvedit::drag $text}
proc uvedit_gathered {} {::vesk::uvedit::refresh}
proc uvedit_measured {} {::vesk::uvedit::show_measure}
proc uvedit_menu {x y} {::vesk::uvedit::popup $x $y}

::vesk::ops::listen any ::vesk::uvedit::refresh
::vesk::theme::follow ::vesk::uvedit::colour_frame
