# tips.tcl --
#   Tips: a line of advice at the start and in Help, each time another.

namespace eval ::vesk::tips {
    variable width 0               ;# in pixels; 0 before the first one
    variable list {
        "Return in a number field applies it; sums such as 1/3 and +=0.1 are computed."
        "F3 finds every command by name, menu, key or help text."
        "A double click on a view's label shows it alone; Control+Space brings the others back."
        "Drag the crossing of the dividers to size all four views at once; double click evens them."
        "F12 opens the console. Every action is echoed there as the line that repeats it."
        "The eye and the lock beside a name work on all selected rows."
        "F6 goes from region to region: bar, tools, views, objects, tabs, console."
        "Keys such as O, S, V, M and R work in the view under the pointer."
        "Shift+F fits the selection in all views, F in one."
        "Right-click a tool to go to its fields."
        "In the Object tab \"by\" types how far things go, \"to\" where they go."
        "F2 renames the object in the list."
        "While you drag, X, Y and Z lock the axis; digits type the exact number."
        "Escape or the right button takes a running drag back, as if it had never begun."
        "A rubber band to the right takes what lies wholly inside, to the left also what it touches."
        "A second click at the same place selects what lies behind."
        "Drag the letter of a number field sideways to change it; Shift is faster, Control finer."
        "Control+R repeats the last operation on what is selected now."
        "Control+Shift+R opens the options of the last operation again and changes its result."
        "Control+H shows the history; a click goes back to any state, or forward again."
        "The Issues tab (F7) finds open edges, double vertices and more, and mends them."
        "Holding Control while dragging turns the grid snap on or off, whichever it is not."
        "A view's label menu takes the view into a window of its own, for a second screen."
        "Click an end of the axis cross in the 3D view to look along that axis."
        "Keys 1 and 2 in the 3D view change between turning the model and walking through it."
        "Preferences (Control+comma) has keys for people who come from other modellers."
        "In the console, select some lines and press the right button to save them as a tool."
        "Unsaved work is copied every two minutes; after a crash the next start offers the copy."
        "The Palette tab selects every surface of a material, and shows which materials are unused."
        "Tools > Measure the selection tells distances, angles, areas and volumes."
        "Drag rows in the objects list to put objects into groups or into another order."
        "A shape tool with Shift makes equal sides, with Control it starts from the middle."
    }
}

# next --
#   The text of the next tip; the preference `current_tip` counts them.
proc ::vesk::tips::next {} {
    variable list
    set place [expr {$::prefs_current_tip % [llength $list]}]
    set ::prefs_current_tip [expr {($place + 1) % [llength $list]}]
    return [lindex $list $place]
}

# open --
#   Shows the next tip in a window, as wide as the last one unless told otherwise.
proc ::vesk::tips::open {{pixels ""}} {
    variable width
    if {$width == 0} {set width [::vesk::theme::px 340]}
    if {$pixels ne ""} {set width $pixels}
    set w .tips
    ::vesk::dialogs::window $w "Tip - VESK" 20
    ttk::label $w.in.title -text "Did you know?" -style Panel.Bold.TLabel
    ttk::label $w.in.text -style Panel.TLabel -text [next] \
        -wraplength $width -justify left -anchor w
    ttk::checkbutton $w.in.again -style Panel.TCheckbutton -text "Show tips at the start" \
        -variable ::prefs_show_startup_tips
    ttk::button $w.in.next -style Panel.TButton -text Next -command ::vesk::tips::open
    ttk::button $w.in.close -style Panel.Default.TButton -text Close -command [list destroy $w]
    grid $w.in.title - - -sticky w -pady [::vesk::theme::pad 0 8]
    grid $w.in.text - - -sticky w -pady [::vesk::theme::pad 0 16]
    grid $w.in.again - - -sticky w -pady [::vesk::theme::pad 0 12]
    grid x $w.in.next $w.in.close -sticky e -padx [::vesk::theme::pad 8 0]
    grid columnconfigure $w.in 0 -weight 1
    # Every tip in a window of the same size.
    grid rowconfigure $w.in 1 -minsize [expr {3 * [font metrics TkDefaultFont -linespace]
        + [::vesk::theme::px 16]}]
    ttk::frame $w.in.wide -width $width
    grid $w.in.wide - - -
    bind $w <Return> [list destroy $w]
    ::vesk::dialogs::show $w $w.in.close
}

# at_start --
#   Shows the tip of the start without covering the views: in a window over the panel at the right,
#   or, where there is none, in a line below the option bar.
proc ::vesk::tips::at_start {} {
    set room [expr {[winfo width .main.right] - [::vesk::theme::px 44]}]
    if {![winfo ismapped .main.right] || $room < [::vesk::theme::px 240]} {
        strip
        return
    }
    open $room
    # Above the status line.
    set w .tips
    update idletasks
    set x [expr {[winfo rootx .] + [winfo width .] - [winfo reqwidth $w]}]
    set y [expr {[winfo rooty .status] - [winfo reqheight $w]}]
    wm geometry $w +[expr {max(0, $x)}]+[expr {max(0, $y)}]
}

# strip --
#   The next tip in a line of its own below the option bar.
proc ::vesk::tips::strip {} {
    set w .tipstrip
    destroy $w
    ttk::frame $w -style Panel.TFrame -padding [::vesk::theme::pad 12 4 8 4]
    ttk::button $w.close -style Icon.Toolbutton -image [::vesk::icons::get close dim] \
        -command [list destroy $w]
    ttk::button $w.next -style Panel.TButton -text Next -command ::vesk::tips::strip
    ttk::label $w.text -style Panel.TLabel -text [next] -justify left -anchor w \
        -wraplength [expr {[winfo width .] - [::vesk::theme::px 160]}]
    ::vesk::tooltips::attach $w.close "Close the tip" "" "Help > Tips shows them again."
    pack $w.close $w.next -side right -padx [::vesk::theme::pad 8 0]
    pack $w.text -side left -fill x -expand 1
    pack $w -side top -fill x -after .under
}
