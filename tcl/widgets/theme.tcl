# theme.tcl --
#   Fonts, scale and the ttk themes: one a palette, made when it is first chosen, because the
#   elements of a theme cannot be made twice. Frames are pictures stretched from small ones; their
#   corners are blended over the style's background, so each surface has styles of its own:
#   "" lies on the chrome, "Panel." on a panel, "Field." on a list or field.

namespace eval ::vesk::theme {
    variable current dark
    variable colours {}         ;# palette of the current theme
    variable S 1.0              ;# interface scale, in quarters
    variable made {}            ;# ttk themes made so far
    variable surfaces {{} chrome Panel. panel Field. field}
    variable followers {}       ;# scripts to run after a change
    variable looks {}           ;# options of classic widgets, by class, in the current theme
    # The same options with palette names in place of colours.
    variable classic {
        Menu {-background menu -foreground text -activebackground sel -activeforeground on_sel
            -disabledforeground off -selectcolor text}
        Listbox {-background field -foreground text -selectbackground sel -selectforeground on_sel}
        Text {-background field -foreground text -inactiveselectbackground sel
            -selectbackground sel -selectforeground on_sel -insertbackground text}
        Entry {-background field -foreground text -disabledbackground chrome
            -disabledforeground off -readonlybackground field -selectbackground sel
            -selectforeground on_sel -insertbackground text}
        Menubutton {-background chrome -foreground text -activebackground raise
            -activeforeground text -disabledforeground off}
    }
    # The defaults of the two font preferences; other values replace our own fonts.
    variable font_main_default "{arial} 9 {bold}"
    variable font_menu_default "{arial} 9 {bold italic}"
}

# px --
#   Pixels at 96 dpi to pixels on this screen.
proc ::vesk::theme::px {n} {
    variable S
    return [expr {round($n * $S)}]
}

# pad --
#   A list of pixels at 96 dpi, scaled.
proc ::vesk::theme::pad {args} {
    set result {}
    foreach n $args {lappend result [px $n]}
    return $result
}

# colour --
#   A colour of the current theme by its palette name.
proc ::vesk::theme::colour {name} {
    variable colours
    return [dict get $colours $name]
}

# init --
#   Fixes the scale and the fonts and applies a theme; to be called before any widget is made.
#   theme    dark, light or contrast
#   percent  the user's own factor, 75 to 300
proc ::vesk::theme::init {theme percent} {
    variable S
    set factor [expr {min(300, max(75, $percent)) / 100.0}]
    tk scaling [expr {[tk scaling] * $factor}]
    # The server reports 0.998 once and 1.0006 the next time: whole quarters keep lines whole.
    set S [expr {max(0.75, round([tk scaling] / (96 / 72.0) * 4) / 4.0)}]
    make_fonts
    ::vesk::icons::open $S
    apply $theme
    # Control+A selects in a field, as everywhere else; not the start of the line.
    foreach class {Entry TEntry TCombobox} {
        bind $class <Control-Key-a> {%W selection range 0 end; %W icursor end}
    }
}

# make_fonts --
#   Makes the named fonts of the interface; changed font preferences replace them.
proc ::vesk::theme::make_fonts {} {
    variable font_main_default
    variable font_menu_default
    set families [font families]
    set text [first_family $families {Inter "DejaVu Sans"}]
    set number [first_family $families {"Noto Sans" "DejaVu Sans"}]
    set number_size [expr {$number eq "Noto Sans" ? 9 : 8}]
    set mono [first_family $families {"DejaVu Sans Mono" Courier}]
    foreach {name family size weight} [list \
            TkDefaultFont $text 9 normal TkTextFont $text 9 normal TkMenuFont $text 9 normal \
            TkTooltipFont $text 9 normal TkHeadingFont $text 9 normal VeskBold $text 9 bold \
            VeskTitle $text 12 bold VeskHint $text 8 normal VeskNumber $number $number_size normal \
            TkFixedFont $mono 9 normal VeskMono $mono 9 normal VeskKey $mono 8 normal] {
        if {$name ni [font names]} {font create $name}
        font configure $name -family $family -size $size -weight $weight -slant roman
    }
    if {[info exists ::prefs_font_main] && $::prefs_font_main ne $font_main_default} {
        use_preference $::prefs_font_main {TkDefaultFont TkTextFont TkTooltipFont TkHeadingFont}
    }
    if {[info exists ::prefs_font_menu] && $::prefs_font_menu ne $font_menu_default} {
        use_preference $::prefs_font_menu TkMenuFont
    }
    foreach class {Label Button Entry Listbox Text Menubutton} {
        option add *$class.font TkDefaultFont widgetDefault
    }
    option add *Menu.font TkMenuFont widgetDefault
}

proc ::vesk::theme::first_family {families wanted} {
    foreach family $wanted {
        if {$family in $families} {return $family}
    }
    return [lindex $wanted end]
}

# use_preference --
#   Maps named fonts onto a font preference; a text that is no font is left alone.
proc ::vesk::theme::use_preference {text names} {
    if {[catch {font actual $text} options]} {return}
    foreach name $names {font configure $name {*}$options}
}

# apply --
#   Switches to a theme, making it first where needed, and recolours everything that exists.
proc ::vesk::theme::apply {theme} {
    variable current
    variable colours
    variable made
    variable classic
    variable looks
    variable followers
    if {$theme ni [dict keys $::vesk::palettes::names]} {set theme dark}
    set current $theme
    set colours [::vesk::palettes::colours $theme]
    set looks [dict map {class options} $classic {
        concat {*}[lmap {option name} $options {list $option [colour $name]}]
    }]
    ::vesk::icons::set_theme $theme
    if {$theme ni $made} {
        lappend made $theme
        ttk::style theme create vesk_$theme -parent clam
        ttk::style theme settings vesk_$theme [list ::vesk::theme::make $theme]
    }
    ttk::style theme use vesk_$theme
    set_options
    recolour .
    foreach script $followers {{*}$script}
}

# follow --
#   Has `script` (a list of words) run after each change of theme.
proc ::vesk::theme::follow {script} {
    variable followers
    lappend followers $script
}

# ---- making one ttk theme ----

# image_element --
#   Makes an element from pictures.
#   states   the picture without state, then {state picture} pairs in the order they are tried
#   options  further options; -border, -padding, -width and -height are scaled here
proc ::vesk::theme::image_element {theme name states options} {
    set words [list [::vesk::icons::element $theme [lindex $states 0]]]
    foreach {state picture} [lrange $states 1 end] {
        lappend words $state [::vesk::icons::element $theme $picture]
    }
    set scaled {}
    foreach {option value} $options {
        if {$option in {-border -padding}} {set value [pad {*}$value]}
        if {$option in {-width -height}} {set value [px $value]}
        lappend scaled $option $value
    }
    ttk::style element create $name image $words {*}$scaled
}

# make_elements --
#   Makes every frame from a table of name, {picture states picture ...} and options.
proc ::vesk::theme::make_elements {theme} {
    foreach {name states options} {
        Fld.rr {field-normal disabled field-disabled invalid field-invalid focus field-focus
            active field-hover} {-border 5 -padding {6 5} -width 16 -height 16 -sticky nswe}
        Btn.rr {button-normal disabled button-disabled pressed button-pressed focus button-focus
            active button-hover} {-border 5 -padding {10 5} -width 16 -height 16 -sticky nswe}
        Def.rr {default-normal disabled button-disabled pressed default-hover focus default-focus
            active default-hover} {-border 5 -padding {12 5} -width 16 -height 16 -sticky nswe}
        Tool.rr {tool-normal {selected focus} tool-on-focus selected tool-on
            {pressed !disabled} tool-hover {active !disabled} tool-hover focus tool-focus}
            {-border 5 -padding 6 -width 20 -height 20 -sticky nswe}
        Icon.rr {tool-normal {pressed !disabled} tool-hover {active !disabled} tool-hover
            focus tool-focus} {-border 5 -padding 4 -width 20 -height 20 -sticky nswe}
        Seg.rr {segment-normal {selected focus} segment-on-focus selected segment-on
            {active !disabled} segment-hover focus segment-focus}
            {-border 6 -padding {7 5 8 5} -width 20 -height 20 -sticky nswe}
        Chk.indicator {check-off {disabled selected} check-on-disabled disabled check-off-disabled
            {selected focus} check-on-focus {selected active} check-on-hover selected check-on
            focus check-off-focus active check-off-hover} {-sticky {}}
        Rad.indicator {radio-off {disabled selected} radio-on-disabled disabled radio-off-disabled
            {selected focus} radio-on-hover {selected active} radio-on-hover selected radio-on
            focus radio-off-hover active radio-off-hover} {-sticky {}}
        Sc.trough {trough} {-border {3 0 3 0} -padding 0 -width 12 -height 16 -sticky we}
        Sc.slider {knob-normal disabled knob-disabled focus knob-hover active knob-hover
            pressed knob-hover} {-sticky {}}
        Vs.trough {nothing} {-border 2 -padding 0 -sticky ns}
        Vs.thumb {thumb-normal pressed thumb-hover active thumb-hover}
            {-border {3 6 3 6} -padding 0 -width 10 -height 16 -sticky ns}
        Hs.trough {nothing} {-border 2 -padding 0 -sticky we}
        Hs.thumb {hthumb-normal pressed hthumb-hover active hthumb-hover}
            {-border {6 3 6 3} -padding 0 -width 16 -height 10 -sticky we}
        Pr.trough {progress-trough} {-border {4 0 4 0} -padding 0 -width 12 -height 8 -sticky we}
        Pr.pbar {progress-bar} {-border {4 0 4 0} -padding 0 -width 12 -height 8 -sticky we}
        Tab.rr {tab-normal {selected focus} tab-on-focus selected tab-on active tab-hover}
            {-border 5 -padding {10 6} -width 16 -height 16 -sticky nswe}
        Chip.rr {chip-normal focus chip-focus active chip-hover pressed chip-hover}
            {-border 5 -padding {8 3 4 3} -width 16 -height 16 -sticky nswe}
        Chip.arrow {chip-arrow} {-sticky {}}
        Cmb.arrow {arrow-normal disabled arrow-disabled} {-sticky {}}
        Vesk.indicator {tree-shut user2 tree-leaf {user1 selected} tree-open-on user1 tree-open
            selected tree-shut-on} {-sticky {}}
    } {
        image_element $theme $name $states $options
    }
    # The gap between a mark and its text.
    ttk::style element create Gap.rr image [::vesk::icons::element $theme nothing] \
        -width [px 6] -height 1 -border 0 -padding 0 -sticky {}
}

# make --
#   The body of a theme: elements, layouts, then the options of every style.
proc ::vesk::theme::make {theme} {
    make_elements $theme
    make_layouts
    set c [::vesk::palettes::colours $theme]
    configure_base $c
    configure_surfaces $c
    configure_lists $c
}

proc ::vesk::theme::make_layouts {} {
    variable surfaces
    foreach {style layout} {
        TEntry {Fld.rr -sticky nswe -children {Entry.textarea -sticky nswe}}
        Axis.TFrame {Fld.rr -sticky nswe}
        TCombobox {Fld.rr -sticky nswe -children {Cmb.arrow -side right -sticky {}
            Combobox.textarea -sticky nswe}}
        TButton {Btn.rr -sticky nswe -children {Button.label -sticky nswe}}
        Default.TButton {Def.rr -sticky nswe -children {Button.label -sticky nswe}}
        Tool.Toolbutton {Tool.rr -sticky nswe -children {Toolbutton.label -sticky {}}}
        Icon.Toolbutton {Icon.rr -sticky nswe -children {Toolbutton.label -sticky {}}}
        Segment.Toolbutton {Seg.rr -sticky nswe -children {Toolbutton.label -sticky nswe}}
        TCheckbutton {Checkbutton.padding -sticky nswe -children {Chk.indicator -side left
            -sticky {} Gap.rr -side left -sticky {} Checkbutton.label -side left -sticky nswe}}
        TRadiobutton {Radiobutton.padding -sticky nswe -children {Rad.indicator -side left
            -sticky {} Gap.rr -side left -sticky {} Radiobutton.label -side left -sticky nswe}}
        Horizontal.TScale {Sc.trough -sticky we -children {Sc.slider -side left -sticky {}}}
        Vertical.TScrollbar {Vs.trough -sticky ns -children {Vs.thumb -expand 1 -sticky ns}}
        Horizontal.TScrollbar {Hs.trough -sticky we -children {Hs.thumb -expand 1 -sticky we}}
        Horizontal.TProgressbar {Pr.trough -sticky we -children {Pr.pbar -side left -sticky ns}}
        TNotebook.Tab {Tab.rr -sticky nswe -children {Notebook.label -sticky {}}}
        Treeview {Treeview.treearea -sticky nswe}
        Item {Treeitem.padding -sticky nswe -children {Vesk.indicator -side left -sticky {}
            Treeitem.image -side left -sticky {} Treeitem.text -side left -sticky {}}}
        Chip.TMenubutton {Chip.rr -sticky nswe -children {Chip.arrow -side right -sticky {}
            Menubutton.label -side left -sticky {}}}
    } {
        ttk::style layout $style $layout
    }
    foreach {prefix surface} $surfaces {
        if {$prefix eq ""} {continue}
        foreach style {TEntry TCombobox TButton Default.TButton Icon.Toolbutton TCheckbutton
                TRadiobutton Horizontal.TScale Horizontal.TProgressbar Vertical.TScrollbar
                Horizontal.TScrollbar Axis.TFrame Segment.Toolbutton} {
            ttk::style layout $prefix$style [ttk::style layout $style]
        }
    }
}

proc ::vesk::theme::configure_base {c} {
    dict with c {}
    ttk::style configure . -background $chrome -foreground $text -font TkDefaultFont \
        -borderwidth 0 -focuscolor $ring -selectbackground $sel -selectforeground $on_sel \
        -insertcolor $text -insertwidth [px 1] -troughcolor $trough
    ttk::style map . -background {} -foreground [list disabled $off]
    foreach style {TButton Default.TButton TEntry TCombobox Tool.Toolbutton Icon.Toolbutton
            Segment.Toolbutton TCheckbutton TRadiobutton Horizontal.TScale Vertical.TScrollbar
            Horizontal.TScrollbar Horizontal.TProgressbar TNotebook TNotebook.Tab Treeview
            Chip.TMenubutton TMenubutton TLabel TFrame} {
        # clam keeps a map of its own, which would paint over the pictures.
        ttk::style map $style -background {} -foreground [list disabled $off] -bordercolor {} \
            -lightcolor {} -darkcolor {} -fieldbackground {} -arrowcolor {} -selectbackground {} \
            -selectforeground {}
    }
    ttk::style configure TButton -width 0 -anchor center -padding 0
    ttk::style configure Default.TButton -width 0 -anchor center -padding 0 -foreground $on_sel
    ttk::style configure Segment.Toolbutton -background $field -foreground $dim \
        -space [px 6] -anchor center
    ttk::style map Segment.Toolbutton \
        -foreground [list disabled $off selected $text active $text]
    ttk::style configure Tool.Toolbutton -background $chrome
    ttk::style configure Icon.Toolbutton -background $chrome -space [px 5]
    ttk::style configure TCheckbutton -padding 0
    ttk::style configure TNotebook -background $chrome -tabmargins 0 -padding 0 -borderwidth 0
    ttk::style layout TNotebook {Notebook.client -sticky nswe}
    ttk::style configure TNotebook -bordercolor $panel -lightcolor $panel -darkcolor $panel \
        -fieldbackground $panel
    ttk::style configure TNotebook.Tab -foreground $dim -background $chrome -padding 0
    ttk::style map TNotebook.Tab -foreground [list selected $text active $text] \
        -padding {} -expand {}
    ttk::style configure Chip.TMenubutton -foreground $chip_text -width 0 -space 0 \
        -background [view_background]
    ttk::style configure Status.TLabel -font VeskNumber -foreground $text
    ttk::style configure Dim.TLabel -foreground $dim
    ttk::style configure Hint.TLabel -foreground $faint -font VeskHint
    ttk::style configure Bold.TLabel -font VeskBold
    ttk::style configure Gap.TFrame -background $gap
    ttk::style configure Line.TFrame -background $line
    ttk::style configure Raise.TFrame -background $edge
    ttk::style configure Chrome.TFrame -background $chrome
    ttk::style configure Vertical.TScrollbar -width [px 10]
    ttk::style configure Error.TLabel -foreground $error
    ttk::style configure Warn.TLabel -foreground $warn
    ttk::style configure Tip.TFrame -background $tip
    ttk::style configure Tip.TLabel -background $tip -foreground $tip_text
    ttk::style configure TipBold.TLabel -background $tip -foreground $tip_text -font VeskBold
    foreach axis {x y z} {
        ttk::style configure ${axis}Axis.TLabel -foreground [dict get $c axis_$axis] \
            -font VeskBold
        ttk::style configure ${axis}Field.TLabel -foreground [dict get $c axis_$axis] \
            -font VeskBold -background $field
        ttk::style map ${axis}Field.TLabel -background [list disabled $chrome] \
            -foreground [list disabled $off]
    }
}

# view_background --
#   The colour of the views, over which the corners of the chips are blended.
proc ::vesk::theme::view_background {} {
    if {[info exists ::prefs_col_background]} {
        return [format "#%06x" [expr {$::prefs_col_background & 0xffffff}]]
    }
    return "#555555"
}

proc ::vesk::theme::configure_surfaces {c} {
    variable surfaces
    dict with c {}
    foreach {prefix surface} $surfaces {
        set ground [dict get $c $surface]
        foreach style {TFrame TLabel TButton Default.TButton TEntry TCombobox Icon.Toolbutton
                TCheckbutton TRadiobutton Horizontal.TScale Horizontal.TProgressbar
                Vertical.TScrollbar Horizontal.TScrollbar Axis.TFrame} {
            ttk::style configure $prefix$style -background $ground
            ttk::style map $prefix$style -background {}
        }
        foreach {style options} [list \
                TLabel [list -foreground $text] Dim.TLabel [list -foreground $dim] \
                Hint.TLabel [list -foreground $faint -font VeskHint] \
                Key.TLabel [list -foreground $faint -font VeskKey] \
                Bold.TLabel {-font VeskBold} Title.TLabel {-font VeskTitle}] {
            ttk::style configure $prefix$style -background $ground {*}$options
        }
        ttk::style configure ${prefix}TButton -width 0 -anchor center -padding 0
        ttk::style configure ${prefix}Default.TButton -width 0 -anchor center -padding 0 \
            -foreground $on_sel
        ttk::style map ${prefix}Default.TButton -foreground [list disabled $off]
        ttk::style configure ${prefix}TEntry -foreground $text -insertcolor $text -padding 0
        ttk::style configure ${prefix}TCombobox -foreground $text -padding 0
        # In a read-only box the selection would stay as a blue block.
        ttk::style map ${prefix}TCombobox -selectbackground [list readonly $field] \
            -selectforeground [list readonly $text] -foreground [list disabled $off]
    }
}

proc ::vesk::theme::configure_lists {c} {
    dict with c {}
    set line [font metrics TkDefaultFont -linespace]
    ttk::style configure Treeview -background $field -fieldbackground $field -foreground $text \
        -rowheight [expr {max([px 22], $line + 4)}] -indent [px 16] -padding 0 -borderwidth 0
    ttk::style map Treeview -background [list selected $sel] -foreground [list selected $on_sel]
    ttk::style configure Category.Treeview -background $chrome -fieldbackground $chrome \
        -rowheight [expr {max([px 30], $line + 8)}] -indent 0
    ttk::style configure Item -padding [pad 2 0 0 0]
    ttk::style configure Heading -background $chrome -foreground $dim -relief flat
}

# ---- classic widgets ----

# set_options --
#   Sets the look of classic widgets that are made from now on.
proc ::vesk::theme::set_options {} {
    dict for {pattern name} {
        *Menu.background menu *Menu.foreground text *Menu.activeBackground sel
        *Menu.activeForeground on_sel *Menu.disabledForeground off *Menu.selectColor text
        *Listbox.background field *Listbox.foreground text *Listbox.selectBackground sel
        *Listbox.selectForeground on_sel *Text.background field *Text.foreground text
        *Text.selectBackground sel *Text.selectForeground on_sel *Text.insertBackground text
        *Canvas.background field *Toplevel.background chrome *Frame.background chrome
    } {
        option add $pattern [colour $name] widgetDefault
    }
    dict for {pattern value} {
        *Menu.borderWidth 1 *Menu.activeBorderWidth 0 *Menu.tearOff 0
        *Listbox.highlightThickness 0 *Listbox.borderWidth 0 *Text.highlightThickness 0
        *Text.borderWidth 0 *Canvas.highlightThickness 0 *Canvas.borderWidth 0
    } {
        option add $pattern $value widgetDefault
    }
    option add *Menu.relief [menu_relief] widgetDefault
}

proc ::vesk::theme::menu_relief {} {
    variable current
    return [expr {$current eq "contrast" ? "solid" : "raised"}]
}

# recolour --
#   Gives a classic widget and its children the colours of the current theme. The array `surface`
#   (path -> palette name) holds the backgrounds that differ.
proc ::vesk::theme::recolour {w} {
    variable surface
    variable looks
    set class [winfo class $w]
    if {[dict exists $looks $class]} {$w configure {*}[dict get $looks $class]}
    switch -- $class {
        Menu {$w configure -relief [menu_relief] -borderwidth 1 -activeborderwidth 0}
        Text {$w tag raise sel}
        Canvas - Frame - Toplevel {
            if {![info exists surface($w)]} {$w configure -background [colour chrome]}
        }
        Dialog {
            # Black windows on black ones need an edge.
            $w configure -highlightthickness [expr {$::vesk::theme::current eq "contrast"}] \
                -highlightbackground [colour line] -highlightcolor [colour line]
        }
    }
    if {[info exists surface($w)] && $surface($w) ne "-"} {
        $w configure -background [colour $surface($w)]
    }
    foreach child [winfo children $w] {recolour $child}
}

# on --
#   Declares on which surface a classic widget lies, and colours it.
#   name  palette name of its background, "-" to leave its colours to others
proc ::vesk::theme::on {w name} {
    variable surface
    set surface($w) $name
    bind $w <Destroy> +[list unset -nocomplain ::vesk::theme::surface($w)]
    recolour $w
    return $w
}

# menu_row_image --
#   A transparent picture that gives menu rows their height.
proc ::vesk::theme::menu_row_image {} {
    if {"::vesk::theme::row" ni [image names]} {
        ::vesk::icons::blank ::vesk::theme::row [px 4] [px 22]
    }
    return ::vesk::theme::row
}
