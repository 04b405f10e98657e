# One vesk_bench(name source...) line for each benchmark.
