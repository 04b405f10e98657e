target_sources(vesk_tests PRIVATE
    app/absurd_arguments_test.cpp
    app/added_commands_test.cpp
    app/atomic_file_test.cpp
    app/bounds_test.cpp
    app/command_test.cpp
    app/desktop_test.cpp
    app/prefs_test.cpp
    app/progress_test.cpp
    app/text_test.cpp
)
