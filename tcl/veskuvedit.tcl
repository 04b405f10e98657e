# veskuvedit.tcl --
#   Textures in the interface: the list of loaded textures in Object > Texture, to which the
#   executable appends an entry for each one ("<menu> add command ..."). Its entries get the look
#   and the checks of the others when the menu opens.

namespace eval ::vesk::uv {}

# prepare_menu --
#   Called before Object > Texture opens.
proc ::vesk::uv::prepare_menu {} {
    set path .mbar.object.menu.texture
    ::vesk::menus::refresh texture_list $path
    set possible [expr {[dict get [::vesk::menus::now] selected] > 0}]
    set last [$path index end]
    for {set entry [llength [::vesk::menus::rows texture_list]]} {$entry <= $last} {incr entry} {
        if {[$path type $entry] ne "command"} {continue}
        set label [string trim [$path entrycget $entry -label]]
        $path entryconfigure $entry -label "  $label" -image [::vesk::theme::menu_row_image] \
            -compound left -accelerator "   " -state [expr {$possible ? "normal" : "disabled"}]
    }
}

proc ::vesk::uv::build {} {
    .mbar.object.menu.texture configure -postcommand ::vesk::uv::prepare_menu
}
