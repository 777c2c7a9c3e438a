// Many threads at once: each builds, converts, accumulates and reads its own
// objects, with diagnostics raised (and some thrown) on every thread, and
// must get exactly the records and reports of a single-threaded run. Built
// as its own executable so that a ThreadSanitizer build can run it alone.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "FixedPoint.h"
#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

struct Case {
    double value;
    int intbits, fracbits, sign, round, wrap;
    int toInt, toFrac, toSign;
    bool warn, throwing;
};

struct Outcome {
    Fixed::fixed built, reformatted, accumulated;
    uint64_t raw;
    std::vector<std::string> reports;
    bool threw;
};

std::vector<Case> makeCases()
{
    std::mt19937_64 random(7);
    std::vector<Case> cases;
    for (int i = 0; i < 400; ++i) {
        Case c;
        c.value = std::ldexp(static_cast<double>(static_cast<int64_t>(random())),
                             static_cast<int>(random() % 120) - 90);
        c.intbits = static_cast<int>(random() % 70) + 1;
        c.fracbits = static_cast<int>(random() % 60);
        // One case in eight has an invalid flag, and one in twenty a width
        // above 160: both are reported.
        c.sign = random() % 8 == 0 ? 3 : static_cast<int>(random() % 2);
        c.round = static_cast<int>(random() % 2);
        c.wrap = static_cast<int>(random() % 2);
        if (random() % 20 == 0)
            c.fracbits = 150;
        c.toInt = static_cast<int>(random() % 40) + 1;
        c.toFrac = static_cast<int>(random() % 40);
        c.toSign = static_cast<int>(random() % 2);
        c.warn = random() % 2 == 0;
        c.throwing = random() % 10 == 0;
        cases.push_back(c);
    }
    return cases;
}

Outcome run(const Case& c)
{
    clearRecordedReports();
    Outcome o{};
    if (c.throwing) {
        // The first report throws: the object under construction is
        // released, nothing else happens.
        throwOnReports(1);
        try {
            CFixedPoint x(c.value, c.intbits, c.fracbits, static_cast<CFixedPoint::SIGN>(c.sign),
                          static_cast<CFixedPoint::ROUND>(c.round), static_cast<CFixedPoint::WRAP>(c.wrap),
                          c.warn, CFixedPoint::MAXVALUE_2N_MINUS_1);
            o.built = x.GetValue();
        } catch (const ReportFailure&) {
            o.threw = true;
        }
        throwOnReports(0);
    }
    CFixedPoint x(c.value, c.intbits, c.fracbits, static_cast<CFixedPoint::SIGN>(c.sign),
                  static_cast<CFixedPoint::ROUND>(c.round), static_cast<CFixedPoint::WRAP>(c.wrap),
                  c.warn, CFixedPoint::MAXVALUE_2N_MINUS_1);
    o.built = x.GetValue();
    const CFixedPoint y(x, c.toInt, c.toFrac, static_cast<CFixedPoint::SIGN>(c.toSign),
                        CFixedPoint::ROUND_NEAREST, CFixedPoint::WRAP_AROUND);
    o.reformatted = y.GetValue();
    CFixedPoint sum(y);
    for (int i = 0; i < 5; ++i)
        sum += y;
    sum += x;  // usually a format mismatch: reported
    o.accumulated = sum.GetValue();
    o.raw = x.GetValueAs_uint64_t();  // above 64 bits: reported
    for (const RecordedReport& r : recordedReports())
        o.reports.push_back(r.function + ": " + r.message);
    clearRecordedReports();
    return o;
}

bool same(const Fixed::fixed& a, const Fixed::fixed& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

bool same(const Outcome& a, const Outcome& b)
{
    return same(a.built, b.built) && same(a.reformatted, b.reformatted) &&
           same(a.accumulated, b.accumulated) && a.raw == b.raw && a.reports == b.reports &&
           a.threw == b.threw;
}

TEST(Concurrency, ThreadsGetTheSingleThreadedResults)
{
    const std::vector<Case> cases = makeCases();
    std::vector<Outcome> expected;
    for (const Case& c : cases)
        expected.push_back(run(c));
    size_t reports = 0;
    for (const Outcome& o : expected)
        reports += o.reports.size();
    ASSERT_GT(reports, 50u) << "the cases must raise diagnostics";

    constexpr int threadCount = 4;
    std::vector<int> mismatches(threadCount, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            // Each thread walks the cases from its own starting point, so
            // different operations overlap.
            for (int round = 0; round < 3; ++round)
                for (size_t i = 0; i < cases.size(); ++i) {
                    const size_t k = (i + static_cast<size_t>(t) * 97) % cases.size();
                    if (!same(run(cases[k]), expected[k]))
                        ++mismatches[static_cast<size_t>(t)];
                }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < threadCount; ++t)
        EXPECT_EQ(mismatches[static_cast<size_t>(t)], 0) << "thread " << t;
}

}  // namespace
