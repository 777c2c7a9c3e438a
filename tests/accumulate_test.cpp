// fixedadd against the exact model, and the class members built on the
// record operations: the reformat constructor and operator+=.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "FixedPoint.h"
#include "exact_model.h"
#include "lib_fixed_c.h"
#include "report_recorder.h"

namespace {

const char* const fixedaddSignature = "Fixed::fixed Fixed::fixedadd(Fixed::fixed, Fixed::fixed)";
const char* const fixedaddMismatch =
    "C error: fixedpoint numbers with different format can't be added (fixedadd).";

Fixed::fixed withMantissa(int bits, int exp, int sign, const mpz_class& m)
{
    Fixed::fixed f{bits, exp, sign, {0, 0, 0, 0, 0}};
    model::writeMantissa(m, bits, f.val);
    return f;
}

// The words of a and b added as one 32*nw-bit number, the carry out dropped.
mpz_class rawWordSum(const Fixed::fixed& a, const Fixed::fixed& b, int nw)
{
    const int bits = 32 * nw;
    return model::readMantissa(a.val, bits, false) + model::readMantissa(b.val, bits, false);
}

class FixedAdd : public ReportingTest {};

TEST_F(FixedAdd, MatchesTheModelAndReportsEachMismatchOnce)
{
    std::mt19937_64 random(4101);
    for (int trial = 0; trial < 20000; ++trial) {
        const int bits = model::boundaryWeightedWidth(random);
        const bool isSigned = random() % 2 == 0;
        const int exp = static_cast<int>(random() % 41) - 20;
        const mpz_class ma = model::randomMantissa(random, bits, isSigned);
        const Fixed::fixed a = withMantissa(bits, exp, isSigned, ma);
        Fixed::fixed b = withMantissa(bits, exp, isSigned, model::randomMantissa(random, bits, isSigned));
        // One operand in four differs in exactly one field of its format.
        const int mismatch = random() % 4 == 0 ? static_cast<int>(random() % 3) + 1 : 0;
        if (mismatch == 1)
            b.bits = bits == 160 ? 159 : bits + 1;
        else if (mismatch == 2)
            b.exp += 4;
        else if (mismatch == 3)
            b.sign = isSigned ? 0 : 1;
        SCOPED_TRACE(model::hexWords(a.val, 5) + "+ " + model::hexWords(b.val, 5) + "bits " +
                     std::to_string(bits) + " mismatch " + std::to_string(mismatch));

        const Fixed::fixed sum = Fixed::fixedadd(a, b);
        const int nw = model::wordsFor(bits);
        Fixed::fixed want = a;
        if (mismatch == 0) {
            model::writeMantissa(model::wrapInto(ma + model::readMantissa(b.val, bits, isSigned), bits,
                                                 isSigned),
                                 bits, want.val);
            expectNoReports();
        } else {
            // b's words are added where they stand, whatever its format says.
            model::writeMantissa(rawWordSum(a, b, nw), 32 * nw, want.val);
            expectReports({{fixedaddSignature, fixedaddMismatch}});
        }
        ASSERT_EQ(model::hexWords(sum.val, nw), model::hexWords(want.val, nw));
        ASSERT_EQ(sum.bits, a.bits);
        ASSERT_EQ(sum.exp, a.exp);
        ASSERT_EQ(sum.sign, a.sign);

        // Adding a value to itself doubles it, wrapping at the width.
        const Fixed::fixed twice = Fixed::fixedadd(a, a);
        model::writeMantissa(model::wrapInto(2 * ma, bits, isSigned), bits, want.val);
        ASSERT_EQ(model::hexWords(twice.val, nw), model::hexWords(want.val, nw));
    }
}

// ---- CFixedPoint ------------------------------------------------------------

class Reformat : public ReportingTest {};

std::string words(const Fixed::fix& f)
{
    return model::hexWords(f.val, model::wordsFor(f.bits));
}

TEST_F(Reformat, RequantisesAndLeavesTheSourceAlone)
{
    const CFixedPoint source(1.7, 4, 12, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                             CFixedPoint::WRAP_SATURATE, true, CFixedPoint::MAXVALUE_2N_MINUS_1);
    const Fixed::fix before = source.GetValue();
    CFixedPoint nearest(source, 8, 4, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                        CFixedPoint::WRAP_SATURATE);
    const Fixed::fix record = nearest.GetValue();
    EXPECT_EQ(record.bits, 12);
    EXPECT_EQ(record.exp, -4);
    EXPECT_EQ(record.sign, 1);
    EXPECT_EQ(static_cast<uint32_t>(record.val[0]), 27u << 20);
    EXPECT_EQ(static_cast<double>(nearest), 1.6875);
    EXPECT_EQ(words(source.GetValue()), words(before));

    CFixedPoint same(source, 4, 12, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR,
                     CFixedPoint::WRAP_AROUND);
    EXPECT_EQ(words(same.GetValue()), words(before));
    expectNoReports();
}

TEST_F(Reformat, ReportsThroughFixedformatAndStillBuilds)
{
    const CFixedPoint source(-1.5, 8, 8, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR,
                             CFixedPoint::WRAP_SATURATE, false, CFixedPoint::MAXVALUE_2N_MINUS_1);
    // Read as unsigned, -1.5 is 254.5: too large for 4 unsigned integer bits.
    CFixedPoint unsignedView(source, 4, 0, CFixedPoint::SIGN_UNSIGNED, static_cast<CFixedPoint::ROUND>(3),
                             CFixedPoint::WRAP_SATURATE);
    expectReports({{"Fixed::fixed Fixed::fixedformat(Fixed::fixed, int, int, int, int, int)",
                    "C error: Illegal value for 'fixedformat' (Rund)."}});
    EXPECT_EQ(static_cast<double>(unsignedView), 15.0);

    // A report that throws propagates; no object and no record remain.
    throwOnReports(1);
    EXPECT_THROW(CFixedPoint(source, 100, 100, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR,
                             CFixedPoint::WRAP_SATURATE),
                 ReportFailure);
    expectReports({{"Fixed::fixed Fixed::fixedformat(Fixed::fixed, int, int, int, int, int)",
                    "C error: Too many bits used (fixedformat)."}});
}

class Accumulate : public ReportingTest {};

TEST_F(Accumulate, AddsInPlaceKeepingTheFormat)
{
    CFixedPoint a(2.25, 8, 4, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR, CFixedPoint::WRAP_SATURATE,
                  false, CFixedPoint::MAXVALUE_2N_MINUS_1);
    const CFixedPoint b(-0.5, 8, 4, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR,
                        CFixedPoint::WRAP_SATURATE, false, CFixedPoint::MAXVALUE_2N_MINUS_1);
    const Fixed::fix bBefore = b.GetValue();
    EXPECT_EQ(&(a += b), &a);
    EXPECT_EQ(static_cast<double>(a), 1.75);
    EXPECT_EQ(words(b.GetValue()), words(bBefore));
    a += a;
    EXPECT_EQ(static_cast<double>(a), 3.5);
    expectNoReports();

    // A different width: reported once, the raw words are added, a keeps its
    // format.
    const CFixedPoint wide(1.0, 8, 8, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR,
                           CFixedPoint::WRAP_SATURATE, false, CFixedPoint::MAXVALUE_2N_MINUS_1);
    const Fixed::fix aBefore = a.GetValue();
    a += wide;
    expectReports({{fixedaddSignature, fixedaddMismatch}});
    const Fixed::fix after = a.GetValue();
    EXPECT_EQ(after.bits, 12);
    EXPECT_EQ(after.exp, -4);
    EXPECT_EQ(static_cast<uint32_t>(after.val[0]),
              static_cast<uint32_t>(aBefore.val[0]) + static_cast<uint32_t>(wide.GetValue().val[0]));
}

}  // namespace
