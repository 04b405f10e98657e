# One vesk_bench(name source...) line for each benchmark.
vesk_bench(files_bench files_bench.cpp)
vesk_bench(objects_bench objects_bench.cpp)
vesk_bench(pick_bench pick_bench.cpp)
vesk_bench(undo_bench undo_bench.cpp)
vesk_bench(geometry_bench geometry_bench.cpp)
vesk_bench(uv_bench uv_bench.cpp)
vesk_bench(solids_bench solids_bench.cpp)
vesk_bench(edges_bench edges_bench.cpp)
