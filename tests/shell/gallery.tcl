# gallery.tcl --
#   A picture of every window in every theme, kept among the artefacts to be looked at; and what can
#   be checked without eyes: nothing is wider or higher than the window that holds it, and no text is
#   cut off in a button or a label.

source [file join [file dirname [info script]] support.tcl]

set dpi [expr {round(96 * $::vesk::theme::S)}]

proc shot {name} {
    update
    ::test::pause 150
    ::test::shot gallery-$::dpi-$::theme-$name
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
    ::test::check "$::theme, $::dpi dpi: no text is cut off, $name" {$cut eq {}}
    if {$cut ne ""} {puts $cut}
    if {$w ne "."} {
        ::test::check "$::theme, $::dpi dpi: it fits the screen, $name" {
            [winfo width $w] <= [winfo screenwidth .] && [winfo height $w] <= [winfo screenheight .]
        }
    }
}

# window --
#   Opens a window by a script, takes its picture, closes it with Escape.
proc window {w name script} {
    uplevel #0 $script
    ::test::wait_until {[winfo exists $w] && [winfo viewable $w]} 3000
    update
    ::test::point_at $w
    shot $name
    check_window $w $name
    ::test::key Escape
    ::test::pause 150
    ::test::check "$::theme: Escape closes $name" {![winfo exists $w]}
    destroy $w
}

# modal --
#   The same for a dialog that waits for its answer: what is done meanwhile comes from a timer.
proc modal {w name script {meanwhile ""}} {
    after 500 [list modal_shown $w $name $meanwhile]
    uplevel #0 $script
    ::test::pause 100
}
proc modal_shown {w name meanwhile} {
    catch {
        uplevel #0 $meanwhile
        ::test::point_at $w
        shot $name
        check_window $w $name
    } message
    if {$message ne ""} {puts "FAIL $name: $message"; incr ::test::failures}
    ::test::key Escape
    # A dialog that did not hear it must not stop the tests.
    after 1500 [list destroy $w]
}

::test::run {
    wm geometry . [winfo screenwidth .]x[winfo screenheight .]+0+0
    ::test::pause 500
    vesk set_select_mode object
    vesk select_by_name lamp
    foreach id [vesk get_selected_objects] {catch {$::vesk::objects::tree see $id}}
    foreach theme {dark light contrast safe} {
        set ::vesk::theme_name $theme
        ::vesk::main::set_theme
        ::test::pause 300
        set tabs .main.right.tabs
        foreach tab {object material palette uv issues} {
            $tabs select $tabs.$tab
            ::test::wait_until {$tab ne "issues" || $::vesk::issues::checked_at > 0}
            ::test::pause 250
            shot main-$tab
            check_window . main-$tab
        }
        set ::vesk::console_shown 1
        ::vesk::console::show
        ::vesk::console::say "vesk move 1 0 0" command
        ::vesk::console::say "unknown command" error
        shot console
        set ::vesk::console_shown 0
        ::vesk::console::show
        $tabs select $tabs.object
        foreach page {Interface Views Colours Keys Plug-ins} {
            set ::page $page
            window .preferences preferences-[string tolower $page] {::vesk::preferences::open $::page}
        }
        window .search search {::vesk::search::open; set ::vesk::search::text ext}
        window .history history ::vesk::history::open
        window .tips tips ::vesk::tips::open
        window .about about ::vesk::help::about
        window .report report ::vesk::report::open
        window .textkeys keys ::vesk::help::keys
        window .operations operations ::vesk::operations::open
        modal .filebox filebox {::vesk::filebox::ask open Open \
            [file join $::VESK_HOME examples] {{"All files" *}}} {
            ::test::press_row .filebox.list [lindex [.filebox.list children {}] 0]
            ::test::wait_until {[.filebox.preview.picture cget -image] ne ""} 2000
        }
        modal .question question {::vesk::dialogs::question "Save changes to lamp.vesk?" \
            "It was edited since the last save, 4 minutes ago." \
            {discard "Don't save" cancel Cancel save Save} save cancel}
        modal .colour colour {::vesk::colourbox::ask #e0a848}
        ::vesk::menus::invoke [::vesk::menus::find create revolve]
        ::test::pause 300
        ::test::point_at [::vesk::view::area].options
        shot options
        check_window [::vesk::view::area].options options
        ::test::key Escape
        .mbar.object.menu post [winfo rootx .mbar.object] \
            [expr {[winfo rooty .mbar.object] + [winfo height .mbar.object]}]
        shot menu
        .mbar.object.menu unpost
        ::vesk::tooltips::show .main.tools.extrude
        shot tooltip
        ::vesk::tooltips::hide
    }
    ::test::check "no script failed" {$::test::errors eq {}}
}
