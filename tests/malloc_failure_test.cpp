// fixmult when its carry counters cannot be allocated: the product words are
// left as the caller zeroed them (the product reads as zero), nothing around
// them is written, and the next call works again. The failure is injected by
// linking this executable with -Wl,--wrap=malloc,--wrap=calloc: the
// library's calls reach the wrappers below, which fail while
// `failuresToInject` lasts. Both are wrapped because the compiler may merge
// the allocation and the clearing of the counters into calloc (GCC does for
// 32-bit ARM).
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "exact_model.h"
#include "guarded_words.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

extern "C" void* __real_malloc(std::size_t size);
extern "C" void* __real_calloc(std::size_t count, std::size_t size);

namespace {
int failuresToInject = 0;
int failedAllocations = 0;

bool failThisAllocation()
{
    if (failuresToInject == 0)
        return false;
    --failuresToInject;
    ++failedAllocations;
    return true;
}
}  // namespace

extern "C" void* __wrap_malloc(std::size_t size)
{
    return failThisAllocation() ? nullptr : __real_malloc(size);
}

extern "C" void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return failThisAllocation() ? nullptr : __real_calloc(count, size);
}

namespace {

class MallocFailure : public ::testing::Test {
protected:
    void SetUp() override { failedAllocations = 0; }
    void TearDown() override { failuresToInject = 0; }
};

TEST_F(MallocFailure, FixmultLeavesTheProductZeroAndWritesNothingElse)
{
    const int32_t ones[4] = {-1, -1, -1, -1};  // -1 signed, 2^(32n) - 1 unsigned
    // A carry pass one short of the top takes the word-product path, the
    // others the record-sized one; each takes its own counters.
    for (int nx = 1; nx <= 3; ++nx)
    for (int ny = 1; nx + ny <= 5; ++ny)
    for (int nout : {nx + ny - 2, nx + ny - 1, nx + ny}) {
        SCOPED_TRACE(testing::Message() << nx << " x " << ny << " words, nout " << nout);
        GuardedWords out(nx + ny);
        failuresToInject = 1;
        Fixed::fixmult(out.data(), ones, ones, nx, ny, nout, 1, 1);
        EXPECT_EQ(failedAllocations, 1);
        EXPECT_EQ(model::hexWords(out.data(), nx + ny), model::hexWords(GuardedWords(nx + ny).data(), nx + ny));
        EXPECT_TRUE(out.guardsIntact()) << out.frameHex();
        failedAllocations = 0;
        // With the counters available again a full pass gives (-1)(-1) = 1.
        Fixed::fixmult(out.data(), ones, ones, nx, ny, nout, 1, 1);
        if (nout >= nx + ny - 1) {
            EXPECT_EQ(model::readMantissa(out.data(), 32 * (nx + ny), true), 1);
        }
        EXPECT_TRUE(out.guardsIntact()) << out.frameHex();
    }
}

TEST_F(MallocFailure, FixedmultKeepsTheHeaderOfTheProductWithZeroWords)
{
    // -1.5 (s4.4) times 2.25 (u6.2): the header of the 18-bit product.
    const Fixed::fixed a{8, -4, 1, {static_cast<int32_t>(0xE8000000u), 0, 0, 0, 0}};
    const Fixed::fixed b{10, -2, 0, {static_cast<int32_t>(0x02400000u), 0, 0, 0, 0}};
    failuresToInject = 1;
    const Fixed::fixed failed = Fixed::fixedmult(a, b);
    EXPECT_EQ(failedAllocations, 1);
    const Fixed::fixed zero{18, -6, 1, {0, 0, 0, 0, 0}};
    EXPECT_EQ(std::memcmp(&failed, &zero, sizeof zero), 0) << model::hexWords(failed.val, 5);
    EXPECT_EQ(Fixed::fixed2double(Fixed::fixedmult(a, b)), -3.375);
}

}  // namespace
