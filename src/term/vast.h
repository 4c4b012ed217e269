// Fixed-width text: a char[n] in a record, NUL padded, not terminated when full. These helpers are the only
// code that knows this. Code page 850 bytes throughout.
#pragma once
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace zg {

// The text of a field: up to the first NUL or the width.
template <size_t N> std::string_view VASTUIT(const char (&veld)[N]) {
    return {veld, strnlen(veld, N)};
}

// Put a text into a field: cut at the width, NUL to the end.
template <size_t N> void VASTIN(char (&veld)[N], std::string_view tekst) {
    size_t n = tekst.size() < N ? tekst.size() : N;
    memmove(veld, tekst.data(), n);
    memset(veld + n, 0, N - n);
}

// The text without trailing blanks.
inline std::string_view VASTTRIM(std::string_view tekst) {
    while (!tekst.empty() && tekst.back() == ' ')
        tekst.remove_suffix(1);
    return tekst;
}

// Field without trailing blanks, as a NUL-ended string.
template <size_t N> std::string VASTTEKST(const char (&veld)[N]) {
    return std::string(VASTTRIM(VASTUIT(veld)));
}

// Is there nothing but NUL and blanks?
template <size_t N> bool VASTLEEG(const char (&veld)[N]) {
    return VASTTRIM(VASTUIT(veld)).empty();
}

// Same text, trailing blanks apart?
template <size_t N> bool VASTGELIJK(const char (&veld)[N], std::string_view tekst) {
    return VASTTRIM(VASTUIT(veld)) == VASTTRIM(tekst);
}

} // namespace zg
