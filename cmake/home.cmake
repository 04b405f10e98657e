# The home directory, staged so that the executable runs from it without any environment variable,
# and its installation under a prefix.
set(VESK_STAGE ${CMAKE_BINARY_DIR}/home)
set(VESK_LIBDIR lib/vesk)
file(WRITE ${CMAKE_BINARY_DIR}/library.tcl "puts [info library]")
execute_process(COMMAND ${TCLSH} ${CMAKE_BINARY_DIR}/library.tcl
    OUTPUT_VARIABLE VESK_TCL_LIBRARY OUTPUT_STRIP_TRAILING_WHITESPACE)
string(REGEX REPLACE "/tcl([0-9.]+)$" "/tk\\1" VESK_TK_LIBRARY "${VESK_TCL_LIBRARY}")

# Links and never copies: init.tcl requires the exact patch level of the linked library.
file(MAKE_DIRECTORY ${VESK_STAGE}/lib ${VESK_STAGE}/plugins)
file(CREATE_LINK ${VESK_TCL_LIBRARY} ${VESK_STAGE}/lib/tcl8.3 SYMBOLIC)
file(CREATE_LINK ${VESK_TK_LIBRARY} ${VESK_STAGE}/lib/tk8.3 SYMBOLIC)
file(CREATE_LINK ${CMAKE_SOURCE_DIR}/tcl ${VESK_STAGE}/tcl SYMBOLIC)

if(EXISTS ${CMAKE_SOURCE_DIR}/icons/CMakeLists.txt)
    add_subdirectory(icons)
endif()
add_subdirectory(docs)
add_subdirectory(tools)
add_subdirectory(modules)
if(EXISTS ${CMAKE_SOURCE_DIR}/plugins/CMakeLists.txt)
    add_subdirectory(plugins)
endif()
if(EXISTS ${CMAKE_SOURCE_DIR}/examples/CMakeLists.txt)
    add_subdirectory(examples)
endif()

# The same under a prefix. The links are made where the program will run.
install(TARGETS vesk RUNTIME DESTINATION ${VESK_LIBDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/tcl DESTINATION ${VESK_LIBDIR})
foreach(folder icons examples docs)
    install(DIRECTORY ${VESK_STAGE}/${folder} DESTINATION ${VESK_LIBDIR} OPTIONAL
        PATTERN *.p EXCLUDE)
endforeach()
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/links)
file(CREATE_LINK ${VESK_TCL_LIBRARY} ${CMAKE_BINARY_DIR}/links/tcl8.3 SYMBOLIC)
file(CREATE_LINK ${VESK_TK_LIBRARY} ${CMAKE_BINARY_DIR}/links/tk8.3 SYMBOLIC)
install(DIRECTORY ${CMAKE_BINARY_DIR}/links/ DESTINATION ${VESK_LIBDIR}/lib)
configure_file(${CMAKE_SOURCE_DIR}/packaging/vesk.in ${CMAKE_BINARY_DIR}/launcher/vesk @ONLY)
install(PROGRAMS ${CMAKE_BINARY_DIR}/launcher/vesk DESTINATION bin)
