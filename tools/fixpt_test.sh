#!/bin/sh
# Runs the built fixpt on a few cases: exit statuses, the compact format,
# --to in both spellings and one batch table with a saturated row.
# Usage: fixpt_test.sh PATH/TO/fixpt
fixpt=$1
failures=0

fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# expect_status STATUS ARGS...: runs fixpt and checks its exit status.
expect_status() {
    want=$1; shift
    "$fixpt" "$@" >/dev/null 2>"$tmp/stderr"
    got=$?
    [ "$got" -eq "$want" ] || fail "fixpt $* exited $got, expected $want"
}

tmp=$(mktemp -d) || exit 1
trap 'rm -rf "$tmp"' EXIT

expect_status 0 1.7 s4.12
expect_status 0 --help
expect_status 0 20 s4.12              # saturates, but only --strict makes that an error
expect_status 1 20 s4.12 --strict
expect_status 1 2.5 s4.12 --to s2.2 --strict   # the conversion saturates
expect_status 0 2.5 s4.12 --to s2.2 --to-overflow wrap --strict
expect_status 2 1.7 x4.12
expect_status 2 1.7 s4.12 --bogus
grep -q "^fixpt: Unknown option 'bogus'" "$tmp/stderr" || fail "no message for an unknown option"
expect_status 2 1.7 s4.12 --unsigned  # the sign letter and the flag disagree
expect_status 2 1.7 4                 # FRACBITS missing
expect_status 0 -inf s4.12             # a negative value is no option
expect_status 2 1.7 s4.12 --to 8
expect_status 2 1.7 s4.12 --align 3

# The compact format and INTBITS FRACBITS with --unsigned are the same format.
[ "$("$fixpt" 0.3 u8.4 --to s-2.10)" = "$("$fixpt" 0.3 8 4 --unsigned --to -2,10)" ] ||
    fail "u8.4 / s-2.10 differ from 8 4 --unsigned / --to -2,10"

"$fixpt" -1.5 s4.12 --radix 2 --align 2 >"$tmp/single" || fail "single value with --radix 2"
grep -qx 'raw:        0xE800' "$tmp/single" || fail "raw pattern of -1.5 in s4.12"
grep -qx 'radix 2:    1110.100000000000' "$tmp/single" || fail "binary text of -1.5 in s4.12"

printf '# coefficients\n0.5\n\n  -3.25\n100\n-9\n' | "$fixpt" --batch s4.12 --to u4.4 >"$tmp/csv"
cat >"$tmp/expected" <<'CSV'
value,quantised,raw,error,saturated,converted,converted_raw,converted_error,converted_saturated
0.5,0.5,0x800,0,no,0.5,0x8,0,no
-3.25,-3.25,0xCC00,0,no,12.75,0xCC,16,no
100,7.999755859375,0x7FFF,-92.000244140625,yes,8,0x80,0.000244140625,no
-9,-8,0x8000,1,yes,8,0x80,16,no
CSV
cmp -s "$tmp/csv" "$tmp/expected" || { fail "batch CSV"; diff "$tmp/expected" "$tmp/csv"; }

printf '1\n\nabc\n' | "$fixpt" --batch 4 12 >"$tmp/csv" 2>"$tmp/stderr"
[ $? -eq 2 ] || fail "a malformed batch line must exit 2"
grep -q 'line 3' "$tmp/stderr" || fail "the message must name line 3"
[ ! -s "$tmp/csv" ] || fail "no rows are written before a malformed line"

printf '0.25\n20\n' | "$fixpt" --batch s4.12 --strict >/dev/null
[ $? -eq 1 ] || fail "a saturated batch row under --strict must exit 1"

[ "$failures" -eq 0 ] && echo "all fixpt cases passed"
[ "$failures" -eq 0 ]
