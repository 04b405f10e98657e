# Files of edit/.
target_sources(vesk_core PRIVATE
    edit/create.cpp
    edit/current_object.cpp
    edit/geometry_image.cpp
    edit/journal.cpp
    edit/link_surfaces.cpp
    edit/model_restore.cpp
    edit/model_state.cpp
    edit/drag_transform.cpp
    edit/modes.cpp
    edit/object_flags.cpp
    edit/primitives.cpp
    edit/primitives_flat.cpp
    edit/resize.cpp
    edit/revolve.cpp
    edit/selection.cpp
    edit/selection_image.cpp
    edit/selection_scan.cpp
    edit/snap.cpp
    edit/surface_copy.cpp
    edit/text_objects.cpp
    edit/transform.cpp
    edit/undo.cpp
    edit/undo_kinds.cpp
    edit/uvmap.cpp
)
