# Every icon (svg/NAME.svg) and every frame's template (elements/NAME.svg).
set(VESK_ICONS
    add box camera check chev-down chev-right circle close cone console cylinder detach disk
    dropper duplicate edgebevel error extrude extrudeeach extrudeedges extrudenormals eye eye-off
    filter folder grid history info insert inset knife light line link lock loopcut m-corner
    m-edge m-island m-light m-object m-surface m-tree m-vertex maximise measure mesh move o-group
    o-light o-poly o-world pivot place polygon polyline rect redo reset revolve rotate save scale search
    select-box select-through settings slice slide snap-grid snap-near socket sphere text
    thickness trash u-align u-box u-cylinder u-fit u-fliph u-flipv u-pack u-pixel u-planar u-rot90
    u-sphere u-split u-stretch u-weld undo unlock warning zoom)
set(VESK_ELEMENTS
    band check chevron_down chevron_right knob radio rounded underlined)
