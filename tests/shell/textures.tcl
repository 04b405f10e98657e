# textures.tcl --
#   Pictures on objects in the 3D and the flat views, behind a flat view, in the menu and the panel.

source [file join [file dirname [info script]] support.tcl]

proc reds {picture} {
    set found 0
    for {set y 0} {$y < [dict get $picture height]} {incr y 4} {
        for {set x 0} {$x < [dict get $picture width]} {incr x 4} {
            lassign [pixel $picture $x $y] r g b
            if {$r > 40 && $r > 3 * $g && $r > 3 * $b} {incr found}
        }
    }
    return $found
}

# changes --
#   How often the colour changes along a row.
proc changes {picture row} {
    set count 0
    set before ""
    for {set x 0} {$x < [dict get $picture width]} {incr x} {
        lassign [pixel $picture $x $row] r g b
        set colour [expr {$r > 2 * $g ? "red" : $g > 2 * $r ? "green" : $before}]
        if {$colour ne $before} {incr count}
        set before $colour
    }
    return $count
}

run {
    # Four columns: red, green, red, green.
    set row [binary format c* {0 0 220 0 200 0 0 0 220 0 200 0}]
    set file [write_bmp [work stripes.bmp] 4 4 [string repeat $row 4]]
    vesk create rect 0 -1 -1 0 1 1 0
    vesk select_all
    vesk surface_set_twosided 1
    vesk remap_textures 0
    vesk fit_all
    vesk clear_selection
    set ::prefs_filled_orth 1
    vesk redraw_all
    settle
    set plain [picture xy]
    check "nothing is red at first" {[reds $plain] == 0}

    set id [vesk add_new_texture $file]
    check "the texture is loaded" {$id == 0}
    vesk select_all
    vesk set_texture 0
    vesk clear_selection
    settle
    set textured [picture xy]
    set all [expr {[dict get $textured width] * [dict get $textured height] / 16}]
    check "half of the rectangle is red in the front view" {
        [reds $textured] > 0.05 * $all && [reds $textured] < 0.5 * $all
    }
    check "and in the 3D view" {[reds [picture xyz]] > 50}
    shot textured
    foreach limit {fixed oldest} {
        vesk view_limit_device $limit
        check "a device that is $limit shows it, too" {
            abs([reds [picture xy]] - [reds $textured]) < 0.1 * $all
        }
    }
    vesk view_limit_device all

    set row [expr {[dict get $textured height] / 2}]
    set stripes_once [changes $textured $row]
    vesk select_all
    vesk set_texture_repeats 3 1
    vesk clear_selection
    check "repeats make more stripes" {[changes [picture xy] $row] >= $stripes_once + 6}
    set ::prefs_orth_textures 0
    check "the preference takes them away" {[reds [picture xy]] == 0}
    set ::prefs_orth_textures 1

    vesk select_all
    ::vesk::textures::prepare_menu
    set menu .mbar.object.menu.texture
    check "the menu shows a preview" {
        [string match vesk_texture_0_* [$menu entrycget end -image]]
    }
    check "the Object tab tells texture and repeats" {
        [string match " stripes.bmp" [${::vesk::textures::path}.texture cget -text]] &&
        $::vesk::textures::value(repeat,u) == 3
    }
    shot textures-panel
    ::vesk::textures::typed offset u 0.5
    check "the tab sets offsets" {[vesk get_texture_repoff] eq "3 1 0.5 0"}
    pack [label .preview -width 80 -height 60 -image [image create photo -width 80 -height 60]]
    settle
    vesk window_draw_texture 0 .preview
    check "a texture is drawn in a label" {
        [.preview cget -image] eq "vesk_texture_in.preview" && [image height vesk_texture_in.preview] > 20
    }
    destroy .preview
    vesk set_no_texture

    foreach way {1 0} {
        set ::prefs_use_textures_for_background_images $way
        vesk clear_all
        vesk reset_views
        vesk load_background_image $file 2
        settle
        set picture [picture xz]
        set x [expr {[dict get $picture width] / 2}]
        set y [expr {[dict get $picture height] / 2}]
        check "the background image lies in the middle ($way)" {
            [lindex [pixel $picture [expr {$x - 2}] $y] 0] > 100 ||
            [lindex [pixel $picture [expr {$x - 2}] [expr {$y - 1}]] 0] > 100
        }
        vesk keypress 2 Up 9
        vesk clear_background_image 2
    }
}
