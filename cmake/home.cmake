# The home directory, staged so that the executable runs from it without any environment variable,
# and its installation under a prefix.
set(VESK_STAGE ${CMAKE_BINARY_DIR}/home)
execute_process(COMMAND ${CMAKE_COMMAND} -E echo "puts [info library]"
    COMMAND ${TCLSH} OUTPUT_VARIABLE VESK_TCL_LIBRARY OUTPUT_STRIP_TRAILING_WHITESPACE)
string(REGEX REPLACE "tcl8" "tk8" VESK_TK_LIBRARY "${VESK_TCL_LIBRARY}")
string(REGEX REPLACE "/tcltk/tk8" "/tcltk/tk8" VESK_TK_LIBRARY "${VESK_TK_LIBRARY}")

# Links and never copies: init.tcl requires the exact patch level of the linked library.
file(MAKE_DIRECTORY ${VESK_STAGE}/lib ${VESK_STAGE}/plugins)
file(CREATE_LINK ${VESK_TCL_LIBRARY} ${VESK_STAGE}/lib/tcl8.3 SYMBOLIC)
file(CREATE_LINK ${VESK_TK_LIBRARY} ${VESK_STAGE}/lib/tk8.3 SYMBOLIC)
file(CREATE_LINK ${CMAKE_SOURCE_DIR}/tcl ${VESK_STAGE}/tcl SYMBOLIC)

if(EXISTS ${CMAKE_SOURCE_DIR}/icons/CMakeLists.txt)
    add_subdirectory(icons)
endif()
if(EXISTS ${CMAKE_SOURCE_DIR}/plugins/CMakeLists.txt)
    add_subdirectory(plugins)
endif()
if(EXISTS ${CMAKE_SOURCE_DIR}/examples/CMakeLists.txt)
    add_subdirectory(examples)
endif()
