# keys.tcl --
#   Where keys go: typed text stays in its field, keys of the window reach neither the field nor the
#   model, and a view takes the focus only when the pointer moves into it.

source [file join [file dirname [info script]] support.tcl]

set tab .main.right.tabs.object
set box {vesk create box 0 0 0 0 1 1 1}

# keypresses --
#   The keys that the views got, as the console tells them.
proc keypresses {} {
    return [regexp -all -inline -line {^> vesk keypress .*$} [.main.console.text get 1.0 end]]
}

run {
    open_tab object
    fresh $box

    # The console opens under a resting pointer: an upper view comes to lie below it.
    set cell $::vesk::view::area_path.zy
    press [widget zy] 200 [expr {[winfo height $cell] - 12}]
    vesk select_all
    ::vesk::console::empty
    key F12
    type ".h"
    check "what is typed for the console stays there" {
        $::vesk::console::typed eq ".h" && [keypresses] eq {} && [llength [top_objects]] == 1
    }
    key ctrl+a BackSpace
    at xz 100 60
    type "get_world"
    check "nor does a view take the focus from a field that the pointer leaves" {
        $::vesk::console::typed eq "get_world"
    }
    key Return
    key F12

    # Keys of the window do not change the text of a field, and the field's letters stay.
    press $tab.name
    key ctrl+a
    type "desk"
    foreach {letter what} {d "" e .operations k "" o .question t "" h .history b "" w ""} {
        press $tab.name
        key Home Right
        if {$letter eq "o"} {when {[front .question]} {key Escape}}
        key ctrl+$letter
        check "Control+$letter leaves the text alone" {[$tab.name get] eq "desk"}
        if {$what eq ".operations"} {check "and opens its window" {[winfo exists $what]}}
        foreach w {.history .operations} {destroy $w}
        # Without a window manager the keyboard would belong to no window.
        focus -force .
    }
    check "the name is as it was typed" {[info_of $::cube name] eq "desk"}

    # Undo in a field is the field's first, then the model's.
    press $tab.name
    key End
    type "top"
    wait_until {[$tab.name get] eq "desktop"}
    key ctrl+z
    check "Control+Z takes the typed text back" {
        [$tab.name get] eq "desk" && [info_of $::cube name] eq "desk"
    }
    key ctrl+z
    check "and then what the model did last" {[info_of $::cube name] ne "desk"}

    # A key that the window binds never reaches the model.
    fresh $box
    click xyz 3 12 200
    key Escape
    ::vesk::console::empty
    key ctrl+shift+space
    check "Control+Shift+Space is the window's alone" {
        [keypresses] eq {} && "xyz" in $::vesk::view::detached
    }
    ::vesk::view::detach_or_back xyz
    wait_until {"xyz" ni $::vesk::view::detached}

    # The fields of the option bar.
    fresh $box
    at xy 200 200
    press .main.tools.scale
    enter .opt.tool.x.value 2
    check "a factor is applied" {[near [size] {2 1 1}]}
    enter .opt.tool.y.value 3
    check "once: the next factor goes alone" {[near [size] {2 3 1}]}
    key m
    check "and after Return keys are the views'" {$::vesk::draw_mode eq "move"}
}
