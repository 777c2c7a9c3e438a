// Text rendering beyond the exhaustive tests: the spacing of characters by
// the step, and widths outside the record.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "lib_fixpoint.h"
#include "text_reference.h"

namespace {

using reference::Rendered;
using reference::Renderer;

TEST(TextRendering, StepSpreadsTheCharactersAndWidthsOutsideTheRecordStayInIt)
{
    const int32_t words[5] = {static_cast<int32_t>(0xFFC00000u), -1, -1, -1, -1};
    std::string buffer(9, '.');
    EXPECT_EQ(Fixed::fix2str2(words, 10, -8, &buffer[8], 4, 2, 0, 0, 0), 4);
    EXPECT_EQ(buffer, "..3...F.F");
    struct Case { Renderer fn; int bits, exp; const char* text; };
    const Case cases[] = {{Fixed::fix2str1, 0, -8, "*2^-8"}, {Fixed::fix2str1, -7, 0, ""},
                          {Fixed::fix2str2, 0, -8, "0*2^-8"}, {Fixed::fix2str2, INT_MIN, 0, "0"},
                          // Above 160 bits the bits beyond the record's words read as zero.
                          {Fixed::fix2str1, 164, 0, "00000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.bits) + " " + std::to_string(c.exp));
        const Rendered r = reference::render(c.fn, words, c.bits, c.exp, 4, 1, 0, 0);
        EXPECT_EQ(r.text, c.text);
        EXPECT_TRUE(r.written == r.queried && r.guardsIntact);
    }
}

}  // namespace
