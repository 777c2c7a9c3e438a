// float2fix and double2fixed on every double k/2^j (|k| < 2^12, j 0 to 12)
// and its neighbouring doubles, into every width 1 to 16 and six wide ones,
// in every mode; and
// on the doubles around each saturation bound of the widths where words and
// double precision end (31-33, 53, 54, 63-65, 160), also into the neighbouring
// widths and into one bit. Expected words from GMP;
// wrap-around above 53 bits follows the library's documented double steps,
// worked out exactly with each step rounded as a double.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <vector>

#include "exact_model.h"
#include "guarded_words.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

constexpr int32_t junk = 0x77777777;  // destination words before the call: every one must be written

struct Expected {
    int32_t words[5];
    int saturated;
};

// The words and flag the contract gives for a double with exact floor or
// half-up rounding `rounded`.
Expected expectedFor(const mpz_class& rounded, int bits, int sign, int wrap)
{
    Expected e{{0, 0, 0, 0, 0}, 0};
    if (wrap != 0) {
        model::writeMantissa(bits > 53 ? model::wrapByDoubleSteps(rounded, bits) : rounded, bits, e.words);
        return e;
    }
    const mpz_class bounded = model::saturateInto(rounded, bits, sign != 0);
    e.saturated = bounded != rounded ? 1 : 0;
    model::writeMantissa(bounded, bits, e.words);
    return e;
}

// Converts value into bits bits by float2fix and by double2fixed (value
// scaled by 2^-fracbits first, an exact scaling for these values) and
// compares both with `want`.
::testing::AssertionResult convertsAs(double value, int bits, int fracbits, int mode, const Expected& want)
{
    const int sign = mode & 1, round = (mode >> 1) & 1, wrap = mode >> 2;
    const int nw = model::wordsFor(bits);
    GuardedWords words(nw, junk);
    const int flag = Fixed::float2fix(value, bits, words.data(), sign, round, wrap);
    const double scaled = std::ldexp(value, -fracbits);
    const Fixed::Quantised flagged = Fixed::double2fixedWithFlag(scaled, bits - fracbits, fracbits, sign, round, wrap);
    const Fixed::fixed record = Fixed::double2fixed(scaled, bits - fracbits, fracbits, sign, round, wrap);
    Fixed::fixed wantRecord{bits, -fracbits, sign, {0, 0, 0, 0, 0}};
    std::memcpy(wantRecord.val, want.words, sizeof want.words);
    if (flag == want.saturated && std::memcmp(words.data(), want.words, nw * sizeof(int32_t)) == 0 &&
        words.guardsIntact() && flagged.saturated == want.saturated &&
        std::memcmp(&flagged.value, &wantRecord, sizeof wantRecord) == 0 &&
        std::memcmp(&record, &wantRecord, sizeof wantRecord) == 0)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << std::hexfloat << value << std::defaultfloat << " into " << bits << " bits (fracbits " << fracbits
           << "), sign " << sign << " round " << round << " wrap " << wrap << "\n  model        "
           << model::hexWords(want.words, nw) << "saturated " << want.saturated << "\n  float2fix    "
           << words.frameHex() << "flag " << flag << "\n  double2fixed " << model::hexWords(record.val, 5) << "bits "
           << record.bits << " exp " << record.exp << "\n  with flag    " << model::hexWords(flagged.value.val, 5)
           << "flag " << flagged.saturated;
}

// Every width to 16, then wide ones where words and double precision end:
// small and fractional values spread and sign-extended over several words,
// wrapped in double steps above 53 bits.
constexpr int gridWidths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 33, 54, 64, 65, 100, 160};
constexpr int gridWidthCount = sizeof gridWidths / sizeof gridWidths[0];
constexpr int gridLimit = 4097;  // |floor or half-up rounding| of every grid double and neighbour

// Expected results for every rounded integer of the grid, width (by its
// position in gridWidths) and mode, computed once.
class GridTable {
public:
    GridTable() : m_entries(static_cast<size_t>(2 * gridLimit + 1) * gridWidthCount * 4)
    {
        for (long r = -gridLimit; r <= gridLimit; ++r)
            for (int w = 0; w < gridWidthCount; ++w)
                for (int sw = 0; sw < 4; ++sw)
                    m_entries[index(r, w, sw & 1, sw >> 1)] = expectedFor(mpz_class(r), gridWidths[w], sw & 1, sw >> 1);
    }
    const Expected& at(long rounded, int w, int sign, int wrap) const { return m_entries[index(rounded, w, sign, wrap)]; }

private:
    static size_t index(long r, int w, int sign, int wrap)
    {
        return ((static_cast<size_t>(r + gridLimit) * gridWidthCount + static_cast<size_t>(w)) * 2 +
                static_cast<size_t>(sign)) * 2 + static_cast<size_t>(wrap);
    }
    std::vector<Expected> m_entries;
};

TEST(ExhaustiveDouble, EveryGridDoubleAndItsNeighboursIntoSmallAndWideWidthsInEveryMode)
{
    clearRecordedReports();
    const GridTable table;
    const double inf = std::numeric_limits<double>::infinity();
    for (int j = 0; j <= 12; ++j)
    for (int k = -4095; k <= 4095; ++k) {
        if (j > 0 && k % 2 == 0)
            continue;  // the same double with a smaller j
        const double grid = std::ldexp(k, -j);
        for (double value : {grid, std::nextafter(grid, -inf), std::nextafter(grid, inf)}) {
            const long rounded[2] = {model::roundDouble(value, false).get_si(), model::roundDouble(value, true).get_si()};
            // Subnormal neighbours of zero are scaled up only, so the scaling stays exact.
            const bool tiny = std::fabs(value) < 0x1p-1000;
            for (int w = 0; w < gridWidthCount; ++w) {
                const int bits = gridWidths[w], fracbits = tiny ? -((bits + j) % 5) : (bits + j) % 9 - 4;
                for (int mode = 0; mode < 8; ++mode) {
                    const Expected& want = table.at(rounded[(mode >> 1) & 1], w, mode & 1, mode >> 2);
                    ASSERT_TRUE(convertsAs(value, bits, fracbits, mode, want));
                }
            }
        }
    }
    EXPECT_TRUE(recordedReports().empty());
}

// Every double within a few units (in halves, and one and two doubles either
// side of each) of the signed and unsigned bounds.
std::set<double> doublesAroundBounds(int bits)
{
    const mpz_class bounds[] = {model::minimum(bits, true), model::maximum(bits, true), model::minimum(bits, false),
                                model::maximum(bits, false)};
    std::set<double> values;
    const double inf = std::numeric_limits<double>::infinity();
    for (const mpz_class& bound : bounds)
        for (int halves = -8; halves <= 8; ++halves) {
            mpq_class offset(halves, 2);
            offset.canonicalize();
            const double centre = model::nearestDouble(mpq_class(bound) + offset);
            double below = centre, above = centre;
            values.insert(centre);
            for (int step = 0; step < 2; ++step) {
                values.insert(below = std::nextafter(below, -inf));
                values.insert(above = std::nextafter(above, inf));
            }
        }
    return values;
}

TEST(ExhaustiveDouble, DoublesAroundTheSaturationBoundsOfWordAndPrecisionEdges)
{
    clearRecordedReports();
    int divergent = 0;
    const int edges[] = {31, 32, 33, 53, 54, 63, 64, 65, 160};
    const int count = sizeof edges / sizeof edges[0];
    for (int e = 0; e < count; ++e) {
        for (double value : doublesAroundBounds(edges[e])) {
            const mpz_class rounded[2] = {model::roundDouble(value, false), model::roundDouble(value, true)};
            // Into its own width and the neighbouring ones of the list, so
            // that each bound is also met just inside and just outside it,
            // and into one bit, where wide values take the double walk.
            for (int bits : {edges[e], edges[e > 0 ? e - 1 : e], edges[e + 1 < count ? e + 1 : e], 1})
            for (int mode = 0; mode < 8; ++mode) {
                const int round = (mode >> 1) & 1, wrap = mode >> 2;
                const Expected want = expectedFor(rounded[round], bits, mode & 1, wrap);
                if (wrap != 0 && bits > 53) {
                    int32_t exact[5] = {0, 0, 0, 0, 0};
                    model::writeMantissa(rounded[round], bits, exact);
                    divergent += std::memcmp(exact, want.words, sizeof exact) != 0 ? 1 : 0;
                }
                for (int fracbits : {0, -5, 7}) {
                    if (fracbits > 0 && std::fabs(value) < 0x1p-1000)
                        continue;  // subnormals near zero are scaled up only
                    ASSERT_TRUE(convertsAs(value, bits, fracbits, mode, want));
                }
            }
        }
    }
    EXPECT_GT(divergent, 0) << "no case where the documented double steps leave the residue class";
    EXPECT_TRUE(recordedReports().empty());
}

}  // namespace
