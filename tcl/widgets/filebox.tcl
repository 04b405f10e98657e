# filebox.tcl --
#   The file dialog: places at the left, a list of the folder, the name, the filter. It never
#   changes the current directory.

namespace eval ::vesk::filebox {
    variable folder ""
    variable how open
    variable name ""
    variable filters {}
    variable filter ""
    variable hidden 0           ;# files and folders are shown whose names begin with a dot
}

# ask --
#   Returns the chosen absolute name, or "" when the dialog was cancelled.
#   how      open (an existing file), save (a new name; asks before replacing) or folder
#   start    folder to begin in; "" the home folder
#   filters  {{description patterns} ...}; the number of the chosen one is fsBox(currentfilter)
#   wanted   name to begin with
proc ::vesk::filebox::ask {how_wanted title start filters_wanted {wanted ""}} {
    variable folder
    variable how $how_wanted
    variable name $wanted
    variable filters [cleaned $filters_wanted]
    variable filter
    if {$start eq "" || ![file isdirectory $start]} {set start $::prefs_default_dir}
    if {$start eq "" || ![file isdirectory $start]} {set start [file normalize ~]}
    set folder [file normalize $start]
    set number $::fsBox(currentfilter)
    if {![string is integer -strict $number] || $number < 0 || $number >= [llength $filters]} {
        set number 0
        set ::fsBox(currentfilter) 0
    }
    set filter [lindex $filters $number 0]
    set w .filebox
    build $w $title
    fill $w
    $w.line.name icursor end
    $w.line.name selection range 0 end
    set chosen [::vesk::dialogs::wait $w $w.line.name]
    ::vesk::thumbs::cancel
    return $chosen
}

# cleaned --
#   The filters as {description patterns} pairs; a text that is no such list means all files.
proc ::vesk::filebox::cleaned {wanted} {
    set pairs {}
    if {![catch {llength $wanted}]} {
        foreach pair $wanted {
            if {[catch {llength $pair} count] || $count < 2} {continue}
            lassign $pair description patterns
            if {[catch {llength $patterns}]} {continue}
            set globs {}
            foreach pattern $patterns {
                lappend globs [expr {[string match .* $pattern] ? "*$pattern" : $pattern}]
            }
            lappend pairs [list [described $description $globs] $globs]
        }
    }
    if {[llength $pairs] == 0} {set pairs [list [list "All files" *]]}
    return $pairs
}

# described --
#   The name of a filter with what it lets through.
proc ::vesk::filebox::described {description globs} {
    if {$globs in {* *.*} || [string match "*\\**" $description]} {return $description}
    set shown [join [lrange $globs 0 3] " "]
    if {[llength $globs] > 4} {append shown " ..."}
    return "$description ($shown)"
}

# build --
#   The dialog, still hidden.
proc ::vesk::filebox::build {w title} {
    ::vesk::dialogs::modal $w "$title - VESK" ""
    build_top $w
    build_lists $w
    build_make $w
    # Tab visits the parts in this order.
    build_bottom $w
    build_line $w
    set p [::vesk::theme::px 8]
    grid $w.top - - - -sticky we -padx $p -pady $p
    grid $w.places $w.list $w.bar $w.preview -sticky nswe
    grid remove $w.preview
    grid configure $w.places -padx [list 0 [::vesk::theme::px 1]]
    grid $w.make - - - -row 2 -sticky we -padx $p -pady [list $p 0]
    grid remove $w.make
    grid $w.line - - - -row 3 -sticky we -padx $p -pady $p
    grid $w.bottom - - - -row 4 -sticky we -padx $p -pady [list 0 $p]
    grid columnconfigure $w 1 -weight 1
    grid rowconfigure $w 1 -weight 1
}

proc ::vesk::filebox::build_top {w} {
    ttk::frame $w.top -style Panel.TFrame
    ttk::entry $w.top.folder -textvariable ::vesk::filebox::folder -style Panel.TEntry
    ttk::button $w.top.up -text "Up" -style Panel.TButton -command [list ::vesk::filebox::up $w]
    ttk::button $w.top.make -text "New folder" -style Panel.TButton \
        -command [list ::vesk::filebox::ask_folder $w]
    pack $w.top.make $w.top.up -side right -padx [::vesk::theme::pad 8 0]
    pack $w.top.folder -side left -fill x -expand 1
    bind $w.top.folder <Return> [list ::vesk::filebox::go $w]
}

# build_make --
#   The line for the name of a new folder, shown by the button.
proc ::vesk::filebox::build_make {w} {
    ttk::frame $w.make -style Panel.TFrame
    ttk::label $w.make.label -text "New folder" -style Panel.Dim.TLabel
    ttk::entry $w.make.name -style Panel.TEntry
    ttk::button $w.make.ok -text Create -style Panel.TButton \
        -command [list ::vesk::filebox::make_folder $w]
    pack $w.make.label -side left -padx [::vesk::theme::pad 0 8]
    pack $w.make.ok -side right -padx [::vesk::theme::pad 8 0]
    pack $w.make.name -side left -fill x -expand 1
    ::vesk::fields::on_keys $w.make.name [list Return [list ::vesk::filebox::make_folder $w] \
        Escape [list ::vesk::filebox::hide_make $w]]
}
proc ::vesk::filebox::ask_folder {w} {
    grid $w.make
    $w.make.name delete 0 end
    focus $w.make.name
}
proc ::vesk::filebox::hide_make {w} {
    grid remove $w.make
    focus $w.line.name
}

# make_folder --
#   Makes the folder that was named and goes there.
proc ::vesk::filebox::make_folder {w} {
    variable folder
    set name [string trim [$w.make.name get]]
    if {$name eq ""} {return}
    set path [file join $folder $name]
    if {[file exists $path]} {
        $w.bottom.message configure -text "Something of this name is there already."
    } elseif {[catch {file mkdir $path} reason]} {
        $w.bottom.message configure -text "The folder could not be made: [lindex [split $reason :] end]."
    } else {
        hide_make $w
        enter $w $path
    }
}

# build_lists --
#   The lists of places and files, and the picture of the chosen file.
proc ::vesk::filebox::build_lists {w} {
    ttk::treeview $w.places -show tree -selectmode browse -height 14
    $w.places column #0 -width [::vesk::theme::px 150]
    ttk::treeview $w.list -columns {size time} -show {tree} -selectmode browse -height 14
    $w.list column #0 -width [::vesk::theme::px 330]
    $w.list column size -width [::vesk::theme::px 80] -anchor e -stretch 0
    $w.list column time -width [::vesk::theme::px 130] -anchor e -stretch 0
    ::vesk::parts::scrollbar $w.bar $w.list Field.
    ttk::frame $w.preview -style Panel.TFrame -padding [::vesk::theme::px 12]
    ttk::label $w.preview.picture -style Panel.TLabel
    ttk::label $w.preview.size -style Panel.Dim.TLabel
    pack $w.preview.picture $w.preview.size -pady [::vesk::theme::pad 0 8]
    bind $w.list <<TreeviewSelect>> [list ::vesk::filebox::selected $w]
    foreach event {<Double-1> <Return>} {bind $w.list $event [list ::vesk::filebox::accept $w]}
    bind $w.list <BackSpace> [list ::vesk::filebox::up $w]
    bind $w.places <<TreeviewSelect>> [list ::vesk::filebox::place_chosen $w]
    foreach list [list $w.list $w.places] {::vesk::icons::follow_selection $list}
    foreach {label path} [places] {
        $w.places insert {} end -text " $label" -image [::vesk::icons::get folder dim] \
            -values [list $path]
    }
}

# build_line --
#   The name and the filter.
proc ::vesk::filebox::build_line {w} {
    variable how
    variable filters
    ttk::frame $w.line -style Panel.TFrame
    ttk::label $w.line.label -style Panel.Dim.TLabel \
        -text [expr {$how eq "folder" ? "Folder" : "Name"}]
    ttk::entry $w.line.name -textvariable ::vesk::filebox::name -style Panel.TEntry
    ttk::combobox $w.line.filter -state readonly -textvariable ::vesk::filebox::filter \
        -values [lmap pair $filters {lindex $pair 0}] -style Panel.TCombobox -width 30
    pack $w.line.label -side left -padx [::vesk::theme::pad 0 8]
    if {$how ne "folder"} {pack $w.line.filter -side right -padx [::vesk::theme::pad 8 0]}
    pack $w.line.name -side left -fill x -expand 1
    bind $w.line.filter <<ComboboxSelected>> [list ::vesk::filebox::choose_filter $w]
    bind $w.line.name <Return> [list ::vesk::filebox::accept $w]
    bind $w.line.name <Down> [list ::vesk::filebox::to_list $w]
}

proc ::vesk::filebox::build_bottom {w} {
    variable how
    ttk::frame $w.bottom -style Panel.TFrame
    ttk::label $w.bottom.message -style Panel.Dim.TLabel
    ttk::button $w.bottom.cancel -text Cancel -style Panel.TButton \
        -command [list ::vesk::dialogs::answer $w ""]
    ttk::button $w.bottom.ok -style Panel.Default.TButton \
        -text [dict get {open Open save Save folder Choose} $how] \
        -command [list ::vesk::filebox::accept $w]
    pack $w.bottom.ok $w.bottom.cancel -side right -padx [::vesk::theme::pad 8 0]
    ttk::checkbutton $w.bottom.hidden -text "Hidden files" -style Panel.TCheckbutton \
        -variable ::vesk::filebox::hidden -command [list ::vesk::filebox::fill $w]
    pack $w.bottom.hidden -side left -padx [::vesk::theme::pad 0 12]
    pack $w.bottom.message -side left
}

# places --
#   The folders in which models usually lie: label folder label folder ..., each once.
proc ::vesk::filebox::places {} {
    set result {}
    set seen {}
    foreach {label path} [list Home [file normalize ~] Documents [file normalize ~/Documents] \
            Examples [file join $::VESK_HOME examples] "Opened last" $::prefs_load_file_path \
            "Saved last" $::prefs_save_file_path "Imported last" $::prefs_import_file_path \
            "File system" /] {
        if {$path eq "" || $path in $seen || ![file isdirectory $path]} {continue}
        lappend seen $path
        lappend result $label $path
    }
    return $result
}

# fill --
#   Lists the folder: sub-folders first, then the files of the filter.
proc ::vesk::filebox::fill {w} {
    variable folder
    variable how
    variable filters
    variable filter
    variable shown {}
    $w.list delete [$w.list children {}]
    set folders [lsort -dictionary [names $folder d]]
    set patterns [lindex [lsearch -inline -exact -index 0 $filters $filter] 1]
    set files {}
    if {$how ne "folder"} {
        foreach name [names $folder f] {
            foreach pattern $patterns {
                if {[string match -nocase $pattern $name]} {
                    lappend files $name
                    break
                }
            }
        }
    }
    set image [::vesk::icons::get o-group dim]
    foreach name $folders {
        dict set shown [$w.list insert {} end -text " $name" -image $image] [list folder $name]
    }
    set image [::vesk::icons::get o-poly dim]
    foreach name [lsort -dictionary -unique $files] {
        set path [file join $folder $name]
        # The file may be gone by now.
        if {[catch {list [size_text [file size $path]] \
                [clock format [file mtime $path] -format "%Y-%m-%d %H:%M"]} values]} {continue}
        dict set shown [$w.list insert {} end -text " $name" -image $image -values $values] \
            [list file $name]
    }
    $w.bottom.message configure -text [expr {[file readable $folder] ? "" : "This folder cannot be read."}]
}

# names --
#   The names of the files (f) or folders (d) in a folder, with the hidden ones when they are wanted.
proc ::vesk::filebox::names {folder type} {
    variable hidden
    set found [glob -nocomplain -directory $folder -types $type -tails -- *]
    if {$hidden} {
        foreach name [glob -nocomplain -directory $folder -types [list $type hidden] -tails -- *] {
            if {$name ni {. ..}} {lappend found $name}
        }
    }
    return $found
}

proc ::vesk::filebox::size_text {bytes} {
    if {$bytes < 1000} {return "$bytes B"}
    if {$bytes < 1000000} {return "[format %.1f [expr {$bytes / 1000.0}]] kB"}
    return "[format %.1f [expr {$bytes / 1e6}]] MB"
}

proc ::vesk::filebox::enter {w path} {
    variable folder
    set folder [file normalize $path]
    fill $w
}
proc ::vesk::filebox::up {w} {
    variable folder
    enter $w [file dirname $folder]
}
proc ::vesk::filebox::go {w} {
    variable folder
    if {[file isdirectory $folder]} {
        enter $w $folder
    } else {
        $w.bottom.message configure -text "There is no folder of this name."
    }
}
proc ::vesk::filebox::place_chosen {w} {
    set item [$w.places selection]
    if {$item ne ""} {enter $w [lindex [$w.places item $item -values] 0]}
}
proc ::vesk::filebox::to_list {w} {
    set item [lindex [$w.list children {}] 0]
    if {$item ne ""} {
        $w.list selection set [list $item]
        $w.list focus $item
        focus $w.list
    }
}
proc ::vesk::filebox::choose_filter {w} {
    set ::fsBox(currentfilter) [$w.line.filter current]
    fill $w
}
proc ::vesk::filebox::selected {w} {
    variable shown
    variable name
    set item [lindex [$w.list selection] 0]
    if {$item eq "" || ![dict exists $shown $item]} {return}
    lassign [dict get $shown $item] kind text
    if {$kind eq "file"} {set name $text}
    after cancel ::vesk::filebox::preview
    after 80 ::vesk::filebox::preview
}

# preview --
#   Shows the picture of the chosen file where it is a picture or a model, with its size below.
proc ::vesk::filebox::preview {} {
    variable shown
    variable folder
    set w .filebox
    if {![winfo exists $w.preview]} {return}
    ::vesk::thumbs::cancel
    set item [lindex [$w.list selection] 0]
    set file ""
    if {$item ne "" && [dict exists $shown $item]} {
        lassign [dict get $shown $item] kind text
        if {$kind eq "file"} {set file [file join $folder $text]}
    }
    set side [::vesk::theme::px 180]
    set told [expr {$file eq "" ? "" : [vesk picture_photo $file $side]}]
    if {[llength $told] == 4} {
        lassign $told photo width height depth
        show_preview "$width \u00d7 $height, [dict get {1 grey 2 {grey, see-through}
            3 colour 4 {colour, see-through}} $depth]" $photo
    } elseif {$file ne "" && [::vesk::thumbs::can_draw $file]} {
        show_preview "drawing..." ""
        ::vesk::thumbs::request $file $side [list ::vesk::filebox::show_preview ""]
    } else {
        grid remove $w.preview
    }
}

# show_preview --
#   Shows a picture with a line of text below; without both the place is hidden.
proc ::vesk::filebox::show_preview {text photo} {
    set w .filebox
    if {![winfo exists $w.preview]} {return}
    if {$text eq "" && $photo eq ""} {
        grid remove $w.preview
        return
    }
    $w.preview.picture configure -image $photo
    $w.preview.size configure -text $text
    grid $w.preview
}

# accept --
#   Enters a chosen folder, else answers with the name if it is usable.
proc ::vesk::filebox::accept {w} {
    variable shown
    variable folder
    variable name
    variable how
    set item [lindex [$w.list selection] 0]
    if {[focus] eq "$w.list" && $item ne "" && [lindex [dict get $shown $item] 0] eq "folder"} {
        enter $w [file join $folder [lindex [dict get $shown $item] 1]]
        return
    }
    set path [expr {$name eq "" ? $folder : [file join $folder $name]}]
    if {$how ne "folder" && $name ne "" && [file isdirectory $path]} {
        set name ""
        enter $w $path
        return
    }
    set reason [why_not $path]
    $w.bottom.message configure -text $reason
    if {$reason ne ""} {return}
    if {$how eq "save"} {set path [with_suffix $path]}
    if {$how ne "save" || ![file exists $path] || [replace_confirmed $path]} {
        ::vesk::dialogs::answer $w $path
    }
}

# why_not --
#   Why a path is no answer, or "".
proc ::vesk::filebox::why_not {path} {
    variable name
    variable how
    if {$how eq "folder"} {
        if {![file isdirectory $path]} {return "There is no folder of this name."}
    } elseif {$name eq ""} {
        return "A name is missing."
    } elseif {$how eq "open" && ![file exists $path]} {
        return "There is no file of this name."
    } elseif {$how eq "save" && ![file isdirectory [file dirname $path]]} {
        return "There is no folder of this name."
    }
    return ""
}

# with_suffix --
#   Appends the first suffix of the filter to a name without suffix.
proc ::vesk::filebox::with_suffix {path} {
    variable filters
    variable filter
    if {[file extension $path] ne ""} {return $path}
    set pattern [lindex [lsearch -inline -exact -index 0 $filters $filter] 1 0]
    return $path[file extension $pattern]
}

proc ::vesk::filebox::replace_confirmed {path} {
    set answer [::vesk::dialogs::question "Replace [file tail $path]?" \
        "A file of this name exists in [file dirname $path]." \
        {cancel Cancel replace Replace} cancel cancel]
    if {[winfo exists .filebox]} {catch {grab set .filebox}}
    return [expr {$answer eq "replace"}]
}
