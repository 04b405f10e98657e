# veskuvedit.tcl --
#   Textures in the interface (textures.tcl) and the door to the editor of texture coordinates, whose
#   window is read and built when it is first opened (uvwindow.tcl).

source [file join $::vesk::script_folder textures.tcl]

namespace eval ::vesk::uvedit {
    variable keep 0             ;# pictures stay in place while vertices move
}

# open --
#   F8: shows the window, in front of the others. F8 in it closes it.
proc ::vesk::uvedit::open {} {
    if {[info commands ::vesk::uvedit::build] eq ""} {
        source [file join $::vesk::script_folder uvwindow.tcl]
    }
    if {![winfo exists .uv]} {build .uv}
    wm deiconify .uv
    raise .uv
    focus .uv.view.togl
    refresh
}

# keep_changed --
#   The switch that keeps pictures in place was turned.
proc ::vesk::uvedit::keep_changed {} {
    variable keep
    ::vesk::ops::run uv_keep $keep
}

# ---- what the executable calls; it only does while the window stands ----

proc uvedit_pointer {u v x y} {::vesk::uvedit::pointer $u $v $x $y}
proc uvedit_drag {text} {::vesk::uvedit::drag $text}
proc uvedit_menu {x y} {::vesk::uvedit::popup $x $y}
