# dialogs.tcl --
#   Windows beside the main one: making, placing and waiting for them; a question with buttons; a
#   text to read.

namespace eval ::vesk::dialogs {
    variable answers            ;# window -> its answer
    variable focus_before       ;# window -> widget that had the focus
}

# ---- making and showing ----

# window --
#   Makes a window that belongs to the main one, still hidden; Escape closes it.
#   margin  of the frame .in that fills it; "" makes none
proc ::vesk::dialogs::window {w title {margin ""}} {
    destroy $w
    toplevel $w -class Dialog
    wm withdraw $w
    wm title $w $title
    wm transient $w .
    ::vesk::theme::on $w panel
    bind $w <Escape> [list destroy $w]
    if {$margin ne ""} {
        ttk::frame $w.in -style Panel.TFrame -padding [::vesk::theme::px $margin]
        pack $w.in -fill both -expand 1
    }
}

# show --
#   Shows a window over the middle of the main one.
proc ::vesk::dialogs::show {w focus} {
    update idletasks
    place_over $w
    wm deiconify $w
    focus $focus
}

# place_over --
#   Puts a window over the middle of the main one, all of it on the screen: a window that is larger
#   than the screen gets smaller.
proc ::vesk::dialogs::place_over {w} {
    set room_x [winfo screenwidth $w]
    set room_y [expr {[winfo screenheight $w] - [::vesk::theme::px 30]}]
    set width [expr {min($room_x, [winfo reqwidth $w])}]
    set height [expr {min($room_y, [winfo reqheight $w])}]
    set x [expr {[winfo rootx .] + ([winfo width .] - $width) / 2}]
    set y [expr {[winfo rooty .] + ([winfo height .] - $height) / 3}]
    set geometry +[expr {max(0, min($x, $room_x - $width))}]+[expr {max(0, min($y, $room_y - $height))}]
    if {$width < [winfo reqwidth $w] || $height < [winfo reqheight $w]} {
        lassign [wm minsize $w] least_x least_y
        wm minsize $w [expr {min($least_x, $width)}] [expr {min($least_y, $height)}]
        set geometry ${width}x$height$geometry
    }
    wm geometry $w $geometry
}

# ---- windows that wait for an answer ----

# modal --
#   Makes a window for `wait`.
#   escape  the answer of Escape and of the window manager's close button
proc ::vesk::dialogs::modal {w title escape {margin ""}} {
    window $w $title $margin
    foreach way [list [list bind $w <Escape>] [list wm protocol $w WM_DELETE_WINDOW]] {
        {*}$way [list ::vesk::dialogs::answer $w $escape]
    }
}

proc ::vesk::dialogs::answer {w text} {
    variable answers
    set answers($w) $text
}

# wait --
#   Shows a window with a grab and returns the answer. The focus goes back afterwards.
proc ::vesk::dialogs::wait {w focus} {
    variable answers
    variable focus_before
    set focus_before($w) [focus]
    update idletasks
    place_over $w
    wm deiconify $w
    # A grab fails while the window is not yet viewable.
    tkwait visibility $w
    catch {grab set $w}
    raise $w
    focus -force $focus
    vwait ::vesk::dialogs::answers($w)
    grab release $w
    # The server leaves the keyboard to nobody when the window that has it goes.
    set had_keyboard [string match $w* [focus]]
    set back [expr {[winfo exists $focus_before($w)] ? $focus_before($w) : "."}]
    if {$had_keyboard} {focus -force $back} else {focus $back}
    destroy $w
    return $answers($w)
}

# question --
#   Asks a question; returns the name of the chosen answer.
#   answers   name label pairs from left to right
#   default   the answer of Return;  escape  the answer of Escape
#   model     a model file whose picture is shown beside the text
proc ::vesk::dialogs::question {title text answers default escape {model ""}} {
    set w .question
    modal $w VESK $escape 20
    ttk::label $w.in.title -text $title -style Panel.Bold.TLabel
    ttk::label $w.in.text -text $text -style Panel.Dim.TLabel \
        -wraplength [::vesk::theme::px 380] -justify left
    if {$model ne ""} {
        set side [::vesk::theme::px 160]
        ::vesk::theme::on [canvas $w.in.picture -width $side -height $side] field
        pack $w.in.picture -side left -padx [::vesk::theme::pad 0 20]
        ::vesk::thumbs::request $model $side [list ::vesk::dialogs::show_picture $w.in.picture]
    }
    pack $w.in.title $w.in.text -anchor w -pady [::vesk::theme::pad 0 8]
    ttk::frame $w.in.row -style Panel.TFrame
    pack $w.in.row -fill x -pady [::vesk::theme::pad 10 0]
    foreach {name label} $answers {
        ttk::button $w.in.row.$name -text $label \
            -style [expr {$name eq $default ? "Panel.Default.TButton" : "Panel.TButton"}] \
            -command [list ::vesk::dialogs::answer $w $name]
    }
    # Of three answers the one that loses something stands apart at the left.
    set names [dict keys $answers]
    if {[llength $names] > 2} {
        pack $w.in.row.[lindex $names 0] -side left -padx [::vesk::theme::pad 0 40]
        set names [lrange $names 1 end]
    }
    foreach name [lreverse $names] {
        pack $w.in.row.$name -side right -padx [::vesk::theme::pad 8 0]
    }
    bind $w <Return> [list ::vesk::dialogs::press_focused $w.in.row.$default]
    return [wait $w $w.in.row.$default]
}

proc ::vesk::dialogs::show_picture {canvas photo} {
    if {$photo ne "" && [winfo exists $canvas]} {
        $canvas create image 0 0 -anchor nw -image $photo
    }
}

# press_focused --
#   Return presses the focused button, else the default one.
proc ::vesk::dialogs::press_focused {default} {
    set now [focus]
    if {$now eq "" || [winfo class $now] ne "TButton"} {set now $default}
    $now invoke
}

# ---- a text to read ----

# show_text --
#   A window with a text to read; there is one per title.
proc ::vesk::dialogs::show_text {title text {columns 72} {lines 24}} {
    set w .text[string tolower [regsub -all {[^A-Za-z]} $title ""]]
    window $w "$title - VESK"
    ttk::label $w.title -text $title -style Panel.Title.TLabel
    text $w.text -width $columns -height $lines -font VeskMono -wrap word \
        -padx [::vesk::theme::px 10] -pady [::vesk::theme::px 8]
    ::vesk::theme::recolour $w.text
    ::vesk::parts::scrollbar $w.bar $w.text
    ttk::button $w.close -text Close -style Panel.Default.TButton -command [list destroy $w]
    grid $w.title -sticky w -padx [::vesk::theme::px 20] -pady [::vesk::theme::pad 16 8]
    grid $w.text $w.bar -sticky nswe
    grid $w.close - -sticky e -padx [::vesk::theme::px 20] -pady [::vesk::theme::px 12]
    grid columnconfigure $w 0 -weight 1
    grid rowconfigure $w 1 -weight 1
    $w.text insert end $text
    $w.text configure -state disabled
    bind $w <Return> [list destroy $w]
    show $w $w.close
}
