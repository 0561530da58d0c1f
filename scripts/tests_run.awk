# How many tests ran: reads ctest's own log. A program of GoogleTest says how many it ran; any other is one.

/^[0-9]+\/[0-9]+ Testing: / { ++programs; here = 1 }
/^\[==========\] [0-9]+ tests? from .* ran\./ { here = $2 }
/^<end of output>$/ { tests += here }

END { print tests " tests in " programs " runs of programs" }
