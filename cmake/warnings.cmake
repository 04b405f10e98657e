# One list of warnings for every target of the project; all of them are errors.
set(VESK_WARNINGS -Werror -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wcast-align -Wundef
    -Wduplicated-cond -Wlogical-op -Wmissing-declarations)
set(VESK_CXX_WARNINGS ${VESK_WARNINGS} -Wfloat-conversion -Wold-style-cast -Wextra-semi)

function(vesk_warnings target)
    target_compile_options(${target} PRIVATE
        $<$<COMPILE_LANGUAGE:CXX>:${VESK_CXX_WARNINGS}>
        $<$<COMPILE_LANGUAGE:C>:${VESK_WARNINGS}>)
endfunction()
