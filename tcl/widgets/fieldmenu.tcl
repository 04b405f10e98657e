# fieldmenu.tcl --
#   The menu of the right button and the menu key in fields and texts: cut, copy, paste, select all.

namespace eval ::vesk::fieldmenu {}

# popup --
#   Shows the menu of the field or text `w` at a place of the screen.
proc ::vesk::fieldmenu::popup {w x y} {
    if {[state_of $w] eq "disabled" && [winfo class $w] ne "Text"} {return}
    focus $w
    set menu [::vesk::menus::new_popup]
    set editable [expr {[state_of $w] eq "normal"}]
    set chosen [selected $w]
    set clip [expr {![catch {clipboard get} text] && $text ne ""}]
    foreach {label key event possible} [list \
            Cut Ctrl+X <<Cut>> [expr {$editable && $chosen}] \
            Copy Ctrl+C <<Copy>> $chosen \
            Paste Ctrl+V <<Paste>> [expr {$editable && $clip}] \
            "Select all" Ctrl+A <<SelectAll>> 1] {
        ::vesk::menus::add_command $menu $label [list event generate $w $event] \
            -accelerator [::vesk::menus::accelerator $key] \
            -state [expr {$possible ? "normal" : "disabled"}]
    }
    tk_popup $menu $x $y
}

# state_of --
#   The state of a classic or themed field: normal, readonly or disabled.
proc ::vesk::fieldmenu::state_of {w} {
    if {[winfo class $w] in {TEntry TCombobox}} {
        foreach state {disabled readonly} {
            if {[$w instate $state]} {return $state}
        }
        return normal
    }
    return [$w cget -state]
}

proc ::vesk::fieldmenu::selected {w} {
    if {[winfo class $w] eq "Text"} {return [expr {[$w tag ranges sel] ne ""}]}
    return [$w selection present]
}
