# uvtab.tcl --
#   The UV tab: the picture with the outlines of the selected surfaces, their number, and the button
#   of the editor.

namespace eval ::vesk::uvtab {
    variable path ""
    variable most 4000          ;# surfaces drawn
    variable pending ""
}

# build --
#   Fills the tab's frame; done when the tab is first shown.
proc ::vesk::uvtab::build {tab} {
    variable path $tab
    $tab configure -padding [::vesk::theme::px 12]
    ::vesk::theme::on [canvas $tab.picture -width 10 -height 10 -takefocus 0] -
    ttk::frame $tab.foot -style Panel.TFrame
    ttk::label $tab.foot.count -style Panel.Dim.TLabel -anchor w
    ttk::button $tab.foot.open -style Panel.TButton -text "Open editor  F8" \
        -command ::vesk::uvedit::open
    pack $tab.foot.open -side right
    pack $tab.foot.count -side left -fill x -expand 1
    pack $tab.foot -side bottom -fill x -pady [::vesk::theme::pad 10 0]
    pack $tab.picture -side top -fill both -expand 1
    bind $tab.picture <Configure> ::vesk::uvtab::later
    bind $tab.picture <Double-Button-1> ::vesk::uvedit::open
    bind $tab <Map> ::vesk::uvtab::later
    foreach aspect {selection model} {::vesk::ops::listen $aspect ::vesk::uvtab::later}
    ::vesk::theme::follow ::vesk::uvtab::later
    foreach key {uveditor_bgcol uveditor_edgecol uveditor_selectedcol} {
        trace add variable ::prefs_$key write ::vesk::uvtab::later
    }
    later
}

# later --
#   Draws the tab once the model rests, while it is visible.
proc ::vesk::uvtab::later {args} {
    variable path
    variable pending
    after cancel $pending
    if {$path ne "" && [winfo viewable $path]} {set pending [after 60 ::vesk::uvtab::draw]}
}

proc ::vesk::uvtab::colour {key} {
    return [format "#%06x" [expr {[set ::prefs_$key] & 0xffffff}]]
}

# frame --
#   Place of the unit square in the canvas, {left top width height}, in the shape of the picture;
#   the square and all outlines fit into the canvas.
proc ::vesk::uvtab::frame {outlines} {
    variable path
    lassign {0.0 0.0 1.0 1.0} u0 v0 u1 v1
    foreach line $outlines {
        foreach {u v} [lrange $line 1 end] {
            if {$u < $u0} {set u0 $u} elseif {$u > $u1} {set u1 $u}
            if {$v < $v0} {set v0 $v} elseif {$v > $v1} {set v1 $v}
        }
    }
    lassign [dict get [vesk uv_info] pixels] across down
    set aspect [expr {double($across) / $down}]
    set width [winfo width $path.picture]
    set height [winfo height $path.picture]
    set margin [::vesk::theme::px 14]
    set side [expr {min(($width - 2 * $margin) / (($u1 - $u0) * $aspect),
        ($height - 2 * $margin) / ($v1 - $v0))}]
    set left [expr {($width - $side * $aspect * ($u0 + $u1)) / 2}]
    set top [expr {($height + $side * ($v0 + $v1)) / 2 - $side}]
    return [list $left $top [expr {$side * $aspect}] $side]
}

proc ::vesk::uvtab::draw {} {
    variable path
    variable most
    if {$path eq "" || ![winfo viewable $path]} {return}
    set canvas $path.picture
    $canvas delete all
    $canvas configure -background [colour uveditor_bgcol] -highlightthickness 0
    set outlines [vesk uv_outlines $most]
    lassign [frame $outlines] left top width height
    if {min($width, $height) < 8} {return}
    set bottom [expr {$top + $height}]
    draw_ground $canvas $left $top $width $height
    $canvas create rectangle $left $top [expr {$left + $width}] $bottom -outline #2A2A2A
    foreach line $outlines {
        set points {}
        foreach {u v} [lrange $line 1 end] {
            lappend points [expr {$left + $u * $width}] [expr {$bottom - $v * $height}]
        }
        if {[llength $points] < 6} {continue}
        $canvas create polygon $points -fill {} -width [::vesk::theme::px 1] -outline \
            [colour [expr {[lindex $line 0] ? "uveditor_selectedcol" : "uveditor_edgecol"}]]
    }
    $path.foot.count configure -text [count_text [llength $outlines]]
}

# draw_ground --
#   The texture of the selection, or a checker.
proc ::vesk::uvtab::draw_ground {canvas left top width height} {
    set id [vesk uv_texture]
    if {$id >= 0} {
        set photo [vesk texture_photo $id [expr {int(max($width, $height))}]]
        if {$photo ne ""} {
            $canvas create image $left $top -anchor nw -image $photo
            return
        }
    }
    set right [expr {$left + $width}]
    set bottom [expr {$top + $height}]
    $canvas create rectangle $left $top $right $bottom -fill #66676b -width 0
    set step [expr {$width / 8.0}]
    for {set i 0} {$i * $step < $height} {incr i} {
        for {set j [expr {$i % 2}]} {$j < 8} {incr j 2} {
            set x [expr {$left + $j * $step}]
            set y [expr {$top + $i * $step}]
            $canvas create rectangle $x $y [expr {$x + $step}] [expr {min($bottom, $y + $step)}] \
                -fill #707175 -width 0
        }
    }
}

proc ::vesk::uvtab::count_text {drawn} {
    set info [vesk uv_info]
    set surfaces [dict get $info surfaces]
    if {$surfaces == 0} {return "Nothing selected"}
    set text "[::vesk::arith::counted [dict get $info islands] island],\
        [::vesk::arith::counted $surfaces surface]"
    if {$drawn < $surfaces} {append text "\nthe first [::vesk::arith::grouped $drawn] are drawn"}
    return $text
}
