# numberfield.tcl --
#   The number field at the pointer while a drag takes numbers. The executable holds the typed text;
#   the field only shows it, as a focused axis field inside the view.

namespace eval ::vesk::numberfield {
    variable path ""            ;# the field, while it is shown
    variable names {xy zy xz xyz}
    variable texture_coords 5   ;# the number of the window of texture coordinates
}

# show --
#   view   view id;  x y  place of the pointer in the view
#   label  name of the number;  axis  0 to 2: its colour, 3: it has none
#   text   the digits typed so far
proc ::vesk::numberfield::show {view x y label axis text} {
    variable path
    variable names
    variable texture_coords
    set cell [::vesk::view::area].[lindex $names $view]
    if {$view == $texture_coords} {set cell .uv.view}
    if {$path ne "$cell.number"} {
        hide
        set path [build $cell.number]
    }
    $path.letter configure -text $label -style [lindex {xField yField zField Field} $axis].TLabel
    $path.value configure -text $text
    set gap [::vesk::theme::px 16]
    set edge [expr {[::vesk::view::ring] + [::vesk::theme::px 4]}]
    update idletasks
    set width [winfo reqwidth $path]
    set height [winfo reqheight $path]
    set x [expr {min($x + $gap, [winfo width $cell] - $width - $edge)}]
    set y [expr {max($y - $gap - $height, $edge)}]
    place $path -x [expr {max($edge, $x)}] -y $y
    raise $path
}

proc ::vesk::numberfield::build {w} {
    ttk::frame $w -style Axis.TFrame -padding [::vesk::theme::pad 6 3 6 3]
    $w state focus
    ttk::label $w.letter
    ttk::label $w.value -style Field.TLabel -font VeskNumber -anchor e -width 8
    ::vesk::theme::on [frame $w.cursor -width [::vesk::theme::px 1] \
        -height [::vesk::theme::px 14]] text
    pack $w.letter $w.value $w.cursor -side left
    return $w
}

proc ::vesk::numberfield::hide {} {
    variable path
    if {$path ne ""} {destroy $path}
    set path ""
}

proc show_number_field {view x y label axis text} {
    ::vesk::numberfield::show $view $x $y $label $axis $text
}
proc hide_number_field {} {::vesk::numberfield::hide}
