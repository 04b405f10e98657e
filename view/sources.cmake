# Files of view/: the core's first, then the shell's.
target_sources(vesk_core PRIVATE
    view/camera.cpp
    view/camera_eye.cpp
    view/fit.cpp
    view/pick.cpp
    view/projection.cpp
    view/redraw.cpp
    view/texture_search.cpp
    view/textures.cpp
    view/views.cpp
)
