# Files of app/: the core's first, then (where there are any) the shell's.
target_sources(vesk_core PRIVATE
)
