# veskuvedit.tcl --
#   Textures in the interface (textures.tcl).

source [file join $::vesk::script_folder textures.tcl]
