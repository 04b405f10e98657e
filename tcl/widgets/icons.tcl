# icons.tcl --
#   Icons: one sheet a theme, scale and variant, loaded once; an icon is cropped from it on its
#   first use. Switching the theme refills the same images, so every widget follows. The
#   executable's image type "vesk_icon" leaves the sheets on the X server; where it is missing the
#   images are photos.

namespace eval ::vesk::icons {
    variable theme dark
    variable scale 1
    variable index {icons {} elements {}}
    variable sheets {}      ;# loaded sheets: file name -> image
    variable made {}        ;# icons handed out: image -> {name variant}
    variable native [expr {"vesk_icon" in [image types]}]
}

# create --
#   An image of the kind this server can show best.
proc ::vesk::icons::create {image} {
    variable native
    return [image create [expr {$native ? "vesk_icon" : "photo"}] $image]
}

# blank --
#   A transparent image of that size.
proc ::vesk::icons::blank {image width height} {
    variable native
    create $image
    if {$native} {
        $image blank $width $height
    } else {
        $image configure -width $width -height $height
    }
    return $image
}

# open --
#   Reads the index and fixes the scale: the available one that is nearest to `wanted`.
proc ::vesk::icons::open {wanted} {
    variable index
    variable scale
    set file [file join $::VESK_HOME icons index]
    if {[catch {::open $file} channel]} {
        puts stderr "no icons at $file: $channel"
        return
    }
    set index [read $channel]
    close $channel
    set best 1e9
    foreach candidate [dict keys [dict get $index icons]] {
        set distance [expr {abs($candidate - $wanted)}]
        if {$distance < $best} {
            set best $distance
            set scale $candidate
        }
    }
}

# set_theme --
#   Chooses the sheets of `name` and refills every icon handed out.
proc ::vesk::icons::set_theme {name} {
    variable theme
    variable made
    set name [::vesk::palettes::pictures_of $name]
    set theme $name
    dict for {image what} $made {
        crop $image icons-$theme-$::vesk::icons::scale-[lindex $what 1] icons [lindex $what 0]
    }
    drop_sheets
}

# get --
#   The image of an icon.
#   name     as in icons/svg
#   variant  normal, active (on the selection colour), dim or disabled
proc ::vesk::icons::get {name {variant normal}} {
    variable made
    variable theme
    variable scale
    set image ::vesk::icons::$name-$variant
    if {![dict exists $made $image]} {
        create $image
        dict set made $image [list $name $variant]
        crop $image icons-$theme-$scale-$variant icons $name
    }
    return $image
}

# or_disabled --
#   The -image of a button: an icon, and its variant for the disabled button.
proc ::vesk::icons::or_disabled {name {variant normal}} {
    return [list [get $name $variant] disabled [get $name disabled]]
}

# follow_selection --
#   Gives the selected rows of a list the icons that contrast with the selection's colour.
proc ::vesk::icons::follow_selection {list} {
    bind $list <<TreeviewSelect>> {+::vesk::icons::swap_selected %W}
    bind $list <Destroy> {+unset -nocomplain ::vesk::icons::swapped(%W)}
}
proc ::vesk::icons::swap_selected {list} {
    variable swapped
    if {![info exists swapped($list)]} {set swapped($list) {}}
    foreach {row image} $swapped($list) {
        if {[$list exists $row]} {$list item $row -image $image}
    }
    set swapped($list) {}
    foreach row [$list selection] {
        set image [lindex [$list item $row -image] 0]
        if {[regexp {^::vesk::icons::([\w-]+)-(dim|normal)$} $image -> name variant]} {
            lappend swapped($list) $row $image
            $list item $row -image [get $name active]
        }
    }
}

# element --
#   The image of a frame in one theme; these are never refilled, for a ttk theme keeps its elements.
proc ::vesk::icons::element {theme_name name} {
    variable scale
    set image ::vesk::icons::$theme_name/$name
    if {$image ni [image names]} {
        create $image
        crop $image elements-[::vesk::palettes::pictures_of $theme_name]-$scale elements $name
    }
    return $image
}

# crop --
#   Fills an image from its place on a sheet.
proc ::vesk::icons::crop {image sheet kind name} {
    variable index
    variable scale
    variable native
    if {![dict exists $index $kind $scale $name]} {
        blank $image 16 16
        return
    }
    lassign [dict get $index $kind $scale $name] x y width height
    if {$native} {
        $image crop [sheet_file $sheet] $x $y $width $height
        return
    }
    $image blank
    $image copy [sheet $sheet] -from $x $y [expr {$x + $width}] [expr {$y + $height}] \
        -to 0 0 -compositingrule set
}

proc ::vesk::icons::sheet_file {name} {
    return [file join $::VESK_HOME icons $name.png]
}

proc ::vesk::icons::sheet {name} {
    variable sheets
    if {![dict exists $sheets $name]} {
        dict set sheets $name [image create photo -file [sheet_file $name] -format png]
    }
    return [dict get $sheets $name]
}

# drop_sheets --
#   Frees the sheets; the icons cropped from them stay.
proc ::vesk::icons::drop_sheets {} {
    variable sheets
    image delete {*}[dict values $sheets]
    set sheets {}
}
