# colourbox.tcl --
#   The dialog that chooses a colour: a field of saturation and brightness, a strip of hues, the
#   colour as text.

namespace eval ::vesk::colourbox {
    variable hex "#000000"
    variable hue 0.0
    variable saturation 0.0
    variable brightness 0.0
    variable side 128
}

# ask --
#   Returns the chosen colour as "#RRGGBB", or "" when the dialog was cancelled.
proc ::vesk::colourbox::ask {start} {
    variable hex $start
    set w .colour
    ::vesk::dialogs::modal $w "Colour - VESK" ""
    build $w
    $w.row.old configure -background $start
    from_hex
    draw_hues
    show
    set chosen [::vesk::dialogs::wait $w $w.row.hex]
    image delete ::vesk::colourbox::field ::vesk::colourbox::hues
    return [::vesk::fields::hex $chosen]
}

# build --
#   The field, the strip, and below them the old and the new colour, the text and the buttons.
proc ::vesk::colourbox::build {w} {
    variable side
    set s [::vesk::theme::px [expr {$side * 2}]]
    foreach {name width script} [list field $s {::vesk::colourbox::field_moved %x %y} \
            hues [::vesk::theme::px 20] {::vesk::colourbox::hue_moved %y}] {
        ::vesk::theme::on [canvas $w.$name -width $width -height $s] panel
        image create photo ::vesk::colourbox::$name -width $width -height $s
        $w.$name create image 0 0 -anchor nw -image ::vesk::colourbox::$name
        foreach event {<Button-1> <B1-Motion>} {bind $w.$name $event $script}
    }
    ttk::frame $w.row -style Panel.TFrame
    foreach name {old new} {
        ::vesk::theme::on [frame $w.row.$name -width [::vesk::theme::px 32] \
            -height [::vesk::theme::px 25]] -
    }
    ttk::entry $w.row.hex -style Panel.TEntry -width 9 -justify right -font VeskNumber \
        -textvariable ::vesk::colourbox::hex
    ttk::button $w.row.ok -text Choose -style Panel.Default.TButton \
        -command {::vesk::dialogs::answer .colour $::vesk::colourbox::hex}
    ttk::button $w.row.cancel -text Cancel -style Panel.TButton \
        -command {::vesk::dialogs::answer .colour ""}
    set p [::vesk::theme::px 12]
    grid $w.field $w.hues -padx [list $p 0] -pady $p
    grid configure $w.hues -padx $p
    grid $w.row - -sticky we -padx $p -pady [list 0 $p]
    pack $w.row.old $w.row.new -side left
    pack $w.row.hex -side left -padx [::vesk::theme::pad 8 12]
    pack $w.row.ok $w.row.cancel -side right -padx [::vesk::theme::pad 8 0]
    ::vesk::fields::on_keys $w.row.hex {Return ::vesk::colourbox::typed}
    bind $w.row.hex <FocusOut> ::vesk::colourbox::typed
    bind $w.row.ok <Return> {%W invoke}
}

# to_rgb --
#   Converts hue, saturation and brightness (0 to 1) to red, green and blue (0 to 255).
proc ::vesk::colourbox::to_rgb {h s v} {
    set result {}
    foreach offset {5 3 1} {
        set k [expr {fmod($offset + $h * 6, 6)}]
        lappend result [expr {int(255 * ($v - $v * $s * max(0, min($k, 4 - $k, 1))) + 0.5)}]
    }
    return $result
}

# from_hex --
#   Computes hue, saturation and brightness from the text; a grey keeps the last hue.
proc ::vesk::colourbox::from_hex {} {
    variable hex
    variable hue
    variable saturation
    variable brightness
    if {[scan $hex "#%2x%2x%2x" r g b] != 3} {return 0}
    set top [expr {max($r, $g, $b)}]
    set spread [expr {$top - min($r, $g, $b)}]
    set brightness [expr {$top / 255.0}]
    set saturation [expr {$top ? $spread / double($top) : 0}]
    if {$spread} {
        if {$top == $r} {
            set hue [expr {($g - $b) / (6.0 * $spread)}]
        } elseif {$top == $g} {
            set hue [expr {1 / 3.0 + ($b - $r) / (6.0 * $spread)}]
        } else {
            set hue [expr {2 / 3.0 + ($r - $g) / (6.0 * $spread)}]
        }
        if {$hue < 0} {set hue [expr {$hue + 1}]}
    }
    return 1
}

# show --
#   Draws the field in the present hue, and the two marks.
proc ::vesk::colourbox::show {} {
    variable hue
    variable saturation
    variable brightness
    variable side
    variable hex
    set w .colour
    set cells 32
    set rows {}
    for {set y 0} {$y < $cells} {incr y} {
        set row {}
        for {set x 0} {$x < $cells} {incr x} {
            lappend row [format #%02x%02x%02x {*}[to_rgb $hue [expr {$x / ($cells - 1.0)}] \
                [expr {1 - $y / ($cells - 1.0)}]]]
        }
        lappend rows $row
    }
    set small [image create photo -width $cells -height $cells]
    $small put $rows
    set size [image width ::vesk::colourbox::field]
    ::vesk::colourbox::field copy $small -zoom [expr {($size + $cells - 1) / $cells}] \
        -to 0 0 $size $size
    image delete $small
    $w.field delete mark
    $w.hues delete mark
    set x [expr {$saturation * $size}]
    set y [expr {(1 - $brightness) * $size}]
    set r [::vesk::theme::px 5]
    foreach {colour grow} {#141414 1 #ffffff 0} {
        $w.field create oval [expr {$x - $r - $grow}] [expr {$y - $r - $grow}] \
            [expr {$x + $r + $grow}] [expr {$y + $r + $grow}] -outline $colour -tags mark
    }
    set y [expr {$hue * $size}]
    $w.hues create rectangle 0 [expr {$y - 2}] [image width ::vesk::colourbox::hues] \
        [expr {$y + 2}] -outline #ffffff -fill #141414 -tags mark
    $w.row.new configure -background $hex
}

proc ::vesk::colourbox::draw_hues {} {
    set height [image height ::vesk::colourbox::hues]
    set lines {}
    for {set y 0} {$y < $height} {incr y} {
        lappend lines [list [format #%02x%02x%02x {*}[to_rgb [expr {$y / double($height)}] 1 1]]]
    }
    ::vesk::colourbox::hues put $lines -to 0 0 [image width ::vesk::colourbox::hues] $height
}

proc ::vesk::colourbox::field_moved {x y} {
    variable saturation
    variable brightness
    set size [expr {double([image width ::vesk::colourbox::field])}]
    set saturation [expr {min(1, max(0, $x / $size))}]
    set brightness [expr {min(1, max(0, 1 - $y / $size))}]
    moved
}

proc ::vesk::colourbox::hue_moved {y} {
    variable hue
    set size [image height ::vesk::colourbox::hues]
    set hue [expr {min(0.999, max(0, $y / double($size)))}]
    moved
}

proc ::vesk::colourbox::moved {} {
    variable hue
    variable saturation
    variable brightness
    variable hex
    set hex [format #%02X%02X%02X {*}[to_rgb $hue $saturation $brightness]]
    show
}

proc ::vesk::colourbox::typed {} {
    variable hex
    set entry .colour.row.hex
    if {![winfo exists $entry]} {return}
    set digits [::vesk::fields::hex $hex]
    ::vesk::fields::mark_invalid $entry [expr {$digits eq ""}]
    if {$digits ne ""} {
        set hex $digits
        from_hex
        show
    }
}
