target_sources(vesk_tests PRIVATE
    program/absurd_arguments_test.cpp
    program/bounds_test.cpp
    program/command_test.cpp
    program/commands_test.cpp
    program/object_rows_test.cpp
)
