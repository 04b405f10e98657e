# One list of warnings for every target of the project; all of them are errors. The fuzzers' compiler,
# which has others under the same names, only gives them.
set(VESK_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wcast-align -Wundef
    -Wmissing-declarations)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    list(APPEND VESK_WARNINGS -Werror -Wduplicated-cond -Wlogical-op)
endif()
set(VESK_CXX_WARNINGS ${VESK_WARNINGS} -Wfloat-conversion -Wold-style-cast -Wextra-semi)

function(vesk_warnings target)
    target_compile_options(${target} PRIVATE
        $<$<COMPILE_LANGUAGE:CXX>:${VESK_CXX_WARNINGS}>
        $<$<COMPILE_LANGUAGE:C>:${VESK_WARNINGS}>)
endfunction()
