// Code page 850 to Unicode and back: one table of 256 rows gives both directions. Control bytes stand for
// themselves here; what the screen draws for them is decided in term/tekenen.cpp.
#include "term/natl.h"
#include <algorithm>
#include <array>

namespace zg {
namespace {

constexpr std::array<uint16_t, 256> UNICODE = {
    // clang-format off
    0x0000, 0x0001, 0x0002, 0x0003, 0x0004, 0x0005, 0x0006, 0x0007, // 00
    0x0008, 0x0009, 0x000A, 0x000B, 0x000C, 0x000D, 0x000E, 0x000F, // 08
    0x0010, 0x0011, 0x0012, 0x0013, 0x0014, 0x0015, 0x0016, 0x0017, // 10
    0x0018, 0x0019, 0x001A, 0x001B, 0x001C, 0x001D, 0x001E, 0x001F, // 18
    0x0020, 0x0021, 0x0022, 0x0023, 0x0024, 0x0025, 0x0026, 0x0027, // 20
    0x0028, 0x0029, 0x002A, 0x002B, 0x002C, 0x002D, 0x002E, 0x002F, // 28
    0x0030, 0x0031, 0x0032, 0x0033, 0x0034, 0x0035, 0x0036, 0x0037, // 30
    0x0038, 0x0039, 0x003A, 0x003B, 0x003C, 0x003D, 0x003E, 0x003F, // 38
    0x0040, 0x0041, 0x0042, 0x0043, 0x0044, 0x0045, 0x0046, 0x0047, // 40
    0x0048, 0x0049, 0x004A, 0x004B, 0x004C, 0x004D, 0x004E, 0x004F, // 48
    0x0050, 0x0051, 0x0052, 0x0053, 0x0054, 0x0055, 0x0056, 0x0057, // 50
    0x0058, 0x0059, 0x005A, 0x005B, 0x005C, 0x005D, 0x005E, 0x005F, // 58
    0x0060, 0x0061, 0x0062, 0x0063, 0x0064, 0x0065, 0x0066, 0x0067, // 60
    0x0068, 0x0069, 0x006A, 0x006B, 0x006C, 0x006D, 0x006E, 0x006F, // 68
    0x0070, 0x0071, 0x0072, 0x0073, 0x0074, 0x0075, 0x0076, 0x0077, // 70
    0x0078, 0x0079, 0x007A, 0x007B, 0x007C, 0x007D, 0x007E, 0x007F, // 78
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, // 80
    0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE, 0x00EC, 0x00C4, 0x00C5, // 88
    0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9, // 90
    0x00FF, 0x00D6, 0x00DC, 0x00F8, 0x00A3, 0x00D8, 0x00D7, 0x0192, // 98
    0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA, 0x00BA, // A0
    0x00BF, 0x00AE, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB, // A8
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x00C1, 0x00C2, 0x00C0, // B0
    0x00A9, 0x2563, 0x2551, 0x2557, 0x255D, 0x00A2, 0x00A5, 0x2510, // B8
    0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x00E3, 0x00C3, // C0
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x00A4, // C8
    0x00F0, 0x00D0, 0x00CA, 0x00CB, 0x00C8, 0x0131, 0x00CD, 0x00CE, // D0
    0x00CF, 0x2518, 0x250C, 0x2588, 0x2584, 0x00A6, 0x00CC, 0x2580, // D8
    0x00D3, 0x00DF, 0x00D4, 0x00D2, 0x00F5, 0x00D5, 0x00B5, 0x00FE, // E0
    0x00DE, 0x00DA, 0x00DB, 0x00D9, 0x00FD, 0x00DD, 0x00AF, 0x00B4, // E8
    0x00AD, 0x00B1, 0x2017, 0x00BE, 0x00B6, 0x00A7, 0x00F7, 0x00B8, // F0
    0x00B0, 0x00A8, 0x00B7, 0x00B9, 0x00B3, 0x00B2, 0x25A0, 0x00A0, // F8
    // clang-format on
};

struct Paar {
    char32_t u;
    uint8_t c;
};

// The table turned around, sorted by character.
constexpr std::array<Paar, 256> OMGEKEERD = [] {
    std::array<Paar, 256> uit{};
    for (size_t i = 0; i < 256; i++)
        uit[i] = {UNICODE[i], static_cast<uint8_t>(i)};
    std::sort(uit.begin(), uit.end(), [](const Paar& a, const Paar& b) { return a.u < b.u; });
    return uit;
}();
static_assert(
    [] {
        for (size_t i = 1; i < 256; i++)
            if (OMGEKEERD[i - 1].u == OMGEKEERD[i].u)
                return false;
        return true;
    }(),
    "both directions need 256 different characters");

// What other programs write for a character that is here; only where the reader sees the same.
constexpr Paar VERVANGEN[] = {
    {0x2002, ' '},  {0x2003, ' '},  {0x2009, ' '},  {0x202F, ' '},  {0x2010, '-'},
    {0x2011, '-'},  {0x2012, '-'},  {0x2013, '-'},  {0x2014, '-'},  {0x2212, '-'},
    {0x2018, '\''}, {0x2019, '\''}, {0x201A, '\''}, {0x201B, '\''}, {0x2032, '\''},
    {0x201C, '"'},  {0x201D, '"'},  {0x201E, '"'},  {0x201F, '"'},  {0x2033, '"'},
    {0x2044, '/'},  {0x2215, '/'},  {0x2219, 0xFA}, {0x03BC, 0xE6}, {0x03B2, 0xE1},
};

// The upper half for a terminal that has only ASCII: the letter without its accent, the nearest sign.
constexpr char BASIS[] = "CueaaaaceeeiiiAA"
                         "EaAooouuyOUoLOxf"
                         "aiounNao?R-//!<>"
                         "###|+AAAC+|++cY+"
                         "++++-+aA+++++=+*"
                         "dDEEEiIII++##|I#"
                         "OsOOoOutTUUUyY-'"
                         "-+_/PS:,o\".132# ";
// The letter of the line-drawing set for what that set has, a blank for the rest; double lines are single there.
constexpr char LIJN[] = "                                                aaaxu    uxkj  k"
                        "mvwtqn  mlvwtqn          jl00  0                        f     0 ";
static_assert(sizeof BASIS == 129 && sizeof LIJN == 129);

void utf8_bij(std::string& uit, char32_t u) {
    auto bij = [&](char32_t b) { uit += static_cast<char>(static_cast<uint8_t>(b)); };
    if (u < 0x80) {
        bij(u);
    } else if (u < 0x800) {
        bij(0xC0 | u >> 6);
        bij(0x80 | (u & 63));
    } else {
        bij(0xE0 | u >> 12);
        bij(0x80 | (u >> 6 & 63));
        bij(0x80 | (u & 63));
    }
}

} // namespace

char32_t CP850UIT(uint8_t c) {
    return UNICODE[c];
}

int CP850EXACT(char32_t u) {
    auto p = std::lower_bound(OMGEKEERD.begin(), OMGEKEERD.end(), u,
                              [](const Paar& a, char32_t b) { return a.u < b; });
    return p != OMGEKEERD.end() && p->u == u ? p->c : -1;
}

int CP850IN(char32_t u) {
    int c = CP850EXACT(u);
    if (c >= 0)
        return c;
    for (const Paar& p : VERVANGEN)
        if (p.u == u)
            return p.c;
    return -1;
}

char CP850BASIS(uint8_t c) {
    return c < 128 ? static_cast<char>(c) : BASIS[c - 128];
}

char CP850LIJN(uint8_t c) {
    return c < 128 || LIJN[c - 128] == ' ' ? '\0' : LIJN[c - 128];
}

std::string CP850UTF8(std::string_view tekst) {
    std::string uit;
    uit.reserve(tekst.size() + tekst.size() / 4);
    for (char c : tekst)
        utf8_bij(uit, CP850UIT(static_cast<uint8_t>(c)));
    return uit;
}

int UTF8TEKEN(const uint8_t* s, int n, char32_t* u) {
    uint8_t b = s[0];
    int lengte = b < 0x80                ? 1
                 : b >= 0xC2 && b < 0xE0 ? 2
                 : b >= 0xE0 && b < 0xF0 ? 3
                 : b >= 0xF0 && b < 0xF5 ? 4
                                         : 0;
    if (lengte == 0)
        return -1;
    char32_t uit = lengte == 1 ? b : b & (0x7Fu >> lengte);
    for (int i = 1; i < lengte; i++) {
        if (i >= n)
            return 0;
        if ((s[i] & 0xC0) != 0x80)
            return -1;
        uit = uit << 6 | (s[i] & 63u);
    }
    if ((lengte == 3 && uit < 0x800) || (lengte == 4 && uit < 0x10000) || uit > 0x10FFFF ||
        (uit >= 0xD800 && uit < 0xE000))
        return -1;
    *u = uit;
    return lengte;
}

bool CP850NAAR(std::string_view utf8, std::string* uit) {
    bool goed = true;
    uit->clear();
    const uint8_t* s = reinterpret_cast<const uint8_t*>(utf8.data());
    for (size_t i = 0; i < utf8.size();) {
        char32_t u = 0;
        int n = UTF8TEKEN(s + i, static_cast<int>(std::min<size_t>(4, utf8.size() - i)), &u);
        int c = n > 0 ? CP850IN(u) : -1;
        goed = goed && c >= 0;
        *uit += c >= 0 ? static_cast<char>(static_cast<uint8_t>(c)) : '?';
        i += n > 0 ? static_cast<size_t>(n) : 1;
    }
    return goed;
}

} // namespace zg
