# gallery.tcl --
#   A picture of every window, at 96 dpi the main ones in every theme, kept among the artefacts to be
#   looked at; and what can be checked without eyes: nothing is wider or higher than the window that
#   holds it, and no text is cut off in a button or a label.

source [file join [file dirname [info script]] support.tcl]

set dpi [expr {round(96 * $::vesk::theme::S)}]

proc keep {name} {
    # The views draw everything once nothing changed for a while.
    pause 150
    shot gallery-$::dpi-$::theme-$name
}

# cut_off --
#   Buttons, check boxes and labels below a window that got less room than their text needs.
proc cut_off {w} {
    set result {}
    foreach child [winfo children $w] {
        lappend result {*}[cut_off $child]
        if {![winfo viewable $child]} {continue}
        if {[winfo class $child] in {TButton TCheckbutton TRadiobutton}} {
            if {[winfo width $child] < [winfo reqwidth $child] - 1
                    || [winfo height $child] < [winfo reqheight $child] - 1} {
                lappend result "$child [winfo width $child]<[winfo reqwidth $child]"
            }
        }
    }
    return $result
}

proc check_window {w name} {
    set cut [cut_off $w]
    check "$::theme, $::dpi dpi: no text is cut off, $name" {$cut eq {}}
    if {$cut ne ""} {puts $cut}
    if {$w ne "."} {
        check "$::theme, $::dpi dpi: it fits the screen, $name" {
            [winfo width $w] <= [winfo screenwidth .] && [winfo height $w] <= [winfo screenheight .]
        }
    }
}

# window --
#   Opens a window by a script, takes its picture, closes it with Escape.
proc window {w name script} {
    uplevel #0 $script
    wait_until {[shown $w]}
    point_at $w
    keep $name
    check_window $w $name
    key Escape
    check "$::theme: Escape closes $name" {![winfo exists $w]}
    destroy $w
}

# modal --
#   The same for a dialog that waits for its answer.
proc modal {w name script {meanwhile ""}} {
    set ::w $w
    when {[front $::w]} [list modal_shown $w $name $meanwhile]
    set ::unheard {}
    uplevel #0 $script
    after cancel $::unheard ;# not the next one of that name
}
proc modal_shown {w name meanwhile} {
    catch {
        uplevel #0 $meanwhile
        point_at $w
        keep $name
        check_window $w $name
    } message
    check "nothing failed in $name" {$message eq ""}
    key Escape
    # A dialog that did not hear it must not stop the tests.
    set ::unheard [after 5000 [list destroy $w]]
}

# show_main --
#   The main window with each of its tabs.
proc show_main {tabs} {
    foreach tab $tabs {
        open_tab $tab
        wait_until {$tab ne "issues" || $::vesk::issues::checked_at > 0}
        # The picture of the UV tab is drawn when the model rests.
        pause 100
        keep main-$tab
        check_window . main-$tab
    }
    open_tab object
}

proc show_preferences {pages} {
    foreach page $pages {
        set ::page $page
        window .preferences preferences-[string tolower $page] {::vesk::preferences::open $::page}
    }
}

proc show_question {} {
    modal .question question {::vesk::dialogs::question "Save changes to lamp.vesk?" \
        "It was edited since the last save, 4 minutes ago." \
        {discard "Don't save" cancel Cancel save Save} save cancel}
}

proc show_menu {} {
    .mbar.object.menu post [winfo rootx .mbar.object] \
        [expr {[winfo rooty .mbar.object] + [winfo height .mbar.object]}]
    keep menu
    .mbar.object.menu unpost
}

# show_everything --
#   In one theme; in the others colours alone differ.
proc show_everything {} {
    show_main {object material palette uv issues}
    show_console 1
    ::vesk::console::say "vesk move 1 0 0" command
    ::vesk::console::say "unknown command" error
    keep console
    show_console 0
    show_preferences {Interface Views Colours Keys Plug-ins}
    window .search search {::vesk::search::open; set ::vesk::search::text ext}
    window .history history ::vesk::history::open
    window .tips tips ::vesk::tips::open
    window .about about ::vesk::help::about
    window .report report ::vesk::report::open
    window .textkeys keys ::vesk::help::keys
    window .operations operations ::vesk::operations::open
    modal .filebox filebox {::vesk::filebox::ask open Open \
        [file join $::VESK_HOME examples] {{"All files" *}}} {
        press_row .filebox.list [lindex [.filebox.list children {}] 0]
        wait_until {[.filebox.preview.picture cget -image] ne ""}
    }
    show_question
    modal .colour colour {::vesk::colourbox::ask #e0a848}
    set options [open_options create revolve]
    point_at $options
    keep options
    check_window $options options
    key Escape
    show_menu
    ::vesk::tooltips::show .main.tools.extrude
    keep tooltip
    ::vesk::tooltips::hide
}

run {
    resize [winfo screenwidth .]x[winfo screenheight .]+0+0
    vesk set_select_mode object
    vesk select_by_name lamp
    foreach id [vesk get_selected_objects] {catch {$::vesk::objects::tree see $id}}
    set theme dark
    use_theme $theme
    show_everything
    foreach theme [expr {$dpi == 96 ? {light contrast safe} : {}}] {
        use_theme $theme
        show_main {object palette}
        show_preferences {Views}
        show_question
        show_menu
    }
}
