#!/usr/bin/env bash
# Times `merida-cli primes 100000000` against `primesieve 100000000 -p`, both to /dev/null,
# and prints their ratio. Usage: bench/primes_vs_primesieve.sh CLI_PATH [N] [RUNS]
set -euo pipefail
export LC_ALL=C

cli=${1:?usage: $0 CLI_PATH [N] [RUNS]}
n=${2:-100000000}
runs=${3:-3}

if ! command -v primesieve >/dev/null; then
  echo "installing primesieve"
  if [ "$(id -u)" -ne 0 ]; then SUDO=sudo; else SUDO=; fi
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends primesieve
fi

# The best of several runs of a command, in seconds (the machine is shared: the best is the
# least disturbed).
best() {
  local times="" t0 t1
  for _ in $(seq "$runs"); do
    t0=$EPOCHREALTIME
    "$@" >/dev/null
    t1=$EPOCHREALTIME
    times+="$t0 $t1"$'\n'
  done
  awk 'NF == 2 { s = $2 - $1; if (b == "" || s < b) b = s } END { printf "%.6f", b }' <<<"$times"
}

# Both must list the same primes before their times mean anything.
if [ "$n" -le 10000000 ] || [ "${CHECK:-0}" = 1 ]; then
  diff <("$cli" primes "$n" | sed '$d; s/^ //') <(primesieve "$n" -p) >/dev/null || { echo "outputs differ" >&2; exit 1; }
fi

t_cli=$(best "$cli" primes "$n")
t_ps=$(best primesieve "$n" -p)
printf 'merida-cli primes %s: %.3f s\n' "$n" "$t_cli"
printf 'primesieve %s -p:     %.3f s\n' "$n" "$t_ps"
awk -v a="$t_cli" -v b="$t_ps" 'BEGIN { r = a / b; printf "ratio: %.2f (target: at most 3)\n", r; exit !(r <= 3) }'
