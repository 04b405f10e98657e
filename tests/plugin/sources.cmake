target_sources(vesk_tests PRIVATE
    plugin/direct_test.cpp
    plugin/foreign_models_test.cpp
    plugin/gltf_test.cpp
    plugin/images_test.cpp
    plugin/interchange_test.cpp
    plugin/odd_files_test.cpp
    plugin/plugin_test.cpp
    plugin/points_test.cpp
    plugin/roundtrip_test.cpp
)

# Plug-ins for the tests, in plain C against the one public header.
function(vesk_test_plugin name source)
    add_library(${name} MODULE plugin/${source})
    vesk_warnings(${name})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_compile_definitions(${name} PRIVATE ${ARGN})
    target_compile_options(${name} PRIVATE -fno-sanitize=all) # their faults are meant
    set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".p"
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    add_dependencies(vesk_tests ${name})
endfunction()
add_dependencies(vesk_tests images interchange scene_helper)
vesk_test_plugin(sample_plugin sample_plugin.c)
vesk_test_plugin(plugin_without_exit broken_plugin.c)
vesk_test_plugin(plugin_refusing broken_plugin.c REFUSES)
vesk_test_plugin(plugin_faulting broken_plugin.c FAULTS)
vesk_test_plugin(plugin_throwing throwing_plugin.cpp)
vesk_test_plugin(plugin_looping looping_plugin.c)
vesk_test_plugin(plugin_busy busy_plugin.c)
vesk_test_plugin(plugin_direct direct_plugin.c)
vesk_test_plugin(plugin_exit_first exiting_plugin.c WHICH="first")
vesk_test_plugin(plugin_exit_faulting exiting_plugin.c WHICH="faulting" FAULTS)
vesk_test_plugin(plugin_leaving exiting_plugin.c WHICH="leaving" LEAVES)
vesk_test_plugin(plugin_exit_last exiting_plugin.c WHICH="last")
add_test(NAME plugin_sdk COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/plugin/sdk_test.sh ${CMAKE_SOURCE_DIR}
    ${CMAKE_BINARY_DIR} $<TARGET_FILE:vesk>)
