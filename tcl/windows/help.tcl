# help.tcl --
#   The key table, the command list, the about window, and windows for answers of commands.

namespace eval ::vesk::help {
    # Keys of the views, fixed in the executable: {keys what}.
    variable views {
        "Flat views" {
            "Space" "all views back to where they start"
            "Shift+Space" "3D view back to where it starts"
            "C" "views back to the origin"
            "O  S  D  V" "select objects, surfaces, edges, vertices"
            "B" "the next drag is a rubber band, wherever it begins"
            "Q" "the next element behind the selected one, under the pointer"
            "M  R  E" "move, rotate, extrude (surfaces)"
            "G  Shift+G" "centre the selection in this view, in all"
            "F  Shift+F" "fit the selection in this view, in all"
            "Z  X" "zoom in, zoom out"
            "H" "hide the selected objects"
            "W  T  L  N" "fill, textures, light, normals on and off"
            ".  BackSpace  Delete" "delete what is selected"
            "Escape" "select nothing"
            "Arrows" "pan; Shift further; Control+Up and Down zoom"
            "Alt+arrows" "move the background image; with Shift zoom it"
        }
        "3D view" {
            "Space" "view back to where it starts"
            "1  2" "spin the model, walk through the scene"
            "Arrows" "turn the model, or walk; Control, Alt: zoom, look, sidestep"
            "F" "turn about the selection"
            "G  L  T  N" "ground grid, headlight, textures, normals on and off"
            "W" "filled or wireframe"
            "O  S  D  V  B  Q  M  R  E" "as in the flat views"
            "BackSpace  Delete" "delete what is selected"
        }
        "While dragging" {
            "Shift" "keep proportions (handles, boxes), steps of 15 degrees (rotate)"
            "Control" "grid snap on or off; handles and boxes: about the middle"
            "X  Y  Z" "lock to an axis, again: free"
            "N  P  L" "moving: along the mean normal, the picked axis, the last one"
            "Digits" "type the number; Tab next one, Return keeps, BackSpace corrects"
            "Escape, right button" "as it was before"
        }
        "While drawing an outline" {
            "Return, double click" "end it; a click on the first point closes it"
            "BackSpace" "take the last point back"
            "X  Y  Z, digits" "lock the next edge, type its way"
            "Escape" "drop it"
        }
        "While cutting with the knife" {
            "Return, double click" "cut"
            "BackSpace" "take the last point back"
            "Control, Shift" "middles of edges, right angles"
            "Escape" "drop the line"
        }
        "Objects panel" {
            "F2, double click" "rename"
            "Delete  H  L" "delete, hide, lock"
            "Control+A" "select all"
            "Menu, Shift+F10" "the menu of the right button, here as in views, lists and fields"
            "Drag" "another place in the list, or into a group"
        }
        "Number fields" {
            "Return" "apply; sums such as 1/3, 2*0.5 and +=0.1 are computed"
            "Escape" "as it was before"
            "Up  Down" "step; Shift ten times, Control a tenth"
            "Drag on the letter" "change the number; Shift and Control as above"
        }
    }
}

# keys --
#   Shows every key: those of the menus from their table, and the fixed ones of the views.
proc ::vesk::help::keys {} {
    variable views
    set text ""
    foreach {title rows} $views {
        append text "$title\n"
        foreach {keys what} $rows {append text [format "  %-22s %s\n" $keys $what]}
        append text \n
    }
    append text "Everywhere in the window\n"
    foreach pair [::vesk::menus::all] {
        lassign $pair trail row
        set key [lindex $row 3]
        if {[::vesk::menus::event_of $key] eq ""} {continue}
        append text [format "  %-22s %s\n" $key [::vesk::menus::plain [lindex $row 1]]]
    }
    append text [format "  %-22s %s\n" "Alt+letter, F10" "menus"]
    ::vesk::dialogs::show_text Keys $text 92 28
}

proc ::vesk::help::commands {} {
    ::vesk::dialogs::show_text Commands [vesk list] 90 30
}

# page --
#   Opens a page of the documents in the browser; the manual where that page is missing.
proc ::vesk::help::page {name} {
    set folder [file join $::VESK_HOME docs]
    foreach one [list $name manual] {
        set file [file join $folder $one.html]
        if {![file exists $file]} {continue}
        if {[auto_execok xdg-open] eq ""} {
            no_browser $file
        } else {
            ::vesk::ops::run start_web_browser file://[string map {" " %20} $file]
        }
        return
    }
    display_message "the pages of the manual are not in $folder"
}

# no_browser --
#   Shows the text of a page in a window where no browser can be started.
proc ::vesk::help::no_browser {file} {
    set stream [::open $file]
    fconfigure $stream -encoding utf-8
    set html [read $stream]
    ::close $stream
    regsub -all -nocase {<(script|style|head)[^>]*>.*?</\1>} $html "" html
    regsub -all {[ \t]*\n[ \t]*} $html " " html
    regsub -all -nocase {<(p|h\d|tr|pre|li|br|ul|ol|table)[^>]*>} $html \n html
    regsub -all -nocase {</(h\d|p|pre|table)>} $html \n html
    regsub -all -nocase {</t[dh]>} $html "   " html
    regsub -all {<[^>]*>} $html "" html
    set text [string map {&lt; < &gt; > &quot; \" &#39; ' &nbsp; " " &amp; &} $html]
    regsub -all {\n\s*\n\s*} $text \n\n text
    ::vesk::dialogs::show_text [string totitle [file rootname [file tail $file]]] \
        "No browser was found; the page itself is $file\n\n[string trim $text]" 96 34
    display_message "no browser was found: the page is $file"
}

# show_result --
#   Runs a command and shows its answer.
proc ::vesk::help::show_result {command title} {
    ::vesk::dialogs::show_text $title [::vesk::ops::run $command]
}

proc ::vesk::help::about {} {
    set w .about
    ::vesk::dialogs::window $w "About VESK" 24
    ttk::label $w.in.title -text $::vesk_version_string -style Panel.Title.TLabel
    ttk::label $w.in.what -style Panel.TLabel \
        -text "An interactive polygon modeller for real-time 3D content."
    ttk::label $w.in.with -style Panel.Dim.TLabel -justify left \
        -text "Tcl/Tk [info patchlevel]\nHome: $::VESK_HOME"
    ttk::button $w.in.close -text Close -style Panel.Default.TButton -command [list destroy $w]
    pack $w.in.title $w.in.what $w.in.with -anchor w -pady [::vesk::theme::pad 0 10]
    pack $w.in.close -anchor e
    bind $w <Return> [list destroy $w]
    ::vesk::dialogs::show $w $w.in.close
}
