#!/bin/bash
# shellcheck disable=SC2154 # who sources it gives what stands below
# To be sourced: a site of its own inside the sandbox, with a card of each kind.
#
# build: has qelm, qelm-bus, and qelm-hub where that is wanted
# quick: has a sleep that takes less than it says
# source: the repository
# where: what fails then is said to be there
# first: the first digit of all ports, which is another one for a second board

log=/run/qelm/qelm.log
first=${first:-5}

fail() {
  echo "$where: $1" >&2
  exit 1
}

# A shell's pattern of a text in which "..." stands for anything.
pattern_of() {
  local text=${1//\\/\\\\} mark
  for mark in '*' '?' '[' ']'; do text=${text//"$mark"/\\$mark}; done
  printf '%s' "${text//.../*}"
}

# Leaves the socket of the bus here, as "bus", and what happens on it, as "events".
start_site() {
  sed "s/Port=\"5/Port=\"$first/" "$source/docs/reference/qelmconf.xml" >/etc/qelm/qelmconf.xml
  (cd / && PATH=$quick:$PATH LD_PRELOAD=$quick/libpatience.so \
    ASAN_OPTIONS=verify_asan_link_order=0 "$build/qelm")
  "$build/qelm-bus" --plain --link /dev/ttyUSB0 --control bus >events &
  bus=$!
  hub=
  broker=
  trap end_site EXIT
  until [[ -S bus ]]; do sleep 0.05; done
  await_polls
  find_adapter
}

# The daemon polls as soon as it knows its cards.
await_polls() { order_bus 'wait frame 20 within 60s'; }

# One that got no turn of the processor in time has taken another answer for the adapter's.
is_adapter_known() { [[ $(grep 'hardware found' "$log" | tail -1) == *' version: v1.2' ]]; }

find_adapter() {
  until is_adapter_known; do
    order_bus 'cable pull'
    until tail -1 "$log" | grep -q "couldn't be found"; do sleep 0.05; done
    order_bus 'cable plug'
    await_polls
  done
}

# The hub has the daemon's three ports from now on. $1: more settings, or none
start_hub() {
  local ports='' url=localhost:${first}080
  [[ $first == 5 ]] || ports="cae = ${first}010
io = ${first}011
mon = ${first}012
[http]
listen = [\"127.0.0.1:${first}080\"]
[text]
cae = ${first}110
io = ${first}111
mon = ${first}112"
  mkdir /run/qelm-hub
  cat >/etc/qelm/qelm-hub.toml <<TOML
[daemon]
log = "$log"
$ports
[store]
folder = "$PWD/store"
[names]
bus = "bench"
[virtual-bus]
control = "$PWD/bus"
$1
TOML
  "$build/qelm-hub" 2>hub.log &
  hub=$!
  local _
  for _ in {1..400}; do
    # Commands go out some seconds after the start; the answer to this one says that it has.
    if curl -s "$url/healthz" | grep -q '"adapter":"up"' &&
      curl -s "$url/api/cards/F" | grep -q '"id":"F.5".*"known":true' &&
      curl -s --json '{"do":"clear"}' "$url/api/cards/E/control" | grep -q '"known":true'
    then return; fi
    sleep 0.05
  done
  fail "the hub does not see the cards: $(<hub.log)"
}

# As it comes, on this machine only.
start_broker() {
  mosquitto >broker.log 2>&1 &
  broker=$!
  until mosquitto_pub -t started -n 2>/dev/null; do sleep 0.05; done
}

end_site() {
  # shellcheck disable=SC2086 # those that there are
  kill $broker $hub "$bus" "$(</run/qelm/qelm.pid)" 2>/dev/null || true
  # shellcheck disable=SC2086
  wait $broker $hub "$bus" || true
}

order_bus() {
  [[ $(echo "$1" | socat -t61 - UNIX:bus,retry=50,interval=0.1 | tail -1) == ok ]] || fail "the bus refused \"$1\""
}
