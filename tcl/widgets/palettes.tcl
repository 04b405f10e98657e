# palettes.tcl --
#   The colours of the three themes, as data: read by theme.tcl and by the generator of the
#   pictures (tools/make_icons.tcl), so it needs neither Tk nor anything else.

namespace eval ::vesk::palettes {
    # Theme names in the order of the menu, with their labels there.
    variable names {dark Dark light Light contrast "High contrast" safe "Colour-blind safe"}
    # A theme that uses another's pictures and its colours except these, which differ by lightness
    # and by blue against orange.
    variable pictures {safe dark}
    variable safe {
        axis_x #E69F00 axis_y #F0F0F0 axis_z #56B4E9 warn #F0E442 error #FFA64D ok #56B4E9
    }

    # name  dark  light  high contrast
    variable table {
        gap             #1B1C1E #B9BCC1 #FFFFFF
        chrome          #2B2C2F #E8E9EB #000000
        panel           #313337 #F4F5F6 #000000
        field           #222326 #FFFFFF #000000
        raise           #3D3F44 #FFFFFF #1A1A1A
        hover           #484B51 #DADDE1 #333333
        line            #45484D #C5C8CD #FFFFFF
        edge            #5B5E65 #A2A6AC #FFFFFF
        text            #E4E5E7 #1F2124 #FFFFFF
        dim             #A9ADB3 #55585E #FFFFFF
        faint           #9DA1A8 #606369 #E0E0E0
        off             #73767C #9A9DA3 #9A9A9A
        accent          #4C9BEF #1F75D1 #FFD83A
        ring            #6CB2FF #1F75D1 #FFD83A
        view_ring       #6CB2FF #6CB2FF #FFD83A
        sel             #2A5C94 #1F6AC0 #FFD83A
        on_sel          #FFFFFF #FFFFFF #000000
        sel_hover       #3468A6 #2672C9 #FFE680
        ring_on_sel     #BFE0FF #1F2124 #FFFFFF
        segment_on      #41454C #DCE8F6 #333333
        segment_hover   #303236 #EFF0F2 #222222
        menu            #36383C #FCFCFD #000000
        trough          #4A4D53 #CDD0D4 #777777
        thumb           #5A5D63 #A9ACB2 #FFFFFF
        chip            #3C3E42 #3C3E42 #000000
        chip_hover      #4A4D53 #4A4D53 #333333
        chip_frame      #3C3E42 #3C3E42 #FFFFFF
        chip_text       #E9EAEB #E9EAEB #FFFFFF
        tip             #17181A #2B2C2F #000000
        tip_text        #F2F3F4 #F2F3F4 #FFFFFF
        tip_frame       #5B5E65 #2B2C2F #FFFFFF
        axis_x          #F07F76 #C0322B #FF8A84
        axis_y          #8CCB6B #2A7018 #7CFF6B
        axis_z          #7CB4F5 #1A61B3 #7CC4FF
        warn            #E5AC4D #8F5A00 #FFC24A
        error           #F2807A #B92B25 #FF8A84
        ok              #86C466 #2F7A1E #7CFF6B
        knob            #2A5C94 #FFFFFF #000000
        knob_rim        #D2D4D8 #63666D #FFFFFF
        knob_hover      #2A5C94 #1F6AC0 #000000
        icon            #D2D4D8 #3A3D42 #FFFFFF
        icon_accent     #6CB2FF #1769C4 #FFD83A
        icon_on_sel     #FFFFFF #FFFFFF #000000
        icon_on_sel_accent #BFE0FF #D5E8FF #000000
        icon_dim        #9A9DA4 #63666D #FFFFFF
        icon_off        #686B71 #A3A6AB #8A8A8A
    }

    # The colour preferences of the high contrast preset.
    variable contrast_views {
        col_background 0x000000 col_3dbackground 0x000000 col_line 0xC8C8C8 col_selline 0xFFFF00
        col_vert 0xFF8080 col_selvert 0x00FFFF col_box 0x00FFFF col_grid 0x3A3A3A
        col_axis 0x9A9A9A col_3dgrid 0x8A8A8A
    }
    # The same preferences of the other presets.
    variable plain_views {
        col_background 0x555555 col_3dbackground 0x555555 col_line 0xAAAAAA col_selline 0xFFFFFF
        col_vert 0xFF4444 col_selvert 0x00FF00 col_box 0x00FF00 col_grid 0x454545
        col_axis 0x777777 col_3dgrid 0xAAAAAA
    }
    # Those of the colour-blind safe preset that differ.
    variable safe_views {col_vert 0xFFB000 col_selvert 0x00C8FF col_box 0x00C8FF}
}

# colours --
#   Returns a dictionary of colour name to "#rrggbb".
#   theme  dark, light, contrast or safe; any other word gives the dark one
proc ::vesk::palettes::colours {theme} {
    variable table
    variable safe
    set column [expr {max(0, [lsearch -exact {dark light contrast} $theme])}]
    set result {}
    foreach {name dark light contrast} $table {
        dict set result $name [lindex [list $dark $light $contrast] $column]
    }
    if {$theme eq "safe"} {set result [dict merge $result $safe]}
    return $result
}

# pictures_of --
#   The theme whose pictures a theme uses.
proc ::vesk::palettes::pictures_of {theme} {
    variable pictures
    return [expr {[dict exists $pictures $theme] ? [dict get $pictures $theme] : $theme}]
}

# views --
#   The colour preferences of a theme.
proc ::vesk::palettes::views {theme} {
    variable contrast_views
    variable plain_views
    variable safe_views
    switch -- $theme {
        contrast {return $contrast_views}
        safe     {return [dict merge $plain_views $safe_views]}
    }
    return $plain_views
}

# axes --
#   Colours of the axes in the views: those of the dark theme on every background, except in the
#   safe theme.
proc ::vesk::palettes::axes {theme} {
    set colours [colours [expr {$theme eq "safe" ? "safe" : "dark"}]]
    return [lmap axis {x y z} {dict get $colours axis_$axis}]
}
