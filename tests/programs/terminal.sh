#!/bin/bash
# msanctl with a person: keys are typed at a terminal that "script" provides, what it shows is waited for.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
export XDG_STATE_HOME=$folder/state TERM=xterm

open() {
  rm -f "$folder/keys"
  : >"$folder/shown"  # looked at before the terminal has opened it
  mkfifo "$folder/keys"
  script -qfec "$bin/msanctl --socket $socket" /dev/null <"$folder/keys" >"$folder/shown" 2>&1 &
  terminal=$!
  exec 3>"$folder/keys"
  seen=0
  see "the first prompt" "*msan# "
}

# see WHAT PATTERN: waits for it in what the terminal has shown since the last one, without control sequences
see() {
  local shown tries
  for ((tries = 0; tries < 200; ++tries)); do
    shown=$(tail -c +$((seen + 1)) "$folder/shown" | sed 's/\x1b\[[0-9]*[@A-Za-z]//g' | tr -d '\r\a')
    # shellcheck disable=SC2053
    if [[ $shown == $2 ]]; then
      seen=$(stat -c %s "$folder/shown")
      return
    fi
    sleep 0.05
  done
  expectMatch "$1" "$2" "$shown"
}

# keys KEYS: typed as they are, with escapes such as \t
keys() { printf '%b' "$1" >&3; }

leave() {
  keys 'exit\r'
  exec 3>&-
  local code=0
  wait "$terminal" || code=$?
  expect "exit code of a session that was left" 0 "$code"
}

start
open
keys 'sh\t'
see "Tab completes a word" "show"
keys ' ci\t'
see "and the next one" " ci*d "
keys 'mo\t\r'
see "the line is run" "mo*de *CID Mode: FSK*msan# "
keys 'set cid mode ?'
see "? shows what may stand next, and the line again" "*
  dtmf  *
  fsk  *
msan# set cid mode "
keys '\x15no "what?"\r'
see "inside quotes ? is text" '*no "what?"*% unknown command*msan# '
keys 'set cid mode xxx\r'
see "what is not understood, and what was expected" '*
                   ^ fsk or dtmf
% unknown command
msan# '
keys 'debug\r'
see "the debug level has its own prompt" '*msan(debug)# '
keys 'sh\t?'
see "and its own commands" '*show *msan *running-config *msan(debug)# show '
keys '\x15exit\r'
see "exit leads back" '*exit*msan# '
keys 'set cid mode dtmf'
see "a line that is being typed" "*set cid mode dtmf"
keys '\x03'
see "is given up" '^C
msan# '
keys 'show cid mode\r'
see "and was not run" '*CID Mode: FSK*msan# '

# A command that takes long: the terminal lives, and need not wait for it.
keys 'chassis voice delay 2500\r'
see "a voice side that takes its time" '*msan# '
keys 'set cid mode dtmf\r'
see "a sign of life" '*... 1 s; Control-C waits no longer'
keys '\x03'
see "the prompt is back" '*no longer waited for; the node finishes it
msan# '
keys 'show cid mode\r'
see "the next line has its own result, behind the first one" '*CID Mode: DTMF*msan# '
ctl -c 'chassis voice delay 0' -c 'set cid mode fsk' >/dev/null

keys 'trace on\r'
see "trace on" "*trace on
msan# "
keys 'set cid mo'
see "a line that is being typed" "*set cid mo"
ctl -c 'set cid mode dtmf' >/dev/null
see "messages of another terminal's command are shown above it" '*ngn 3087 cidMode: CIDMode dtmf
*crc 9 3087 3
*msan# set cid mo'
keys '\x15'
leave
expect "the history is its user's alone" "600 700" \
  "$(stat -c %a "$folder/state/msan/history" "$folder/state/msan" | xargs)"

open
keys '\x1b[A\x1b[A\x1b[A\r'
see "the history comes back in the next session" "*show cid mode*CID Mode: DTMF*msan# "
stop
see "a node that stops says so" "*The node has ended the session: the node is shut down.*"
exec 3>&-
code=0
wait "$terminal" || code=$?
expect "exit code of a session that the node has ended" 3 "$code"
exit $bad
