# veskuvedit.tcl --
#   Textures in the interface, and the door to the editor of texture coordinates.

namespace eval ::vesk::uvedit {
    variable keep 0             ;# pictures stay in place while vertices move
}
::vesk::need panels textures
::vesk::later windows uvedit open keep_changed
