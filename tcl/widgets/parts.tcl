# parts.tcl --
#   Building blocks of bars, panels and windows: hairlines, rows of segments, icon buttons,
#   scrollbars.

namespace eval ::vesk::parts {}

# at_least --
#   Keeps a bar of packed widgets at least so high, also with a smaller font.
proc ::vesk::parts::at_least {bar pixels} {
    pack [ttk::frame $bar.least -width 1 -height [::vesk::theme::px $pixels]] -side right
}

# hairline --
#   The line between two groups of a bar.
proc ::vesk::parts::hairline {path} {
    ttk::frame $path -padding [::vesk::theme::pad 9 0 9 0]
    ttk::frame $path.line -style Line.TFrame -width [::vesk::theme::px 1] \
        -height [::vesk::theme::px 20]
    pack $path.line
    return $path
}

# segments --
#   A row of buttons one of which is pressed; the name of a button is its value.
#   prefix    the surface that it lies on: "", Panel.
#   variable  the global name of the variable with the value
#   script    words; the chosen value is appended
#   rows      value, icon or "", label, key and help of each button
proc ::vesk::parts::segments {path prefix variable script rows} {
    ttk::frame $path -style ${prefix}Axis.TFrame -padding [::vesk::theme::px 2]
    foreach {value icon label key help} $rows {
        set button $path.$value
        ttk::radiobutton $button -style Segment.Toolbutton -text $label \
            -variable $variable -value $value -command [list {*}$script $value]
        if {$icon ne ""} {
            $button configure -image [::vesk::icons::or_disabled $icon] -compound left
        }
        pack $button -side left
        ::vesk::tooltips::attach $button $label $key $help
    }
    return $path
}

# icon_button --
#   A small button with a picture on a panel.
proc ::vesk::parts::icon_button {path icon name help command} {
    ttk::button $path -style Panel.Icon.Toolbutton -command $command \
        -image [::vesk::icons::or_disabled $icon]
    ::vesk::tooltips::attach $path $name "" $help
    return $path
}

# scrollbar --
#   The scrollbar of a list, text or canvas; managed by grid, and hidden while everything is
#   visible.
#   prefix  the surface that it lies on: Panel., Field.
proc ::vesk::parts::scrollbar {bar of {prefix Panel.}} {
    ttk::scrollbar $bar -style ${prefix}Vertical.TScrollbar -command [list $of yview]
    $of configure -yscrollcommand [list ::vesk::parts::scrolled $bar]
    return $bar
}
proc ::vesk::parts::scrolled {bar first last} {
    if {$first <= 0 && $last >= 1} {
        grid remove $bar
    } else {
        grid $bar
    }
    $bar set $first $last
}

# floating --
#   A small panel with an edge and a title, placed over the window by the caller. Its rows belong
#   into the grid of the frame .in.
proc ::vesk::parts::floating {w title} {
    destroy $w
    ttk::frame $w -style Raise.TFrame -padding 1
    ttk::frame $w.in -style Panel.TFrame -padding [::vesk::theme::px 12]
    pack $w.in -fill both -expand 1
    ttk::label $w.in.title -text $title -style Panel.Bold.TLabel
    grid $w.in.title - -sticky w -pady [::vesk::theme::pad 0 6]
    grid columnconfigure $w.in 1 -weight 1
}
