# Which calls in the module lead to an operation that can fail, and which of them no sweep came by.
# Input: the return addresses that a sweep came by (--calls), the disassembly of the program that holds the platform, that
# of the module. Prints how many there are, then a line for each that is left: address, function.

function name(text) {
  sub(/^.*</, "", text)
  sub(/(@plt)?(\+0x[0-9a-f]+)?>.*$/, "", text)
  return text
}

# Adds all that calls what is in `leads`, through `callers`.
function spread(leads, callers,    todo, count, at, one, found, n, i) {
  for (one in leads) todo[count++] = one
  for (at = 0; at < count; ++at) {
    n = split(callers[todo[at]], found, " ")
    for (i = 1; i <= n; ++i)
      if (!(found[i] in leads)) {
        leads[found[i]]
        todo[count++] = found[i]
      }
  }
}

FNR == 1 { ++input }
input == 1 { reached[$1]; next }

# A function begins.
/^[0-9a-f]+ <.*>:$/ {
  here = input == 2 ? name($2) : $1
  sub(/^0+/, "", here)
  if (input == 3) names[here] = name($2)
  next
}
/^ +[0-9a-f]+:/ {
  if (called != "") {
    address = $1
    sub(/:$/, "", address)
    ++calls
    returns[calls] = address
    target[calls] = called
    from[calls] = here
    called = ""
  }
}
/\tcall +[0-9a-f]+ </ {
  if (input == 2) {
    callee = name($0)
    platform[callee] = platform[callee] " " here
  } else {
    called = $0 ~ /@plt/ ? name($0) : $(NF - 1)
    module[called] = module[called] " " here
  }
}
END {
  fails["_ZN4host8faultDueENS_5FaultE"]
  spread(fails, platform)
  for (each in fails) leads[each]
  spread(leads, module)
  for (i = 1; i <= calls; ++i) {
    if (!(target[i] in leads)) continue
    ++all
    if (returns[i] in reached) ++met
    else left[++rest] = returns[i] " " names[from[i]] " " (target[i] in names ? names[target[i]] : target[i])
  }
  print all + 0 " calls lead to an operation that can fail, " met + 0 " of them were come by"
  for (i = 1; i <= rest; ++i) print left[i]
}
