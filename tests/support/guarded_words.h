// A destination of up to five words framed by two sentinel words on each
// side, so that any write outside it shows.
#ifndef FIXEDPOINT_TESTS_GUARDED_WORDS_H
#define FIXEDPOINT_TESTS_GUARDED_WORDS_H

#include <array>
#include <cstdint>

#include "exact_model.h"

class GuardedWords {
public:
    /// n words inside, all `fill`.
    explicit GuardedWords(int n, int32_t fill = 0) : m_n(n)
    {
        m_frame.fill(model::sentinel);
        for (int i = 0; i < n; ++i)
            m_frame[guard + i] = fill;
    }
    int32_t* data() { return m_frame.data() + guard; }
    const int32_t* data() const { return m_frame.data() + guard; }
    bool guardsIntact() const
    {
        for (int i = 0; i < guard; ++i)
            if (m_frame[i] != model::sentinel || m_frame[guard + m_n + i] != model::sentinel)
                return false;
        return true;
    }
    /// Hex of the whole frame, for failure messages.
    std::string frameHex() const { return model::hexWords(m_frame.data(), guard * 2 + m_n); }

private:
    static constexpr int guard = 2;
    std::array<int32_t, 5 + 2 * guard> m_frame;
    int m_n;
};

#endif  // FIXEDPOINT_TESTS_GUARDED_WORDS_H
