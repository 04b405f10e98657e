# Files of edit/.
target_sources(vesk_core PRIVATE
    edit/current_object.cpp
    edit/modes.cpp
    edit/object_flags.cpp
    edit/primitives.cpp
    edit/primitives_flat.cpp
    edit/selection.cpp
    edit/selection_scan.cpp
    edit/snap.cpp
    edit/surface_copy.cpp
    edit/transform.cpp
    edit/undo.cpp
    edit/uvmap.cpp
)
