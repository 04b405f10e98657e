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
#   Completes the menu Object > Texture before it opens.
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

# edge --
#   The outline of the texture's field, as the entries have it.
proc ::vesk::textures::edge {} {
    variable path
    $path.texture configure -highlightbackground [::vesk::theme::colour edge] \
        -highlightcolor [::vesk::theme::colour ring]
}

# add_rows --
#   Appends texture, repeats and offsets to the grid of the tab. Returns the last row's number.
proc ::vesk::textures::add_rows {tab row} {
    variable path $tab
    ttk::label $tab.ltexture -text Texture -style Panel.Dim.TLabel
    menubutton $tab.texture -relief flat -borderwidth 0 -highlightthickness 1 -anchor w \
        -compound left -padx [::vesk::theme::px 4] -menu $tab.texture.menu -takefocus 1
    menu $tab.texture.menu -tearoff 0 -postcommand ::vesk::textures::fill_choice
    ::vesk::theme::recolour $tab.texture
    ::vesk::theme::follow ::vesk::textures::edge
    edge
    ::vesk::theme::recolour $tab.texture.menu
    ::vesk::tooltips::attach $tab.texture Texture "" "The picture on the selected objects."
    grid $tab.ltexture -row [incr row] -column 0 -sticky w
    grid $tab.texture -row $row -column 1 -columnspan 3 -sticky we \
        -padx [::vesk::theme::pad 4 0] -pady [::vesk::theme::px 2]
    foreach {what label} {repeat Repeats offset Offsets} {
        set entries [::vesk::fields::axis_row $tab [incr row] $what $label {u v} \
            ::vesk::textures::value]
        foreach axis {u v} entry $entries {
            ::vesk::fields::number_keys $entry ::vesk::textures::value($what,$axis) \
                [list ::vesk::textures::typed $what $axis]
        }
    }
    return $row
}

# refresh --
#   Shows the textures of the selected objects, a dash where they differ; repeats and offsets only
#   where there is a texture.
#   infos  their object_info
proc ::vesk::textures::refresh {infos force} {
    variable path
    variable shown_texture
    if {$path eq ""} {return}
    set any [expr {[llength $infos] > 0}]
    set ids [::vesk::transform::distinct $infos texture_id]
    set names [::vesk::transform::distinct $infos texture]
    set label [file tail [::vesk::transform::common $names]]
    if {$any && $label eq ""} {set label none}
    if {$label eq [lindex $names 0] && $ids eq "-1" && $label ne ""} {append label " (missing)"}
    set id [expr {[llength $ids] == 1 ? [lindex $ids 0] : -1}]
    if {$shown_texture ne [list $id $label $any]} {
        set shown_texture [list $id $label $any]
        # A greyed picture would be drawn through a pattern.
        $path.texture configure -text " $label" -image [expr {$any ? [preview $id] : ""}] \
            -state [expr {$any ? "normal" : "disabled"}]
    }
    foreach what {repeat offset} {
        set parts [list $path.l$what $path.${what}u $path.${what}v]
        if {!$any || $ids eq "-1"} {
            grid remove {*}$parts
            continue
        }
        grid {*}$parts
        set pairs [::vesk::transform::distinct $infos texture_$what]
        foreach axis {u v} place {0 1} {
            set numbers [lmap pair $pairs {::vesk::arith::shown [lindex $pair $place]}]
            ::vesk::fields::show_number $path.$what$axis.value \
                ::vesk::textures::value($what,$axis) \
                [::vesk::transform::common [lsort -unique $numbers]] $force
        }
    }
}

# fill_choice --
#   The menu of the texture row: none, a file, and all loaded textures.
proc ::vesk::textures::fill_choice {} {
    variable path
    set menu $path.texture.menu
    $menu delete 0 end
    ::vesk::menus::add_command $menu None {::vesk::textures::do set_no_texture}
    ::vesk::menus::add_command $menu Choose... {::vesk::textures::do file_select_texture}
    set id -1
    foreach texture [vesk texture_list] {
        if {[incr id] == 0} {$menu add separator}
        lassign $texture name file width height
        ::vesk::menus::add_command $menu [file tail $name] \
            [list ::vesk::textures::do set_texture $id] -image [preview $id] \
            -accelerator [::vesk::menus::accelerator "$width \u00d7 $height"]
    }
}

# do --
#   Runs a command and refreshes the tab.
proc ::vesk::textures::do {args} {
    ::vesk::ops::run {*}$args
    ::vesk::ops::soon ::vesk::transform::refresh
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
