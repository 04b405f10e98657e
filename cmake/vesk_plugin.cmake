# vesk_add_plugin(NAME SOURCE...)
#   Makes the plug-in NAME.p of C or C++ sources that include <plugin/vesk.h>. The program resolves
#   what they refer to when it loads the plug-in, so nothing is linked.
function(vesk_add_plugin name)
    add_library(${name} MODULE ${ARGN})
    target_link_libraries(${name} PRIVATE vesk::plugin)
    set_target_properties(${name} PROPERTIES
        PREFIX "" SUFFIX ".p"
        C_VISIBILITY_PRESET hidden
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
endfunction()
