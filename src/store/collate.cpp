// Text order: two weights per byte of code page 850. The first level folds case and accents, the second tells
// marks apart. A byte may expand to two letters, or drop out of the first level. No buffer is built: both
// texts are walked at once.
#include "store/node.h"
#include <array>

namespace zg {
namespace {

enum Klas : uint8_t { BLIJFT = 0, VALT_WEG = 1, TWEE_LETTERS = 2 }; // BLIJFT: one weight, mapped or not

struct Gewicht {
    uint8_t een, twee;
    Klas klas;
};

struct Accent {
    char letter, teken;
    const char* bytes;
};

constexpr Accent accenten[] = {
    {'A', '"', "\x84\x8E"},     {'A', '\'', "\x85\xB7"}, {'A', '*', "\x86\x8F"}, {'A', '^', "\x83\xB6"},
    {'A', '`', "\x90\xA0\xB5"}, {'A', '~', "\xC6\xC7"},  {'C', '5', "\x80\x87"}, {'E', '"', "\x89\xD3"},
    {'E', '\'', "\x8A\xD4"},    {'E', '^', "\x88\xD2"},  {'E', '`', "\x82"},     {'I', '"', "\x8B\xD8"},
    {'I', '\'', "\x8D\xDE"},    {'I', '^', "\x8C\xD7"},  {'I', '`', "\xA1\xD6"}, {'N', '~', "\xA4\xA5"},
    {'O', '"', "\x94\x99"},     {'O', '\'', "\x95\xE3"}, {'O', '/', "\x9B\x9D"}, {'O', '^', "\x93\xD0\xE2"},
    {'O', '`', "\xA2\xE0"},     {'O', '~', "\xE4\xE5"},  {'U', '"', "\x81\x9A"}, {'U', '\'', "\x97\xEB"},
    {'U', '^', "\x96\xEA"},     {'U', '`', "\xA3\xE9"},  {'Y', '"', "\x98"},     {'Y', '`', "\xEC\xED"},
};

constexpr std::array<Gewicht, 256> maak_tabel() {
    std::array<Gewicht, 256> t{};
    for (unsigned b = 0; b < 256; b++)
        t[b] = {static_cast<uint8_t>(b), 1, BLIJFT};
    t[0].twee = 0;
    t[0xFF].twee = 0xFF;
    for (unsigned b = 1; b < 0x20; b++)
        t[b] = {0, static_cast<uint8_t>(b), VALT_WEG};
    t[0x7F] = {0, 0x7F, VALT_WEG};
    for (unsigned b = 'a'; b <= 'z'; b++)
        t[b].een = static_cast<uint8_t>(b - 'a' + 'A');
    for (const Accent& a : accenten)
        for (const char* p = a.bytes; *p; p++)
            t[static_cast<uint8_t>(*p)] = {static_cast<uint8_t>(a.letter), static_cast<uint8_t>(a.teken),
                                           BLIJFT};
    // Here `twee` is the second letter of the first level; on the second level these bytes give nothing.
    t[0x91] = t[0x92] = {'A', 'E', TWEE_LETTERS};
    t[0xE1] = {'S', 'S', TWEE_LETTERS};
    return t;
}

constexpr std::array<Gewicht, 256> tabel = maak_tabel();

constexpr std::array<int16_t, 256> enkele() {
    std::array<int16_t, 256> t{};
    for (size_t b = 0; b < t.size(); b++)
        t[b] = tabel[b].klas == BLIJFT ? tabel[b].een : int16_t{-1};
    return t;
}

// The weights of one text in turn, and 0 for ever behind its end.
struct Loper {
    const uint8_t* p;
    const uint8_t* einde;
    uint8_t rest; // second letter of an expanded byte

    bool op() const { return p == einde && !rest; }

    uint8_t een() {
        if (rest) {
            uint8_t r = rest;
            rest = 0;
            return r;
        }
        while (p != einde) {
            const Gewicht& g = tabel[*p++];
            if (g.klas == VALT_WEG)
                continue;
            if (g.klas == TWEE_LETTERS)
                rest = g.twee;
            return g.een;
        }
        return 0;
    }

    uint8_t twee() {
        while (p != einde) {
            const Gewicht& g = tabel[*p++];
            if (g.klas != TWEE_LETTERS)
                return g.twee;
        }
        return 0;
    }
};

} // namespace

constinit const std::array<int16_t, 256> IXENKELGEWICHT = enkele();

int IXCOLLATEVANAF(const uint8_t* a, const uint8_t* b, int n, int vanaf) {
    const int van = vanaf + IXVERSCHIL(a + vanaf, b + vanaf, n - vanaf);
    const uint8_t *ea = a + n, *eb = b + n;
    int i = van; // what is the same in front weighs the same on both levels
    for (; i < n; i++) {
        const Gewicht &ga = tabel[a[i]], &gb = tabel[b[i]];
        if (ga.klas | gb.klas)
            break; // from here on the two no longer go in step
        if (ga.een != gb.een)
            return ga.een - gb.een;
    }
    if (van == n)
        return 0;
    Loper la{a + i, ea, 0}, lb{b + i, eb, 0};
    while (!la.op() || !lb.op())
        if (int d = la.een() - lb.een())
            return d;
    la = {a + van, ea, 0};
    lb = {b + van, eb, 0};
    while (!la.op() || !lb.op())
        if (int d = la.twee() - lb.twee())
            return d;
    return 0;
}

int IXCOLLATE(const void* a, const void* b, int n) {
    return IXCOLLATEVANAF(static_cast<const uint8_t*>(a), static_cast<const uint8_t*>(b), n, 0);
}

int IXGEWICHTEN(const uint8_t* tekst, int n, uint8_t* uit) {
    const uint8_t* einde = static_cast<const uint8_t*>(memchr(tekst, 0, static_cast<size_t>(n)));
    if (!einde)
        einde = tekst + n;
    uint8_t* p = uit;
    Loper l{tekst, einde, 0};
    while (uint8_t w = l.een())
        *p++ = w;
    *p++ = 0;
    l = {tekst, einde, 0};
    while (uint8_t w = l.twee())
        *p++ = w;
    *p++ = 0;
    return static_cast<int>(p - uit);
}

} // namespace zg
