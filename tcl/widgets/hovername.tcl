# hovername.tcl --
#   The name of the object under the pointer, as a chip in the view, while the pointer rests and
#   nothing is being dragged or drawn.

namespace eval ::vesk::hovername {
    variable timer ""
    variable delay 300          ;# milliseconds
    variable chip ""            ;# the chip that is shown
}

# bind_view --
#   Binds the mouse events of one view.
proc ::vesk::hovername::bind_view {name id togl} {
    bind $togl <Motion> +[list ::vesk::hovername::moved $name $id %x %y %s]
    bind $togl <Leave> ::vesk::hovername::hide
    foreach event {<Button> <Button-4> <Button-5>} {bind $togl $event +::vesk::hovername::hide}
    bind $togl <Configure> +::vesk::hovername::hide
}

# moved --
#   Hides the chip after a motion and shows it again when the pointer rests.
proc ::vesk::hovername::moved {name id x y state} {
    variable timer
    variable delay
    hide
    # Bits of the three buttons.
    if {$state & 0x700 || $::vesk::draw_mode ni {move rotate extrude}
            || $::vesk::view_tool ne "none"} {return}
    set timer [after $delay [list ::vesk::hovername::show $name $id $x $y]]
}

proc ::vesk::hovername::hide {} {
    variable timer
    variable chip
    after cancel $timer
    if {$chip ne ""} {destroy $chip}
    set chip ""
}

# show --
#   Below the pointer and to the right, or on another side where the view ends: never over the spot.
proc ::vesk::hovername::show {name id x y} {
    vesk highlight_at $id $x $y
    set object [vesk object_at $id $x $y]
    if {$object eq ""} {return}
    set text [vesk object_get_name $object]
    if {$text eq ""} {return}
    set cell [::vesk::view::area].$name
    variable chip $cell.hover
    label $chip -text [string range [string map {\n " "} $text] 0 60] -borderwidth 0 \
        -background [::vesk::theme::colour chip] -foreground [::vesk::theme::colour chip_text] \
        -padx [::vesk::theme::px 8] -pady [::vesk::theme::px 3] -highlightthickness 1 \
        -highlightbackground [::vesk::theme::colour chip_frame]
    set gap [::vesk::theme::px 18]
    set edge [::vesk::view::ring]
    set width [winfo reqwidth $chip]
    set height [winfo reqheight $chip]
    set x [expr {$x + $gap + $width > [winfo width $cell] - $edge ? $x - $gap - $width : $x + $gap}]
    set y [expr {$y + $gap + $height > [winfo height $cell] - $edge ? $y - $gap - $height : $y + $gap}]
    place $chip -x [expr {max($edge, $x)}] -y [expr {max($edge, $y)}]
    raise $chip
}
