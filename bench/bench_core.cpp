// Conversions from and to doubles, addition and subtraction, and the class
// operations built on them: this library, SystemC's sc_fix (when built in)
// and a plain int32 quantiser for formats up to 32 bits, on identical inputs.
#include <cstdint>

#include "FixedPoint.h"
#include "bench_support.h"
#include "lib_fixpoint.h"

#ifdef FIXEDPOINT_BENCH_SYSTEMC
#include "systemc_support.h"
#endif

namespace {

using bench::Format;
using bench::tableMask;

// ---- This library ----------------------------------------------------------

void registerOurs(int width)
{
    const Format f = bench::formatFor(width);
    bench::add("double2fixed", "ours", width, [f](benchmark::State& state) {
        const auto values = bench::valuesFor(f, 1);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(
                Fixed::double2fixed(values[i], f.intbits, f.fracbits, 1, 1, 0));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("float2fix", "ours", width, [f](benchmark::State& state) {
        // float2fix takes the value already counted in units of the LSB.
        auto units = bench::valuesFor(f, 1);
        for (double& value : units)
            value = std::ldexp(value, f.fracbits);
        int32_t words[5] = {};
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(Fixed::float2fix(units[i], f.bits, words, 1, 1, 0));
            benchmark::DoNotOptimize(words);
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixed2double", "ours", width, [f](benchmark::State& state) {
        const auto records = bench::recordsFor(f, 1);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(Fixed::fixed2double(records[i]));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixedadd", "ours", width, [f](benchmark::State& state) {
        const auto a = bench::recordsFor(f, 1);
        const auto b = bench::recordsFor(f, 2);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(Fixed::fixedadd(a[i], b[i]));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixedsub", "ours", width, [f](benchmark::State& state) {
        const auto a = bench::recordsFor(f, 1);
        const auto b = bench::recordsFor(f, 2);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(Fixed::fixedsub(a[i], b[i]));
            i = (i + 1) & tableMask;
        }
    });

    // Class cases stay inside the range so that no report is composed.
    bench::add("class double+back", "ours", width, [f](benchmark::State& state) {
        auto values = bench::valuesFor(f, 1);
        for (double& value : values)
            value *= 0.9;
        std::size_t i = 0;
        for (auto _ : state) {
            CFixedPoint x(values[i], f.intbits, f.fracbits, CFixedPoint::SIGN_SIGNED,
                          CFixedPoint::ROUND_NEAREST, CFixedPoint::WRAP_SATURATE, true,
                          CFixedPoint::MAXVALUE_2N_MINUS_1);
            benchmark::DoNotOptimize(static_cast<double>(x));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("class +=", "ours", width, [f](benchmark::State& state) {
        std::vector<CFixedPoint> terms;
        for (const Fixed::fixed& record : bench::recordsFor(f, 2))
            terms.emplace_back(record);
        CFixedPoint sum(0.0, f.intbits, f.fracbits, CFixedPoint::SIGN_SIGNED,
                        CFixedPoint::ROUND_FLOOR, CFixedPoint::WRAP_AROUND, false,
                        CFixedPoint::MAXVALUE_2N_MINUS_1);
        std::size_t i = 0;
        for (auto _ : state) {
            sum += terms[i];
            benchmark::ClobberMemory();
            i = (i + 1) & tableMask;
        }
        benchmark::DoNotOptimize(static_cast<double>(sum));
    });
    if (width <= 64) {
        bench::add("class GetValueAs_uint64_t", "ours", width, [f](benchmark::State& state) {
            std::vector<CFixedPoint> objects;
            for (const Fixed::fixed& record : bench::recordsFor(f, 1))
                objects.emplace_back(record);
            std::size_t i = 0;
            for (auto _ : state) {
                benchmark::DoNotOptimize(objects[i].GetValueAs_uint64_t());
                i = (i + 1) & tableMask;
            }
        });
    }
}

// ---- Plain int32 quantiser (formats up to 32 bits) -------------------------

struct NativeFormat {
    double scale;
    double lowest;
    double highest;
};

NativeFormat nativeFormatFor(const Format& f)
{
    return {std::ldexp(1.0, f.fracbits), -std::ldexp(1.0, f.bits - 1),
            std::ldexp(1.0, f.bits - 1) - 1.0};
}

// Multiply, floor (half up), clamp: the quantiser a firmware would write by
// hand for one fixed format.
inline int32_t nativeQuantise(double units, const NativeFormat& n)
{
    double x = std::floor(units + 0.5);
    x = x < n.lowest ? n.lowest : (x > n.highest ? n.highest : x);
    return static_cast<int32_t>(x);
}

std::vector<int32_t> nativeValuesFor(const Format& f, unsigned seed)
{
    const NativeFormat n = nativeFormatFor(f);
    std::vector<int32_t> out;
    for (double value : bench::valuesFor(f, seed))
        out.push_back(nativeQuantise(value * n.scale, n));
    return out;
}

void registerNative(int width)
{
    const Format f = bench::formatFor(width);
    bench::add("double2fixed", "native", width, [f](benchmark::State& state) {
        const auto values = bench::valuesFor(f, 1);
        const NativeFormat n = nativeFormatFor(f);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(nativeQuantise(values[i] * n.scale, n));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("float2fix", "native", width, [f](benchmark::State& state) {
        auto units = bench::valuesFor(f, 1);
        const NativeFormat n = nativeFormatFor(f);
        for (double& value : units)
            value *= n.scale;
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(nativeQuantise(units[i], n));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixed2double", "native", width, [f](benchmark::State& state) {
        const auto values = nativeValuesFor(f, 1);
        const double step = std::ldexp(1.0, -f.fracbits);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(static_cast<double>(values[i]) * step);
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixedadd", "native", width, [f](benchmark::State& state) {
        const auto a = nativeValuesFor(f, 1);
        const auto b = nativeValuesFor(f, 2);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(static_cast<uint32_t>(a[i]) + static_cast<uint32_t>(b[i]));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixedsub", "native", width, [f](benchmark::State& state) {
        const auto a = nativeValuesFor(f, 1);
        const auto b = nativeValuesFor(f, 2);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(static_cast<uint32_t>(a[i]) - static_cast<uint32_t>(b[i]));
            i = (i + 1) & tableMask;
        }
    });
}

// ---- SystemC sc_fix --------------------------------------------------------

#ifdef FIXEDPOINT_BENCH_SYSTEMC
void registerSystemC(int width)
{
    using namespace sc_dt;
    const Format f = bench::formatFor(width);
    bench::add("double2fixed", "systemc", width, [f](benchmark::State& state) {
        const auto values = bench::valuesFor(f, 1);
        std::size_t i = 0;
        for (auto _ : state) {
            sc_fix x(values[i], f.bits, f.intbits, SC_RND, SC_SAT);
            benchmark::DoNotOptimize(x);
            i = (i + 1) & tableMask;
        }
    });
    bench::add("float2fix", "systemc", width, [f](benchmark::State& state) {
        const auto values = bench::valuesFor(f, 1);
        sc_fix x(f.bits, f.intbits, SC_RND, SC_SAT);
        std::size_t i = 0;
        for (auto _ : state) {
            x = values[i];
            benchmark::DoNotOptimize(x);
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixed2double", "systemc", width, [f](benchmark::State& state) {
        const auto values = bench::scFixesFor(f, 1);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(values[i].to_double());
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixedadd", "systemc", width, [f](benchmark::State& state) {
        const auto a = bench::scFixesFor(f, 1);
        const auto b = bench::scFixesFor(f, 2);
        sc_fix sum(f.bits, f.intbits, SC_TRN, SC_WRAP);
        std::size_t i = 0;
        for (auto _ : state) {
            sum = a[i] + b[i];
            benchmark::DoNotOptimize(sum);
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixedsub", "systemc", width, [f](benchmark::State& state) {
        const auto a = bench::scFixesFor(f, 1);
        const auto b = bench::scFixesFor(f, 2);
        sc_fix difference(f.bits, f.intbits, SC_TRN, SC_WRAP);
        std::size_t i = 0;
        for (auto _ : state) {
            difference = a[i] - b[i];
            benchmark::DoNotOptimize(difference);
            i = (i + 1) & tableMask;
        }
    });
    bench::add("class double+back", "systemc", width, [f](benchmark::State& state) {
        auto values = bench::valuesFor(f, 1);
        for (double& value : values)
            value *= 0.9;
        std::size_t i = 0;
        for (auto _ : state) {
            sc_fix x(values[i], f.bits, f.intbits, SC_RND, SC_SAT);
            benchmark::DoNotOptimize(x.to_double());
            i = (i + 1) & tableMask;
        }
    });
    bench::add("class +=", "systemc", width, [f](benchmark::State& state) {
        const auto terms = bench::scFixesFor(f, 2);
        sc_fix sum(0.0, f.bits, f.intbits, SC_TRN, SC_WRAP);
        std::size_t i = 0;
        for (auto _ : state) {
            sum += terms[i];
            benchmark::ClobberMemory();
            i = (i + 1) & tableMask;
        }
        benchmark::DoNotOptimize(sum.to_double());
    });
    if (width <= 64) {
        bench::add("class GetValueAs_uint64_t", "systemc", width, [f](benchmark::State& state) {
            const auto values = bench::scFixesFor(f, 1);
            std::size_t i = 0;
            for (auto _ : state) {
                benchmark::DoNotOptimize(values[i].range(f.bits - 1, 0).to_uint64());
                i = (i + 1) & tableMask;
            }
        });
    }
}
#endif

const bench::Registration registration([] {
    for (int width : bench::widths) {
        registerOurs(width);
#ifdef FIXEDPOINT_BENCH_SYSTEMC
        registerSystemC(width);
#endif
        if (width <= 32)
            registerNative(width);
    }
});

}  // namespace
