# elements.tcl --
#   The pictures that the widgets' frames are stretched from, as data: one row a picture.
#     name       as the theme asks for it
#     template   a file of icons/elements/
#     width height radius   in pixels at scale 1; what is stretched is drawn large, because Tk fills
#                a frame tile by tile, and every tile with alpha costs a round trip to the server
#     fill line bar         names of palette colours, or "none"
#     lw         width of the outline
#     extra      key value pairs: inset of the bar (barinset), bar height (barheight),
#                empty space round a band (padx pady)

namespace eval ::vesk::elements {
    variable table {
        field-normal      rounded 96 40 4 field         edge        none 1 {}
        field-hover       rounded 96 40 4 field         faint       none 1 {}
        field-focus       rounded 96 40 4 field         ring        none 2 {}
        field-invalid     rounded 96 40 4 field         error       none 1 {}
        field-disabled    rounded 96 40 4 chrome        line        none 1 {}
        button-normal     rounded 96 40 4 raise         edge        none 1 {}
        button-hover      rounded 96 40 4 hover         edge        none 1 {}
        button-pressed    rounded 96 40 4 field         edge        none 1 {}
        button-focus      rounded 96 40 4 raise         ring        none 2 {}
        button-disabled   rounded 96 40 4 chrome        line        none 1 {}
        default-normal    rounded 96 40 4 sel           sel         none 1 {}
        default-hover     rounded 96 40 4 sel_hover     sel_hover   none 1 {}
        default-focus     rounded 96 40 4 sel           ring_on_sel none 2 {}
        tool-on-focus     rounded 44 44 4 sel           ring_on_sel none 2 {}
        tool-on           rounded 44 44 4 sel           accent      none 1 {}
        tool-hover        rounded 44 44 4 raise         none        none 0 {}
        tool-focus        rounded 44 44 4 none          ring        none 2 {}
        tool-normal       rounded 44 44 4 none          none        none 0 {}
        segment-on-focus  rounded 96 40 3 segment_on    ring        none 2 {}
        segment-on     underlined 96 40 3 segment_on    none      accent 0 {barinset 3 barheight 2}
        segment-hover     rounded 96 40 3 segment_hover none        none 0 {}
        segment-focus     rounded 96 40 3 none          ring        none 2 {}
        segment-normal    rounded 96 40 3 none          none        none 0 {}
        check-off         rounded 14 14 3 field         edge        none 1 {}
        check-off-hover   rounded 14 14 3 field         ring        none 1 {}
        check-off-focus   rounded 14 14 3 field         ring        none 2 {}
        check-off-disabled rounded 14 14 3 chrome       line        none 1 {}
        check-on            check 14 14 3 sel           sel       on_sel 1 {}
        check-on-hover      check 14 14 3 sel_hover     ring      on_sel 1 {}
        check-on-focus      check 14 14 3 sel           ring      on_sel 2 {}
        check-on-disabled   check 14 14 3 line          line         off 1 {}
        radio-off           radio 14 14 7 field         edge        none 1 {}
        radio-off-hover     radio 14 14 7 field         ring        none 1 {}
        radio-on            radio 14 14 7 sel           sel       on_sel 1 {}
        radio-on-hover      radio 14 14 7 sel_hover     ring      on_sel 1 {}
        radio-off-disabled  radio 14 14 7 chrome        line        none 1 {}
        radio-on-disabled   radio 14 14 7 line          line         off 1 {}
        trough               band 96 16 2 trough        none        none 0 {pady 6}
        knob-normal          knob 14 16 7 knob          knob_rim    none 3 {}
        knob-hover           knob 14 16 7 knob_hover    ring        none 3 {}
        knob-disabled        knob 14 16 7 chrome        off         none 3 {}
        thumb-normal         band 10 96 3 thumb         none        none 0 {padx 2 pady 2}
        thumb-hover          band 10 96 3 faint         none        none 0 {padx 2 pady 2}
        hthumb-normal        band 96 10 3 thumb         none        none 0 {padx 2 pady 2}
        hthumb-hover         band 96 10 3 faint         none        none 0 {padx 2 pady 2}
        nothing              band 10 10 0 none          none        none 0 {}
        progress-trough      band 96  8 4 trough        none        none 0 {}
        progress-bar         band 96  8 4 accent        none        none 0 {}
        tab-normal           band 96 40 0 chrome        none        none 0 {}
        tab-hover            band 96 40 0 raise         none        none 0 {}
        tab-on         underlined 96 40 0 panel         none      accent 0 {barinset 0 barheight 2}
        tab-on-focus      rounded 96 40 0 panel         ring        none 2 {}
        chip-normal       rounded 96 40 4 chip          chip_frame  none 1 {}
        chip-hover        rounded 96 40 4 chip_hover    chip_frame  none 1 {}
        chip-focus        rounded 96 40 4 chip          view_ring   none 2 {}
        chip-arrow   chevron_down 16 16 0 none          chip_text   none 0 {}
        arrow-normal chevron_down 16 16 0 none          dim         none 0 {}
        arrow-disabled chevron_down 16 16 0 none        off         none 0 {}
        tree-open    chevron_down 16 16 0 none          dim         none 0 {}
        tree-open-on chevron_down 16 16 0 none          on_sel      none 0 {}
        tree-shut   chevron_right 16 16 0 none          dim         none 0 {}
        tree-shut-on chevron_right 16 16 0 none         on_sel      none 0 {}
        tree-leaf            band 16 16 0 none          none        none 0 {}
    }
}
