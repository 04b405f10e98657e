#!/usr/bin/env tclsh
# make_icons.tcl --
#   Rasterises the icons and the pictures of the widgets' frames.
#   usage: make_icons.tcl OUTPUT_FOLDER [rsvg-convert]
#   Writes, for each theme and scale, one sheet of icons a variant
#   (icons-THEME-SCALE-VARIANT.png), one sheet of frames (elements-THEME-SCALE.png), and
#   "index", a Tcl dictionary: icons SCALE NAME {x y width height}, elements SCALE NAME {...}.

set root [file dirname [file dirname [file normalize [info script]]]]
source [file join $root tcl widgets palettes.tcl]
source [file join $root icons elements.tcl]

set scales {1 1.25 1.5 2 3}
set columns 12
# variant: palette colour of the glyph, and of what is marked in it
set variants {
    normal   {icon icon_accent}
    active   {icon_on_sel icon_on_sel_accent}
    dim      {icon_dim icon_dim}
    disabled {icon_off icon_off}
}

source [file join [file dirname [file normalize [info script]]] text_files.tcl]

# inner --
#   What stands between <svg ...> and </svg> in an icon's file; the size comes back in `size_var`.
proc inner {file size_var} {
    upvar 1 $size_var size
    set text [read_text $file]
    if {![regexp {<svg[^>]* width="(\d+)"[^>]*>(.*)</svg>} $text -> size body]} {
        error "no picture in $file"
    }
    return $body
}

# recolour --
#   Replaces the four colours that the sources are drawn in.
proc recolour {body glyph accent palette} {
    return [string map [list #D2D4D8 $glyph #6CB2FF $accent \
        #E5AC4D [dict get $palette warn] #F2807A [dict get $palette error]] $body]
}

proc svg {width height body} {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"$width\" height=\"$height\"\
        viewBox=\"0 0 $width $height\">$body</svg>"
}

# render --
#   Starts the conversion of one sheet; at most four run at a time.
set running {}
proc render {name width height body} {
    global running converter out
    set channel [open [list | $converter -o [file join $out $name.png] 2>@stderr] r+]
    puts -nonewline $channel [svg $width $height $body]
    close $channel w
    lappend running $channel
    if {[llength $running] >= 4} {finish_oldest}
}
proc finish_oldest {} {
    global running
    set running [lassign $running channel]
    read $channel
    close $channel
}

# place --
#   Lays cells out in rows and returns {width height index}; sizes holds {name width height} rows.
proc place {sizes columns} {
    set x 0; set y 0; set row 0; set n 0; set total 0
    set index {}
    foreach cell $sizes {
        lassign $cell name w h
        if {$n == $columns} {
            incr y $row
            set x 0; set row 0; set n 0
        }
        dict set index $name [list $x $y $w $h]
        incr x $w
        incr n
        set row [expr {max($row, $h)}]
        set total [expr {max($total, $x)}]
    }
    return [list $total [expr {$y + $row}] $index]
}

proc px {n scale} {
    return [expr {round($n * $scale)}]
}

proc icon_sheets {theme scale palette index width height} {
    global icons variants
    dict for {variant colours} $variants {
        lassign $colours glyph accent
        set glyph [dict get $palette $glyph]
        set accent [dict get $palette $accent]
        # Only the coloured signs keep their own colour when nothing marks the icon as off.
        set signs $palette
        if {$variant ne "normal"} {
            dict set signs warn $glyph
            dict set signs error $glyph
        }
        set body ""
        foreach {name size drawing} $icons {
            lassign [dict get $index $name] x y
            append body "<g transform=\"translate($x $y) scale($scale)\" fill=\"none\"" \
                " stroke=\"$glyph\" stroke-width=\"1.5\" stroke-linecap=\"round\"" \
                " stroke-linejoin=\"round\">" [recolour $drawing $glyph $accent $signs] "</g>"
        }
        render icons-$theme-$scale-$variant $width $height $body
    }
}

# element --
#   One frame's drawing, in pixels of the sheet: outlines fall on whole pixels at every scale.
proc element {row scale palette} {
    global templates
    lassign $row name template width height radius fill line bar lw extra
    set values {padx 0 pady 0 barinset 0 barheight 0}
    set values [dict merge $values $extra]
    dict for {key number} $values {dict set values $key [px $number $scale]}
    set w [px $width $scale]
    set h [px $height $scale]
    set lw [px $lw $scale]
    set inset [expr {$lw / 2.0}]
    set r [expr {$radius * $scale}]
    dict with values {}
    set map [list @scale@ $scale @inset@ $inset @linewidth@ $lw @radius@ $r \
        @innerwidth@ [expr {$w - $lw}] @innerheight@ [expr {$h - $lw}] \
        @innerradius@ [expr {max(0, $r - $inset)}] @barheight@ $barheight @barx@ $barinset \
        @bary@ [expr {$h - $barheight}] @barwidth@ [expr {$w - 2 * $barinset}] \
        @padx@ $padx @pady@ $pady @bandwidth@ [expr {$w - 2 * $padx}] \
        @bandheight@ [expr {$h - 2 * $pady}]]
    foreach {token colour} [list @fill@ $fill @line@ $line @bar@ $bar] {
        lappend map $token [expr {$colour eq "none" ? "none" : [dict get $palette $colour]}]
    }
    return [string map $map [dict get $templates $template]]
}

proc element_sheet {theme scale palette index width height} {
    set body ""
    foreach row [element_rows] {
        lassign [dict get $index [lindex $row 0]] x y
        append body "<g transform=\"translate($x $y)\">" [element $row $scale $palette] "</g>"
    }
    render elements-$theme-$scale $width $height $body
}

proc element_rows {} {
    set rows {}
    foreach {name template w h r fill line bar lw extra} $::vesk::elements::table {
        lappend rows [list $name $template $w $h $r $fill $line $bar $lw $extra]
    }
    return $rows
}

lassign $argv out converter
if {$converter eq ""} {set converter rsvg-convert}
file mkdir $out
set icons {}
foreach file [lsort [glob -directory [file join $root icons svg] *.svg]] {
    set drawing [inner $file size]
    lappend icons [file rootname [file tail $file]] $size $drawing
}
set templates {}
foreach file [glob -directory [file join $root icons elements] *.svg] {
    dict set templates [file rootname [file tail $file]] [read_text $file]
}
set index {icons {} elements {}}
foreach scale $scales {
    set sizes {}
    foreach {name size drawing} $icons {
        lappend sizes [list $name [px $size $scale] [px $size $scale]]
    }
    lassign [place $sizes $columns] icons_width icons_height icons_index
    set sizes {}
    foreach row [element_rows] {
        lassign $row name template w h
        lappend sizes [list $name [px $w $scale] [px $h $scale]]
    }
    lassign [place $sizes $columns] elements_width elements_height elements_index
    foreach {theme label} $::vesk::palettes::names {
        if {[::vesk::palettes::pictures_of $theme] ne $theme} {continue}
        set palette [::vesk::palettes::colours $theme]
        icon_sheets $theme $scale $palette $icons_index $icons_width $icons_height
        element_sheet $theme $scale $palette $elements_index $elements_width $elements_height
    }
    dict set index icons $scale $icons_index
    dict set index elements $scale $elements_index
}
while {[llength $running] > 0} {finish_oldest}
set channel [open [file join $out index] w]
puts $channel $index
close $channel
