# What ctest is told of every test, wherever it is added.

# Seconds after which a test that waits for ever has failed: many times what the slowest takes under a sanitizer.
set(tamo_test_limit 300)

# What waits begins first, the longest before the others, and what computes is left for the end: it is in small shares
# and keeps every processor busy until nothing is left. ctest goes by these figures.
set(cost_long_wait 100)
set(cost_wait 80)
set(cost_others 50)
set(cost_computing 20)
