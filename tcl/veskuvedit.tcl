# veskuvedit.tcl --
#   Textures, and the window of texture coordinates, which is read when it opens.

namespace eval ::vesk::uvedit {
    variable keep 0             ;# pictures stay in place while vertices move
}
::vesk::need panels textures
::vesk::later windows uvedit open keep_changed
