# tooltips.tcl --
#   Tooltips: a small window under the pointer with the name in bold, its key, and a line of help.

namespace eval ::vesk::tooltips {
    variable texts              ;# widget -> {name key help}
    variable timer ""
    variable shown ""           ;# the widget whose tooltip is there
    array set texts {}
}

# attach --
#   Gives a widget a tooltip.
#   help  a line of text, or the name of a procedure that returns one
proc ::vesk::tooltips::attach {w name key help} {
    variable texts
    set texts($w) [list $name $key $help]
    bind $w <Enter> +[list ::vesk::tooltips::wait %W]
    bind $w <Leave> +::vesk::tooltips::hide
    bind $w <Button> +::vesk::tooltips::hide
    bind $w <Key> +::vesk::tooltips::hide
    bind $w <Destroy> +[list ::vesk::tooltips::gone $w]
}

proc ::vesk::tooltips::wait {w} {
    variable timer
    after cancel $timer
    if {$::prefs_balloon_help} {set timer [after 600 [list ::vesk::tooltips::show $w]]}
}

# gone --
#   Removes the tooltip of a destroyed widget.
proc ::vesk::tooltips::gone {w} {
    variable texts
    variable shown
    unset -nocomplain texts($w)
    if {$shown eq $w} {after idle ::vesk::tooltips::hide}
}

proc ::vesk::tooltips::hide {} {
    variable timer
    after cancel $timer
    destroy .tip
}

proc ::vesk::tooltips::show {w} {
    variable texts
    if {![winfo exists $w] || ![info exists texts($w)] || ![winfo ismapped $w]} {return}
    variable shown $w
    lassign $texts($w) name key help
    if {[string match ::vesk::* $help]} {set help [$help]}
    destroy .tip
    toplevel .tip -class Tip -borderwidth 0
    wm withdraw .tip
    wm overrideredirect .tip 1
    ::vesk::theme::on .tip tip_frame
    ttk::frame .tip.in -style Tip.TFrame -padding [::vesk::theme::pad 8 5 8 5]
    pack .tip.in -padx 1 -pady 1
    ttk::label .tip.in.name -text $name -style TipBold.TLabel
    ttk::label .tip.in.key -text $key -style Tip.TLabel
    ttk::label .tip.in.help -text $help -style Tip.TLabel -justify left
    grid .tip.in.name .tip.in.key -sticky w
    grid configure .tip.in.key -sticky e -padx [::vesk::theme::pad 16 0]
    if {$help ne ""} {grid .tip.in.help - -sticky w -pady [::vesk::theme::pad 4 0]}
    grid columnconfigure .tip.in 0 -weight 1
    update idletasks
    if {![winfo exists .tip]} {return}
    set x [expr {[winfo rootx $w] + [winfo width $w] / 4}]
    set y [expr {[winfo rooty $w] + [winfo height $w] + [::vesk::theme::px 4]}]
    set x [expr {max(0, min($x, [winfo screenwidth .] - [winfo reqwidth .tip]))}]
    if {$y + [winfo reqheight .tip] > [winfo screenheight .]} {
        set y [expr {[winfo rooty $w] - [winfo reqheight .tip] - [::vesk::theme::px 4]}]
    }
    wm geometry .tip +$x+$y
    wm deiconify .tip
    raise .tip
}
