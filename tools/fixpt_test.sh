#!/bin/sh
# Runs the built fixpt as a user would: decoding, exact patterns at every
# width, --info against the patterns the library writes, --fit at powers of
# two and just beyond, flags, usage errors, and the round trip of quantising
# and decoding over random formats and values from a fixed seed. Expected
# values are worked examples (M x 2^exp computed by hand or with rationals).
# Usage: fixpt_test.sh PATH/TO/fixpt
fixpt=$1
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
tmp=$(mktemp -d) || exit 1
trap 'rm -rf "$tmp"' EXIT

# field KEY ARGS...: the value of the "KEY: value" line fixpt prints.
field() {
    key=$1; shift
    "$fixpt" "$@" 2>/dev/null | sed -n "s/^$key: *//p"
}

# Table rows "KEY|EXPECTED|ARGS": fixpt ARGS prints EXPECTED on the KEY line.
check_fields() {
    while IFS='|' read -r key expected args; do
        case $key in ''|\#*) continue ;; esac
        # shellcheck disable=SC2086 # ARGS are words
        got=$(field "$key" $args)
        [ "$got" = "$expected" ] || fail "fixpt $args: $key is '$got', expected '$expected'"
    done
}

# Decoding: narrow, 54 to 64 bits, wide, negative patterns, odd exponents.
check_fields <<'TABLE'
exact|1.699951171875|--raw 0x1B33 s4.12
exact|-1.5|--raw 0xE80 s4.8
exact|14.5|--raw 0xe80 u4.8
exact|4294967301|--raw 0x1_0000_0005 u40.0
exact|-1|--raw 1 s1.0
exact|0.0009765625|--raw 1 u-2.10
exact|16|--raw 1 u12.-4
exact|9007199254740993|--raw 0x20000000000001 u54.0
double|9007199254740992|--raw 0x20000000000001 u54.0
exact|576460752303423489|--raw 0x800000000000001 u60.0
raw|0x800000000000000|--raw 0x800000000000001 u60.0 --via-words
exact|576460752303423488|--raw 0x800000000000001 u60.0 --via-words
exact|-1|--raw 0xFFFFFFFFFFFFFFFF s64.0
exact|18446744073709551615|--raw 0xFFFFFFFFFFFFFFFF u64.0
exact|-0.999999999999999999891579782751449556599254719913005828857421875|--raw 0x8000000000000001 s1.63
exact|590295810358705651711.9990234375|--raw 0x7FFFFFFFFFFFFFFFFFFF s70.10
exact|4886718345.6711110475325767765752971172332763671875|--raw 0x123_4567_89AB_CDEF_0123 s37.40
exact|-730750818665451459101842416358141509827966271488|--raw 0x8000000000000000000000000000000000000000 s160.0
raw|0x0000000000000000000000000000000000000001|--raw 00000000000000000000000000000000000000000000001 u160.0
exact|-1|--raw 0xFFFFFFFFFFFFFFFFFFFFFFFFF000000000000000 s100.60
double|0|--raw 0xFFFFFFFFFFFFFFFFFFFFFFFFF000000000000000 s100.60
TABLE

# Exact patterns where the class's readings pass through a double: 54 to 64
# bits (GetValueAs_uint64_t rounds) and above 64 bits (no uint64 at all).
check_fields <<'TABLE'
raw|0x7FFFFFFFFFFFFFFF|1e12 s40.24
uint64|0x8000000000000000|1e12 s40.24
saturated|yes|1e12 s40.24
raw|0xFFFFFFFFFFFFFFE8|-1.5 s60.4
raw|0x3FFFFFFFFFFFFD|-3 s54.0
raw|0x20000000000000|9007199254740993 u54.0
raw|0x7FFFFFFFFFFFFFFFFFFF|1e30 s70.10
raw|0x80000000000000000000|-1e30 s70.10
exact|-1|-1 s100.60
double|0|-1 s100.60
error|0|-1 s100.60
raw|0xFFFFFFFFFFFFFFFFFFFFFFFFF000000000000000|-1 s100.60
raw|0x019|0.0983 u3.8
radix 2|1110.100000000000|-1.5 s4.12 --radix 2 --align 2
TABLE

# Flags: what the quantiser cannot take, and --to between signednesses.
check_fields <<'TABLE'
note|NaN cannot be quantised|nan s4.12
note|NaN cannot be quantised|-nan s4.12
note|an infinity cannot be quantised|-Infinity s4.12
note|the input lies beyond the double range and reads as infinity; an infinity cannot be quantised|1e400 s4.12
note|the input times 2^48 overflows a double and cannot be quantised|1e300 u0.48
to note|the source reads as signed: -1|15 u4.12 --to s8.4
to exact|-1|15 u4.12 --to s8.4
to note|the source reads as unsigned: 12.75|-3.25 s4.12 --to u4.4
to note||1.5 s4.12 --to u4.4
note|the integer part exceeds 4 integer bits (--warn)|8 s4.12 --warn
note||7.5 s4.12 --warn
TABLE

# expect_status STATUS ARGS...: fixpt's exit status; stdout kept in $tmp/out.
expect_status() {
    want=$1; shift
    "$fixpt" "$@" >"$tmp/out" 2>"$tmp/err"
    got=$?
    [ "$got" -eq "$want" ] || fail "fixpt $* exited $got, expected $want"
}
expect_status 0 --help
grep -q -- '--fit' "$tmp/out" || fail "--help does not list --fit"
expect_status 0 20 s4.12
expect_status 1 20 s4.12 --strict
expect_status 1 2.5 s4.12 --to s2.2 --strict
expect_status 0 2.5 s4.12 --to s2.2 --to-overflow wrap --strict
expect_status 1 nan s4.12 --strict
expect_status 1 1e300 u0.48 --strict
expect_status 1 15 u4.12 --to s8.4 --strict
expect_status 0 1e-400 s4.12 --strict   # underflow reads as a small number, not flagged
expect_status 0 -inf s4.12              # a negative value is no option
[ "$("$fixpt" 0.3 u8.4 --to s-2.10)" = "$("$fixpt" 0.3 8 4 --unsigned --to -2,10)" ] ||
    fail "u8.4 / s-2.10 differ from 8 4 --unsigned / --to -2,10"

# Usage errors: exit 2, a message naming the cause, nothing on stdout.
while IFS='|' read -r message args; do
    case $message in ''|\#*) continue ;; esac
    # shellcheck disable=SC2086
    expect_status 2 $args
    grep -q -- "$message" "$tmp/err" || fail "fixpt $args: no '$message' in: $(head -1 "$tmp/err")"
    [ -s "$tmp/out" ] && fail "fixpt $args wrote to stdout"
done <<'TABLE'
bits above the 16 bits of s4.12|--raw 0x10000 s4.12
bits above the 12 bits of s4.8|--raw 0x1000 s4.8
bits above the 160 bits of u160.0|--raw 0x1_0000000000000000000000000000000000000000 u160.0
not a hexadecimal pattern: '0x1g'|--raw 0x1g s4.12
not a hexadecimal pattern: '0x'|--raw 0x s4.12
not a hexadecimal pattern: '-0x1'|--raw -0x1 s4.12
format s0.0 has 0 bits; a format holds 1 to 160 bits|1 s0.0
format s-5.2 has -3 bits|1 s-5.2
format s161.0 has 161 bits|1 s161.0
format s2147483647.1 has 2147483648 bits|1 s2147483647.1
format 100 61 has 161 bits|--raw 1 100 61
format s0.0 has 0 bits|--info s0.0
format 100 61 has 161 bits|1 s4.12 --to 100,61
fractional bits; the tool takes -4096 to 4096|1 s-5000.5010
MIN 2 is above MAX 1|--fit 2 1 --bits 8
--resolution takes a finite number above zero, not 0|--fit 0 1 --resolution 0
--resolution takes a finite number above zero, not -1|--fit 0 1 --resolution -1
--bits takes 1 to 160, not 0|--fit 0 1 --bits 0
--bits takes 1 to 160, not 161|--fit 0 1 --bits 161
either --bits N or --resolution R|--fit 0 1
a range needs finite numbers|--fit nan 1 --bits 8
more than 160 bits|--fit 0 1e30 --resolution 1e-30
at most 64 bits, not s70.0|--raw 1 s70.0 --via-words
not a number: 'abc'|abc s4.12
not a number: '1.5x'|1.5x s4.12
Unknown option 'bogus'|1.7 s4.12 --bogus
--to does not apply here|--info s4.12 --to u8.0
--via-words does not apply here|1 s4.12 --via-words
format s4.12 is signed but --unsigned is given|1.7 s4.12 --unsigned
--align takes 0, 1, 2, not 3|1.7 s4.12 --align 3
TABLE

# Batch input: a bad or overlong line names its number and writes nothing.
check_batch_refusal() {  # MESSAGE ARGS..., input on stdin
    message=$1; shift
    "$fixpt" "$@" >"$tmp/out" 2>"$tmp/err"
    [ $? -eq 2 ] || fail "batch $*: a bad line must exit 2"
    grep -q -- "$message" "$tmp/err" || fail "batch $*: no '$message' in: $(cat "$tmp/err")"
    [ -s "$tmp/out" ] && fail "batch $*: rows written before a bad line"
}
printf '1\n\nabc\n' | check_batch_refusal "line 3: not a number" --batch 4 12
printf '0x1\n0x10000\n' | check_batch_refusal "line 2: pattern '0x10000' has bits above" --raw --batch s4.12
awk 'BEGIN { printf "1\n"; for (i = 0; i < 2000; i++) printf "0"; printf "\n" }' |
    check_batch_refusal "line 2: longer than 1024 characters" --batch s4.12
printf 'inf\n' | check_batch_refusal "line 1: a range needs finite numbers" --fit --batch --bits 8

# Batch CSV: the int column, the flagged note, --to columns, --raw's header.
printf '# taps\n0.5\n\n  -3.25\n100\nnan\n' | "$fixpt" --batch s4.12 --to u4.4 >"$tmp/csv" 2>/dev/null
cat >"$tmp/expected" <<'CSV'
value,raw,int,exact,double,uint64,error,saturated,note,to_raw,to_int,to_exact,to_double,to_uint64,to_error,to_saturated,to_note
0.5,0x0800,2048,0.5,0.5,,0,no,,0x08,8,0.5,0.5,,0,no,
-3.25,0xCC00,-13312,-3.25,-3.25,,0,no,,0xCC,204,12.75,12.75,,16,no,the source reads as unsigned: 12.75
100,0x7FFF,32767,7.999755859375,7.999755859375,,-92.000244140625,yes,,0x80,128,8,8,,0.000244140625,no,
nan,0x0000,0,0,0,,nan,no,NaN cannot be quantised,0x00,0,0,0,,0,no,
CSV
cmp -s "$tmp/csv" "$tmp/expected" || { fail "batch CSV"; diff "$tmp/expected" "$tmp/csv"; }
printf '0x19\n0xFFED\n' | "$fixpt" --raw --batch s4.12 >"$tmp/csv"
cat >"$tmp/expected" <<'CSV'
raw,value,exact,int,double,uint64,note
0x0019,0.006103515625,0.006103515625,25,0.006103515625,,
0xFFED,-0.004638671875,-0.004638671875,-19,-0.004638671875,,
CSV
cmp -s "$tmp/csv" "$tmp/expected" || { fail "--raw batch CSV"; diff "$tmp/expected" "$tmp/csv"; }
printf '0.25\nnan\n' | "$fixpt" --batch s4.12 --strict >/dev/null 2>&1
[ $? -eq 1 ] || fail "a flagged batch row under --strict must exit 1"

# --info against the library: its bounds and patterns are what the quantiser
# writes when it saturates at either end (inputs 2^(INTBITS+2) beyond them).
for format in s4.12 u4.12 s1.0 u1.0 s33.0 u64.0 s1.63 s70.10 u100.60 s160.0 s-2.10 u12.-4; do
    int=${format#?}; int=${int%.*}
    for end in maximum minimum; do
        sign=; [ $end = minimum ] && sign=-
        [ "$(field "$end raw" --info "$format")" = "$(field raw "${sign}0x1p$((int + 2))" "$format")" ] ||
            fail "--info $format: $end raw differs from the saturated pattern"
        [ "$(field "$end" --info "$format")" = "$(field exact "${sign}0x1p$((int + 2))" "$format")" ] ||
            fail "--info $format: $end differs from the saturated value"
    done
done
check_fields <<'TABLE'
maximum words|0x7FFFFFFF_FFFFFFFF_FFFF0000|--info s70.10
minimum words|0x80000000_00000000_00000000|--info s70.10
resolution|0.0009765625|--info s70.10
words|3|--info s70.10
exponent|4|--info u12.-4
TABLE

# --fit at exact powers of two and just beyond them.
check_fields <<'TABLE'
format|u4.12|--fit 0 8 --bits 16
format|u3.13|--fit 0 7.999755859375 --bits 16
format|u4.12|--fit 0 7.99995 --bits 16
format|u3.13|--fit 0 7.99995 --bits 16 --round floor
format|s4.12|--fit -8 7 --bits 16
format|s5.11|--fit -8 8 --bits 16
format|s4.12|--fit -8.0001 7 --bits 16
format|s5.11|--fit -8.0001 7 --bits 16 --round floor
format|s1.7|--fit 0 0.5 --bits 8 --signed
format|u-9.17|--fit 0 0.0009765625 --bits 8 --round floor
format|u1.2|--fit 0 1 --resolution 0.25
format|u1.3|--fit 0 1 --resolution 0.2499
format|s2.1|--fit 0 1 --resolution 0.5 --signed
worst error|0.000030517578125|--fit -1 1 --bits 16
worst error|0.00006103515625|--fit -1 1 --bits 16 --round floor
TABLE
[ "$(printf '1\n-3\n2.5\n' | "$fixpt" --fit --batch --bits 8 | sed -n 's/^format: *//p')" = s3.5 ] ||
    fail "--fit --batch over 1, -3, 2.5 in 8 bits"

# Round trip over random formats: quantised values decode to the same raw
# pattern and exact value, and random full-width patterns come back as
# written (upper case, zero-padded).
awk 'BEGIN {
    srand(20261123)
    for (f = 0; f < 40; f++) {
        bits = 1 + int(rand() * 160); frac = int(rand() * (bits + 40)) - 20
        printf "%s%d.%d", (rand() < 0.5 ? "s" : "u"), bits - frac, frac
        for (i = 0; i < 80; i++)
            printf " %.17g", (rand() * 2.4 - 1.2) * 2 ^ (bits - frac)
        printf " |"
        for (i = 0; i < 40; i++) {
            top = (bits - 1) % 4 + 1; digits = ""
            for (d = 0; d < int((bits + 3) / 4); d++)
                digits = digits sprintf("%X", int(rand() * (d == 0 ? 2 ^ top : 16)))
            printf " 0x%s", digits
        }
        printf "\n"
    }
}' >"$tmp/cases"
rounds=0
while read -r format rest; do
    printf '%s\n' ${rest%%|*} | "$fixpt" --batch "$format" 2>/dev/null | cut -d, -f2,4 | sed 1d >"$tmp/quantised"
    cut -d, -f1 "$tmp/quantised" | "$fixpt" --raw --batch "$format" | cut -d, -f1,3 | sed 1d >"$tmp/decoded"
    cmp -s "$tmp/quantised" "$tmp/decoded" || fail "$format: quantised and decoded raw/exact differ"
    printf '%s\n' ${rest#*|} >"$tmp/patterns"
    "$fixpt" --raw --batch "$format" <"$tmp/patterns" | cut -d, -f1 | sed 1d >"$tmp/raw"
    cmp -s "$tmp/patterns" "$tmp/raw" || fail "$format: decoded patterns differ from the input"
    rounds=$((rounds + $(wc -l <"$tmp/quantised") + $(wc -l <"$tmp/raw")))
done <"$tmp/cases"
[ "$rounds" -ge 4800 ] || fail "the round trip covered only $rounds patterns"

[ "$failures" -eq 0 ] && echo "all fixpt cases passed ($rounds random round trips)"
[ "$failures" -eq 0 ]
