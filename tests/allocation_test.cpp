// Heap discipline: the core allocates nothing but fixmult's carry counters,
// and every CFixedPoint holds exactly one heap record. The global allocation
// functions of this executable are replaced by counting ones, and the core's
// calls of malloc, calloc, realloc and free are routed through counting
// wrappers at link time (--wrap), so any allocation on the paths under test,
// by either route, shows up in the count.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

// The wrapped C allocation functions: the linker sends the core's calls to
// __wrap_X and offers the real ones as __real_X.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
}

#include "FixedPoint.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace {

// Counts while armed only, so GoogleTest's own allocations stay outside.
bool armed = false;
long allocations = 0;
long releases = 0;

void countAllocation()
{
    if (armed)
        ++allocations;
}

void countRelease(void* block)
{
    if (block != nullptr && armed)
        ++releases;
}

void* countedAllocate(std::size_t size)
{
    countAllocation();
    if (void* block = __real_malloc(size == 0 ? 1 : size))
        return block;
    throw std::bad_alloc();
}

void countedRelease(void* block)
{
    countRelease(block);
    __real_free(block);
}

struct Counts {
    long allocations;
    long releases;
};

template <typename Body>
Counts countDuring(Body body)
{
    allocations = 0;
    releases = 0;
    armed = true;
    body();
    armed = false;
    return {allocations, releases};
}

Fixed::fixed record(int bits, int exp, int sign, uint32_t top)
{
    Fixed::fixed f{bits, exp, sign, {0, 0, 0, 0, 0}};
    f.val[(bits + 31) / 32 - 1] = static_cast<int32_t>(top);
    return f;
}

TEST(HeapUse, CoreRoutinesAllocateNothing)
{
    for (int bits : {8, 16, 32, 33, 64, 100, 160}) {
        SCOPED_TRACE(bits);
        const Counts counts = countDuring([bits] {
            volatile double sink = 0.0;
            int32_t words[5] = {};
            for (int round = 0; round <= 1; ++round) {
                for (int wrap = 0; wrap <= 1; ++wrap) {
                    // In range, saturating and wrapping values alike.
                    for (double v : {1.7, -3.25, 1e60, -1e60}) {
                        const Fixed::fixed f = Fixed::double2fixed(v, bits / 2, bits - bits / 2, 1, round, wrap);
                        sink = sink + Fixed::fixed2double(f);
                        Fixed::float2fix(v * 1024.0, bits, words, 0, round, wrap);
                        sink = sink + Fixed::fix2float(words, bits, 0);
                    }
                }
            }
            const Fixed::fixed a = record(bits, -4, 1, 0x7FFFFFFFu);
            const Fixed::fixed b = record(bits, -4, 1, 0x00010000u);
            sink = sink + Fixed::fixed2double(Fixed::fixedadd(a, b));
            sink = sink + Fixed::fixed2double(Fixed::fixedsub(a, b));
            sink = sink + Fixed::fixed2double(Fixed::fixedshift(a, 3));
            // Widening, same width, narrowing; rounded and saturated.
            for (int intbits : {bits / 2 + 3, bits / 2, bits / 2 - 3}) {
                const Fixed::fixed f = Fixed::fixedformat(a, intbits, bits / 2 - 5, 1, 1, 0);
                sink = sink + Fixed::fixed2double(f);
                int32_t out[5] = {};
                Fixed::fixformat(a.val, out, a.bits, f.bits, a.exp, f.exp, 1, 1, 0);
            }
            sink = sink + Fixed::powerOfTwo(bits);
            sink = sink + Fixed::fixedgt(a, b) + Fixed::fixedle(a, b) + Fixed::fixedeq(a, b);
            char text[128];
            for (int query = 1; query >= 0; --query) {
                sink = sink + Fixed::fix2str1(a.val, a.bits, a.exp, text + 120, 4, 1, 2, 0, query);
                sink = sink + Fixed::fix2str2(a.val, a.bits, a.exp, text + 120, 3, 1, 0, 1, query);
            }
        });
        EXPECT_EQ(counts.allocations, 0);
        EXPECT_EQ(counts.releases, 0);
    }
}

// fixmult takes its carry counters from the heap and returns them: one
// allocation and one release per product, whatever the factors' widths.
TEST(HeapUse, MultiplicationTakesOnlyItsCarryCounters)
{
    for (int bits : {1, 16, 32, 33, 64, 80}) {
        SCOPED_TRACE(bits);
        const Fixed::fixed a = record(bits, -4, 1, 0x80000000u);
        const Fixed::fixed b = record(bits, 3, 0, 0xFFFFFFFFu);
        volatile double sink = 0.0;
        const Counts counts = countDuring([&] { sink = sink + Fixed::fixed2double(Fixed::fixedmult(a, b)); });
        EXPECT_EQ(counts.allocations, 1);
        EXPECT_EQ(counts.releases, 1);
    }
}

TEST(HeapUse, EveryObjectHoldsExactlyOneRecord)
{
    const Fixed::fixed source = record(40, -20, 1, 0x12345678u);
    struct Step {
        const char* what;
        long allocations;
        long releases;
        Counts counts;
    };
    CFixedPoint x(1.7, 4, 12, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                  CFixedPoint::WRAP_SATURATE, true, CFixedPoint::MAXVALUE_2N_MINUS_1);
    CFixedPoint y(source);
    const Step steps[] = {
        {"from a double", 1, 1, countDuring([] {
             CFixedPoint v(-2.5, 8, 8, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR,
                           CFixedPoint::WRAP_AROUND, true, CFixedPoint::MAXVALUE_2N);
         })},
        {"from a record", 1, 1, countDuring([&] { CFixedPoint v(source); })},
        {"from raw words", 1, 1, countDuring([] {
             CFixedPoint v(0x1u, 0x80000000u, 20, 20, CFixedPoint::SIGN_UNSIGNED);
         })},
        {"copy", 1, 1, countDuring([&] { CFixedPoint v(x); })},
        {"shift", 1, 1, countDuring([&] { CFixedPoint v = x << 3; })},
        {"reformat", 1, 1, countDuring([&] {
             CFixedPoint v(x, 6, 3, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                           CFixedPoint::WRAP_SATURATE);
         })},
        {"assignment", 0, 0, countDuring([&] { y = x; })},
        {"accumulation", 0, 0, countDuring([&] { x += x; })},
        {"conversions", 0, 0, countDuring([&] {
             volatile double d = static_cast<double>(x);
             volatile uint64_t raw = x.GetValueAs_uint64_t() + x.MSB() + x.LSB();
             (void)d;
             (void)raw;
         })},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        EXPECT_EQ(step.counts.allocations, step.allocations);
        EXPECT_EQ(step.counts.releases, step.releases);
    }
}

}  // namespace

void* operator new(std::size_t size) { return countedAllocate(size); }
void* operator new[](std::size_t size) { return countedAllocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return countedAllocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept
{
    return operator new(size, tag);
}
void operator delete(void* block) noexcept { countedRelease(block); }
void operator delete[](void* block) noexcept { countedRelease(block); }
void operator delete(void* block, std::size_t) noexcept { countedRelease(block); }
void operator delete[](void* block, std::size_t) noexcept { countedRelease(block); }

void* __wrap_malloc(std::size_t size)
{
    countAllocation();
    return __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    countAllocation();
    return __real_calloc(count, size);
}

void* __wrap_realloc(void* block, std::size_t size)
{
    countAllocation();
    return __real_realloc(block, size);
}

void __wrap_free(void* block)
{
    countRelease(block);
    __real_free(block);
}
