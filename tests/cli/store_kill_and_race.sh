#!/usr/bin/env bash
# MERIDA.DAT under kill -9 and under two programs saving at once.
# 1. A save killed at a random moment leaves the old store or the new one, whole, and the
#    next start leaves no temporary file behind.
# 2. Two rec at the same moment: both succeed and neither function is lost.
# 3. Many rec at once: the store's limits hold as if they had run one after another.
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

# 3. Many rec at once act as one after another: 60 new functions leave 49 stored and 11
#    refused with error 9; 10 of the same name leave one, the others refused with error 7.
#    Every exit 0 is a function stored, and the next start reports nothing.
many() {  # many DIR COUNT NAME_PREFIX_SAME(0|1)
  mkdir "$work/$1" && cd "$work/$1" || exit 1
  pids=()
  for i in $(seq 1 "$2"); do
    if [ "$3" -eq 1 ]; then f="s(x)=x+$i"; else f="m$i(x)=x+$i"; fi
    "$cli" rec "$f" >"out$i" 2>"err$i" &
    pids+=($!)
  done
  ok=0 refused=0
  for i in $(seq 1 "$2"); do
    if wait "${pids[$((i - 1))]}"; then ok=$((ok + 1)); else refused=$((refused + 1)); fi
  done
  echo "$ok $refused"
}
read -r ok refused < <(many sixty 60 0)
[ "$ok" -eq 49 ] && [ "$refused" -eq 11 ] || fail "60 rec at once: $ok stored, $refused refused"
[ "$(grep -l 'error 9:' "$work"/sixty/err* | wc -l)" -eq 11 ] || fail "60 rec at once: not every refusal is error 9"
cd "$work/sixty" || exit 1
[ "$("$cli" list 2>err | wc -l)" -eq 49 ] && [ ! -s err ] || fail "after 60 rec: $(cat err)"
read -r ok refused < <(many same 10 1)
[ "$ok" -eq 1 ] && [ "$refused" -eq 9 ] || fail "10 rec of one name: $ok stored, $refused refused"
[ "$(grep -l 'error 7:' "$work"/same/err* | wc -l)" -eq 9 ] || fail "10 rec of one name: not every refusal is error 7"
cd "$work/same" || exit 1
[ "$("$cli" list 2>err | wc -l)" -eq 1 ] && [ ! -s err ] || fail "after 10 rec of one name: $(cat err)"
echo "many: 60 rec at once stored 49, 10 rec of one name stored 1"
