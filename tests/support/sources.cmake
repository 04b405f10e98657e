target_sources(vesk_tests PRIVATE
)
