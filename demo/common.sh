# Used by the demos, which set $name (of the server), $here and $dir first.
# shellcheck shell=bash
set -euo pipefail
: "${name:?}" "${here:?}" "${dir:?}"

top=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)
bin=${HOLLOWMERE_BIN:-$top/../build/release/bin}
servers=$(cd "$top/../tests/servers" && pwd)
server=$servers/$name
port=''

bold='' plain=''
if [ -t 1 ] && [ -z "${NO_COLOR:-}" ]; then bold=$'\e[1m' plain=$'\e[0m'; fi

die() { printf 'demo: %s\n' "$*" >&2; exit 1; }
step() { printf '\n%s%s%s\n' "$bold" "$*" "$plain"; }
say() { printf '%s\n' "$@"; }

# show COMMAND...: print it as a user would type it, then run it.
show() {
  printf '%s$ %s%s\n' "$bold" "$*" "$plain"
  "$@"
}

# first FILE COUNT: the beginnings of the first lines. The result's lines end in a carriage return alone.
first() {
  local line i
  for ((i = 0; i < $2; i++)); do
    IFS= read -r line || [ -n "$line" ] || break
    if [ ${#line} -gt 300 ]; then line=${line:0:300}...; fi
    printf '  %s\n' "$line"
  done < <(tr '\r' '\n' <"$1" 2>/dev/null)
}

# lines FILE, bytes FILE
lines() { wc -l <"$1"; }
bytes() { wc -c <"$1"; }

stop_server() {
  [ -z "$port" ] || "$server" stop "$port" >/dev/null || true
}

# open_folder FILE...: where all is written. It may hold an earlier demo; only what that wrote is removed.
open_folder() {
  [ -x "$bin/hollowmere-cli" ] || die "no programs in $bin; ./dev demo builds them"
  mkdir -p "$dir"
  dir=$(cd "$dir" && pwd)
  [ -O "$dir" ] || die "$dir belongs to somebody else"
  case $dir in *[\"\\]*) die "the name of the folder may hold no \" and no \\: $dir" ;; esac
  cd "$dir"
  local file
  for file; do rm -f "$file"{.json,.project.json,.project,.log,.discarded.txt,.totals.json}; done
  export HOLLOWMERE_DATA=$dir/data HOLLOWMERE_SETTINGS=$dir/settings.ini
  export PATH=$bin:$PATH
  trap stop_server EXIT
}

start_server() {
  local ready
  ready=$("$server" start --port 0 --parent $$)
  port=${ready#*127.0.0.1:}
  port=${port%% *}
  say "$ready"
}

# seal NAME: fill in the template's port and folder, and make the project file of it.
seal() {
  local text
  text=$(cat "$here/$1.json")
  text=${text//@PORT@/"$port"}
  printf '%s\n' "${text//@DIR@/"$dir"}" >"$1.project.json"
  show hollowmere-cli seal "$1.project.json" "$1.project"
}

# run NAME: with its totals kept for the comparison.
run() {
  printf '%s$ %s%s\n' "$bold" "hollowmere-cli run --json $1.project > $1.totals.json" "$plain"
  hollowmere-cli run --json "$1.project" >"$1.totals.json"
}
