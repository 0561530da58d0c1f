# Which tests did not run, and why: "NAME: reason" a line. Reads what ctest printed and then its own log, which has
# what each test said. Tests that are disabled run nowhere unless somebody asks for them, and are left out.

function name_of(text) { sub(/ +# GetParam.*/, "", text); return text }

FNR == 1 { ++file }

file == 1 && /^The following tests/ { in_list = /did not run/; next }
file == 1 && in_list && /^\t *[0-9]+ - .* \(.*\)$/ && !/ \(Disabled\)$/ {
  name = $0
  sub(/^\t *[0-9]+ - /, "", name)
  sub(/ \([^(]*\)$/, "", name)
  order[++count] = name_of(name)
  why[name_of(name)] = "it does not say why"
}

# A test of GoogleTest has its reason below the place of the skip; another program's is the last that it says.
file == 2 && /^[0-9]+\/[0-9]+ Testing: / {
  sub(/^[^:]*: /, "")
  name = name_of($0)
  said = reason = ""
}
file == 2 && /^Output:$/ { in_output = 1; getline; next }
file == 2 && /^<end of output>$/ {
  in_output = 0
  if (name in why && reason said != "") why[name] = reason != "" ? reason : said
}
file == 2 && in_output && at_reason { reason = $0; at_reason = 0 }
file == 2 && in_output && /: Skipped$/ && reason == "" { at_reason = 1 }
file == 2 && in_output && $0 != "" { said = $0 }

END {
  for (at = 1; at <= count; ++at) print order[at] ": " why[order[at]]
}
