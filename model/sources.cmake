# Files of model/: all belong to the core.
target_sources(vesk_core PRIVATE
    model/alloc.cpp
    model/bounds.cpp
    model/change_marks.cpp
    model/child_changes.cpp
    model/ear_cut.cpp
    model/flat_mesh.cpp
    model/frame.cpp
    model/freed.cpp
    model/identity.cpp
    model/lights.cpp
    model/list.cpp
    model/material.cpp
    model/matrix.cpp
    model/mesh_arrays.cpp
    model/normals.cpp
    model/object.cpp
    model/object_access.cpp
    model/object_tree.cpp
    model/owners.cpp
    model/palette.cpp
    model/property.cpp
    model/world.cpp
    model/world_check.cpp
)
