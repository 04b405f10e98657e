# textures.tcl --
#   Textures in the interface: the list of loaded textures in Object > Texture with their pictures,
#   and the rows of the Object tab. The executable appends an entry to the menu for each texture
#   ("<menu> add command ..."); it gets the look and the checks of the others when the menu opens.

namespace eval ::vesk::textures {
    variable path ""            ;# the Object tab
    variable value              ;# repeat,u repeat,v offset,u offset,v -> text shown
    variable shown_texture ""
    array set value {repeat,u "" repeat,v "" offset,u "" offset,v ""}
}

# ---- the menu ----

proc ::vesk::textures::build {} {
    .mbar.object.menu.texture configure -postcommand ::vesk::textures::prepare_menu
}

# prepare_menu --
#   Called before Object > Texture opens.
proc ::vesk::textures::prepare_menu {} {
    set path .mbar.object.menu.texture
    ::vesk::menus::refresh texture_list $path
    set possible [expr {[dict get [::vesk::menus::now] selected] > 0}]
    set last [$path index end]
    set id -1
    for {set entry [llength [::vesk::menus::rows texture_list]]} {$entry <= $last} {incr entry} {
        if {[$path type $entry] ne "command"} {continue}
        set label [file tail [string trim [$path entrycget $entry -label]]]
        $path entryconfigure $entry -label "  $label" -image [preview [incr id]] \
            -compound left -accelerator "   " -state [expr {$possible ? "normal" : "disabled"}]
    }
}

# preview --
#   A small picture of a texture for a menu row, or the empty one.
proc ::vesk::textures::preview {id} {
    set picture ""
    if {$id >= 0} {set picture [vesk texture_photo $id [::vesk::theme::px 22]]}
    return [expr {$picture eq "" ? [::vesk::theme::menu_row_image] : $picture}]
}

# ---- the rows of the Object tab ----

# add_rows --
#   Appends texture, repeats and offsets to the grid of the tab. Returns the last row's number.
proc ::vesk::textures::add_rows {tab row} {
    variable path $tab
    ttk::label $tab.ltexture -text Texture -style Panel.Dim.TLabel
    menubutton $tab.texture -relief flat -borderwidth 0 -highlightthickness 0 -anchor w \
        -compound left -padx [::vesk::theme::px 4] -menu $tab.texture.menu -takefocus 1
    menu $tab.texture.menu -tearoff 0 -postcommand ::vesk::textures::fill_choice
    ::vesk::theme::recolour $tab.texture
    ::vesk::theme::recolour $tab.texture.menu
    ::vesk::tips::attach $tab.texture Texture "" "The picture on the selected objects."
    grid $tab.ltexture -row [incr row] -column 0 -sticky w
    grid $tab.texture -row $row -column 1 -columnspan 3 -sticky we \
        -padx [::vesk::theme::pad 4 0] -pady [::vesk::theme::px 2]
    foreach {what label} {repeat Repeats offset Offsets} {
        ttk::label $tab.l$what -text $label -style Panel.Dim.TLabel
        grid $tab.l$what -row [incr row] -column 0 -sticky w
        set column 0
        foreach {axis colour} {u x v y} {
            set variable ::vesk::textures::value($what,$axis)
            set entry [::vesk::dialogs::axis_field $tab.$what$axis $colour $variable Panel. 6]
            $tab.$what$axis.letter configure -text [string toupper $axis]
            ::vesk::dialogs::number_keys $entry $variable \
                [list ::vesk::textures::typed $what $axis]
            grid $tab.$what$axis -row $row -column [incr column] -sticky we \
                -padx [::vesk::theme::pad 4 0] -pady [::vesk::theme::px 2]
        }
    }
    return $row
}

# refresh --
#   Shows what the selected objects have, a dash where they differ; repeats and offsets only where
#   there is a texture.
#   infos  their object_info
proc ::vesk::textures::refresh {infos force} {
    variable path
    variable value
    variable shown_texture
    if {$path eq ""} {return}
    set any [expr {[llength $infos] > 0}]
    set ids [distinct $infos texture_id]
    set names [distinct $infos texture]
    set label [expr {[llength $names] > 1 ? "\u2013" : [file tail [lindex $names 0]]}]
    if {$any && $label eq ""} {set label none}
    if {$label eq [lindex $names 0] && $ids eq "-1" && $label ne ""} {append label " (missing)"}
    set id [expr {[llength $ids] == 1 ? [lindex $ids 0] : -1}]
    if {$shown_texture ne [list $id $label $any]} {
        set shown_texture [list $id $label $any]
        # A greyed picture would be drawn through a pattern.
        $path.texture configure -text " $label" -image [expr {$any ? [preview $id] : ""}] \
            -state [expr {$any ? "normal" : "disabled"}]
    }
    set placed [expr {$any && $ids ne "-1"}]
    foreach what {repeat offset} {
        if {!$placed} {
            grid remove $path.l$what $path.${what}u $path.${what}v
            continue
        }
        grid $path.l$what $path.${what}u $path.${what}v
        foreach axis {u v} place {0 1} {
            set entry $path.$what$axis.value
            if {!$force && [focus] eq $entry
                    && [::vesk::dialogs::being_typed $entry]} {continue}
            set numbers [lsort -unique [lmap pair [distinct $infos texture_$what] {
                ::vesk::arith::shown [lindex $pair $place]
            }]]
            set number [expr {[llength $numbers] > 1 ? "\u2013" : [lindex $numbers 0]}]
            if {$value($what,$axis) ne $number} {
                set value($what,$axis) $number
                if {[focus] eq $entry} {::vesk::dialogs::shown_again $entry}
            }
        }
    }
}

# distinct --
#   The different values of a key.
proc ::vesk::textures::distinct {infos key} {
    set values {}
    foreach info $infos {
        if {[dict exists $info $key]} {lappend values [dict get $info $key]}
    }
    return [lsort -unique $values]
}

# fill_choice --
#   The menu of the texture row: none, a file, and everything that is loaded.
proc ::vesk::textures::fill_choice {} {
    variable path
    set menu $path.texture.menu
    $menu delete 0 end
    set row [list -image [::vesk::theme::menu_row_image] -compound left -accelerator "   "]
    $menu add command -label "  None" {*}$row -command {::vesk::textures::do set_no_texture}
    $menu add command -label "  Choose..." {*}$row \
        -command {::vesk::textures::do file_select_texture}
    set id -1
    foreach texture [vesk texture_list] {
        if {[incr id] == 0} {$menu add separator}
        lassign $texture name file width height
        $menu add command -label "  [file tail $name]" -image [preview $id] -compound left \
            -accelerator "   ${width} \u00d7 $height   " \
            -command [list ::vesk::textures::do set_texture $id]
    }
}

# do --
#   Runs a command and shows what came of it.
proc ::vesk::textures::do {args} {
    ::vesk::ops::run {*}$args
    ::vesk::transform::refresh 1
}

# typed --
#   A repeat or an offset was typed; the other number of the pair stays that of the first object.
proc ::vesk::textures::typed {what axis number} {
    set now [lrange [vesk get_texture_repoff] [expr {$what eq "repeat" ? 0 : 2}] end]
    set place [expr {$axis eq "u" ? 0 : 1}]
    do set_texture_${what}s {*}[lreplace [lrange $now 0 1] $place $place $number]
}

# ---- what the executable calls ----

# window_show_photo --
#   Shows a picture in a label or in the middle of a canvas.
proc window_show_photo {window photo} {
    if {[winfo class $window] eq "Canvas"} {
        $window delete vesk_texture
        $window create image [expr {[winfo width $window] / 2}] \
            [expr {[winfo height $window] / 2}] -image $photo -tags vesk_texture
    } else {
        $window configure -image $photo
    }
}
