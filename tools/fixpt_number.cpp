// Numbers of fixpt. strtod is the reading firmware engineers know from C; the
// tool keeps its magnitude overflow visible instead of refusing the text.
#include "fixpt_number.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>

bool readNumber(const std::string& text, Number* number)
{
    // strtod skips leading blanks and stops at an embedded NUL; both would
    // let text through that is not a number as a whole.
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0])) ||
        text.find('\0') != std::string::npos)
        return false;
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size())
        return false;
    number->value = value;
    number->beyondRange = errno == ERANGE && std::isinf(value);
    return true;
}
