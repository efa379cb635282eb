#!/usr/bin/env bash
# MERIDA.DAT under kill -9 and under two programs saving at once.
# 1. A save killed at a random moment leaves the old store or the new one, whole, and the
#    next start leaves no temporary file behind.
# 2. Two rec at the same moment: both succeed and neither function is lost.
# Usage: store_kill_and_race.sh MERIDA_CLI
set -u
cli=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() {
  echo "FAIL: $*" >&2
  exit 1
}
temporaries() { find . -name '*.merida-tmp-*' | wc -l; }

mkdir "$work/kill" "$work/race"
cd "$work/kill" || exit 1
for i in $(seq 1 30); do
  "$cli" rec "b$i(x)=x+$i" || fail "rec b$i"
done
olds=0 news=0
for round in $(seq 1 40); do
  cp MERIDA.DAT before
  cp MERIDA.DAT after
  printf 'k(x)=x*%d\r\n' "$round" >>after
  "$cli" rec "k(x)=x*$round" >/dev/null 2>&1 &
  pid=$!
  sleep "0.00$((RANDOM % 10))"
  kill -9 "$pid" 2>/dev/null
  wait "$pid" 2>/dev/null
  if cmp -s MERIDA.DAT before; then
    olds=$((olds + 1))
  elif cmp -s MERIDA.DAT after; then
    news=$((news + 1))
  else
    fail "round $round: the store is neither the old one nor the new one"
  fi
  "$cli" list >/dev/null 2>&1 || fail "round $round: the next start failed"
  [ "$(temporaries)" -eq 0 ] || fail "round $round: a temporary file survived the next start"
  # Back to 30 functions for the next round.
  if ! cmp -s MERIDA.DAT before; then "$cli" del 31 || fail "round $round: del"; fi
done
echo "kill -9: $olds rounds left the old store, $news the new one"

cd "$work/race" || exit 1
for round in $(seq 1 20); do
  "$cli" rec "p$round(x)=x+$round" >out1 2>&1 &
  a=$!
  "$cli" rec "q$round(x)=x-$round" >out2 2>&1 &
  b=$!
  wait "$a" || fail "round $round: the first rec failed: $(cat out1)"
  wait "$b" || fail "round $round: the second rec failed: $(cat out2)"
  [ -s out1 ] && fail "round $round: $(cat out1)"
  [ -s out2 ] && fail "round $round: $(cat out2)"
  if [ "$round" -eq 10 ]; then
    # A deletion racing a rec is not undone by the rec's save.
    "$cli" del 1 &
    a=$!
    "$cli" rec "r(x)=x" &
    b=$!
    wait "$a" || fail "del beside rec failed"
    wait "$b" || fail "rec beside del failed"
  fi
done
listed=$("$cli" list)
for round in $(seq 1 20); do
  for f in "p$round(x)=x+$round" "q$round(x)=x-$round"; do
    if [ "$round" -eq 1 ] && [ "$(printf '%s\n' "$listed" | grep -c '^[pq]1(')" -ne 1 ]; then
      fail "del 1 beside a rec: expected one of p1 and q1 left"
    fi
    [ "$round" -eq 1 ] && continue
    printf '%s\n' "$listed" | grep -qxF "$f" || fail "lost $f"
  done
done
printf '%s\n' "$listed" | grep -qxF "r(x)=x" || fail "lost r(x)=x"
[ "$(printf '%s\n' "$listed" | wc -l)" -eq 40 ] || fail "expected 40 functions, got: $listed"
[ "$(temporaries)" -eq 0 ] || fail "temporary files left after the races"
echo "race: 20 rounds of two rec at once, nothing lost"
