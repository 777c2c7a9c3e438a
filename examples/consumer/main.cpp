// Quantises 1.7 into a signed format with 4 integer and 12 fractional bits,
// and 20.0, which does not fit and is reported through the host's
// _KV_ProcessErrorString before it saturates. A format wider than a record
// (161 bits) is reported by the library's core and the value reads as zero.
#include <FixedPoint.h>

#include <cinttypes>
#include <cstdio>

static void print(const char* label, const CFixedPoint& value)
{
    CFixedPoint copy(value);
    std::printf("%s = %.15g (raw 0x%04" PRIX64 ")\n", label, static_cast<double>(copy),
                copy.GetValueAs_uint64_t());
}

int main()
{
    const CFixedPoint fits(1.7, 4, 12, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                           CFixedPoint::WRAP_SATURATE, true, CFixedPoint::MAXVALUE_2N_MINUS_1);
    const CFixedPoint limited(20.0, 4, 12, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                              CFixedPoint::WRAP_SATURATE, true, CFixedPoint::MAXVALUE_2N_MINUS_1);
    CFixedPoint tooWide(1.0, 100, 61, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                        CFixedPoint::WRAP_SATURATE, false, CFixedPoint::MAXVALUE_2N_MINUS_1);
    print("1.7", fits);
    print("20.0", limited);
    std::printf("1.0 in 161 bits = %.15g\n", static_cast<double>(tooWide));
    return 0;
}
