// The zigzag line: a printf-like call whose pieces are placed one by one in a pair of line buffers, so that columns stay
// straight. A number wider than its format ends where a narrow one would have ended; where other text is in the way it
// drops to the second line.
#include "print/printjob.h"
#include "print/teksten.h"
#include "shared/report.h"
#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace zg {
namespace {

constexpr int FORMAAT_MIN = 350; // room for one value
constexpr int REGEL_EERSTE = 333, REGEL_MIN = 300, REGEL_MAX = 32000;
constexpr int REGEL_RUIM = 5; // more than is needed, when a line grows

struct {
    bool gestart = false;
    int maximum = 0; // of a line, 0 for none
    int eind = -1;   // last used position, -1 for an empty line
    std::vector<char> regel[2];
    std::vector<char> tekst; // one value
    std::string vast;        // one literal piece
} zz;

// A whole decimal number of the environment. 1; 0 when it isn't set; -1 when it is something else.
int omgeving(const char* naam, int* uit) {
    const char* tekst = getenv(naam);
    if (!tekst)
        return 0;
    const char* einde = tekst + strlen(tekst);
    auto [tot, fout] = std::from_chars(tekst, einde, *uit);
    return fout == std::errc() && tot == einde && tot != tekst ? 1 : -1;
}

[[noreturn]] void onbekend(const char* naam) {
    SCRFATAL("%s %s", TXT(T_PRT_ONBEKENDE_TEKST), naam);
}

void maten() {
    int formaat = FORMAAT_MIN, regel = REGEL_EERSTE, hoogste = 0;
    int f = omgeving("MAXFMT", &formaat);
    if (f < 0 || formaat == 0)
        onbekend("MMEINI");
    int r = omgeving("SYSBUF", &regel);
    if (r < 0 || regel <= 0)
        onbekend("SYSBUF");
    if (regel > REGEL_MAX)
        SCRFATAL("SYSBUF IS > 32000");
    if (int h = omgeving("MAXSYSBUF", &hoogste)) {
        if (h < 0)
            onbekend("MAXSYSBUF");
        if (hoogste > REGEL_MAX)
            SCRFATAL("MAXSYSBUF IS > 32000");
        if (!r && hoogste < REGEL_MIN)
            SCRFATAL("MAXSYSBUF < DEFAULT SYSBUF -> MAXSYSBUF > 300");
        if (r && hoogste < regel)
            SCRFATAL("MAXSYSBUF < SYSBUF --> MAXSYSBUF > SYSBUF");
        regel = std::min(regel, hoogste);
    }
    zz.maximum = hoogste;
    zz.tekst.resize(static_cast<size_t>(std::clamp(formaat, FORMAAT_MIN, REGEL_MAX)) + 1);
    for (auto& r2 : zz.regel)
        r2.assign(static_cast<size_t>(regel), ' ');
}

void groei(int nodig) {
    if (static_cast<size_t>(nodig) <= zz.regel[0].size())
        return;
    if (zz.maximum && nodig > zz.maximum)
        SCRFATAL("MAXSYSBUF too small. %d > MAXSYSBUF(%ld)", nodig, static_cast<long>(zz.maximum));
    if (nodig > REGEL_MAX)
        SCRFATAL("%s %d %s", "PrintBuffer >", REGEL_MAX, TXT(T_PRT_REGEL_TE_LANG));
    for (auto& r : zz.regel)
        r.resize(static_cast<size_t>(nodig) + REGEL_RUIM, ' ');
}

char eerste(int positie) {
    return zz.regel[0][static_cast<size_t>(positie)];
}

// Place a text of `lengte` bytes whose ordinary value would have been `gewoon` long; zigzag: may it drop?
void plaats(const char* tekst, int lengte, int gewoon, bool zigzag) {
    if (lengte == 0)
        return;
    const int meer = lengte - gewoon;
    int b = 0;
    if (zz.eind >= 0 && meer == 0) { // two numbers would touch
        b = tekst[0] != ' ' && eerste(zz.eind) >= '0' && eerste(zz.eind) <= '9';
    } else if (zz.eind >= 0 && meer > 0) {
        // What it would stand on, and one more: a blank is left in front of it.
        for (int i = std::max(0, zz.eind - meer); i <= zz.eind; i++)
            if (eerste(i) != ' ')
                b = 1, zigzag = true;
    }
    if (!zigzag)
        b = 0;
    auto& doel = zz.regel[b];
    int p = std::max(0, zz.eind + 1 - meer);
    for (int i = zz.eind; i >= p; i--)
        if (doel[static_cast<size_t>(i)] != ' ') { // never over anything
            p = i + 1;
            break;
        }
    groei(p + lengte);
    memcpy(doel.data() + p, tekst, static_cast<size_t>(lengte));
    zz.eind = std::max(zz.eind, p + lengte - 1);
}

void regel_uit() {
    auto &een = zz.regel[0], &twee = zz.regel[1];
    int gebruikt = zz.eind + 1;
    if (gebruikt > 0 && eerste(zz.eind) == '\r')
        gebruikt--;
    const auto n = static_cast<size_t>(std::min(gebruikt, printopdracht.kolommen));
    const bool tweede = std::any_of(twee.begin(), twee.begin() + static_cast<long>(n),
                                    [](char c) { return c != ' ' && c != '\r'; });
    prt_schrijf(een.data(), n);
    XPRT_NL();
    if (tweede) {
        prt_schrijf(twee.data(), n);
        XPRT_NL();
    }
    zigzag_leeg();
}

// The literal text from *p up to the next conversion; its line feeds end the line, its form feeds the page.
void letterlijk(const char** p) {
    auto af = [] {
        plaats(zz.vast.data(), static_cast<int>(zz.vast.size()), static_cast<int>(zz.vast.size()), false);
        zz.vast.clear();
    };
    const char* s = *p;
    zz.vast.clear();
    for (; *s && (*s != '%' || s[1] == '%'); s++)
        if (*s == '\n') {
            af();
            regel_uit();
        } else if (*s == '\f') {
            af();
            XPRT_BLAD();
        } else {
            zz.vast += *s;
            s += *s == '%';
        }
    af();
    *p = s;
}

struct Argumenten {
    va_list ap;
};

// One conversion with its "*" filled in.
struct Opdracht {
    char spec[48];
    char letter;
    bool lang, dubbel_lang; // l and the like, L
    bool maat;              // has a width or a precision
};

// Digits or "*" as a number that no value can do with more than; a negative one comes from "*" alone.
int getal(const char** p, Argumenten* a) {
    int n = 0;
    if (**p == '*') {
        ++*p;
        n = va_arg(a->ap, int);
    } else
        for (; **p >= '0' && **p <= '9'; ++*p)
            n = std::min(n * 10 + (**p - '0'), REGEL_MAX);
    return std::clamp(n, -REGEL_MAX, REGEL_MAX);
}

Opdracht ontleed(const char** p, Argumenten* a) {
    Opdracht o{};
    std::string spec = "%";
    for (++*p; **p && strchr("-+ #0'", **p); ++*p)
        if (spec.find(**p) == std::string::npos)
            spec += **p;
    if (**p == '*' || (**p >= '1' && **p <= '9')) {
        o.maat = true;
        spec += std::to_string(getal(p, a)); // below 0: the flag "-" and the width
    }
    if (**p == '.') {
        ++*p;
        int n = getal(p, a);
        if (n >= 0) {
            o.maat = true;
            spec += "." + std::to_string(n);
        }
    }
    bool teken = false; // a modifier that a text can't have
    for (; **p && strchr("hlLqjzt", **p); ++*p, teken = true) {
        o.lang = o.lang || **p != 'h';
        o.dubbel_lang = o.dubbel_lang || **p == 'L';
        spec += **p;
    }
    o.letter = **p;
    if (!o.letter || !strchr("sdiouxXefgEGc", o.letter) || (teken && strchr("sc", o.letter)) ||
        spec.size() + 2 > sizeof o.spec)
        SCRFATAL("Invalid format specifier: %c", o.letter ? o.letter : '%');
    ++*p;
    spec += o.letter;
    memcpy(o.spec, spec.c_str(), spec.size() + 1);
    return o;
}

// The next argument as text in zz.tekst: its length, and that of the value 0 in `gewoon`.
int waarde(const Opdracht& o, Argumenten* a, int* gewoon) {
    const int ruimte = static_cast<int>(zz.tekst.size()) - 1;
    int lengte = 0;
    auto vorm = [&](auto w) {
        lengte = std::clamp(snprintf(zz.tekst.data(), zz.tekst.size(), o.spec, w), 0, ruimte);
    };
    auto getalvorm = [&](auto w) {
        vorm(w);
        *gewoon = o.maat ? std::clamp(snprintf(nullptr, 0, o.spec, decltype(w){}), 0, ruimte) : lengte;
    };
    switch (o.letter) {
    case 's':
    case 'c':
        if (o.letter == 's') {
            const char* s = va_arg(a->ap, const char*);
            vorm(s ? s : "");
        } else
            vorm(va_arg(a->ap, int));
        prt_blank(zz.tekst.data(), static_cast<size_t>(lengte));
        *gewoon = lengte;
        break;
    case 'e':
    case 'f':
    case 'g':
    case 'E':
    case 'G':
        if (o.dubbel_lang)
            getalvorm(va_arg(a->ap, long double));
        else
            getalvorm(va_arg(a->ap, double));
        break;
    default:
        static_assert(sizeof(long) == sizeof(long long) && sizeof(long) == sizeof(size_t));
        if (o.lang)
            getalvorm(va_arg(a->ap, long));
        else
            getalvorm(va_arg(a->ap, int));
    }
    return lengte;
}

} // namespace

void zigzag_start() {
    if (zz.gestart)
        SCRFATAL("%s", TXT(T_PRT_REEDS_GESTART));
    maten();
    zz.gestart = true;
    zz.eind = -1;
}

void zigzag_stop() {
    if (!zz.gestart)
        SCRFATAL("%s", TXT(T_PRT_NIET_GESTART));
    zz.gestart = false;
}

void zigzag_leeg() {
    for (auto& r : zz.regel)
        std::fill_n(r.begin(), zz.eind + 1, ' ');
    zz.eind = -1;
}

void prt_blank(char* tekst, size_t n) {
    std::replace_if(
        tekst, tekst + n, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, ' ');
}

void XPRT_PRINT(const char* fmt, ...) {
    if (!zz.gestart)
        INTERNAL("zigzag", 1);
    Argumenten a;
    va_start(a.ap, fmt);
    bool zigzag = true, tweede = false; // the second number behind another may drop
    while (*fmt) {
        if (*fmt != '%' || fmt[1] == '%') {
            letterlijk(&fmt);
            zigzag = tweede = false;
            continue;
        }
        const Opdracht o = ontleed(&fmt, &a);
        int gewoon = 0;
        const int lengte = waarde(o, &a, &gewoon);
        if (o.letter == 's' || o.letter == 'c')
            zigzag = tweede = false;
        else {
            zigzag = zigzag || tweede;
            tweede = !tweede;
        }
        plaats(zz.tekst.data(), lengte, gewoon, zigzag);
    }
    va_end(a.ap);
}

void XPRT_HERHAAL(int n, char teken) {
    if (!zz.gestart)
        INTERNAL("zigzag", 2);
    if (n <= 0)
        return;
    std::string reeks(static_cast<size_t>(std::min(n, REGEL_MAX + 1)), teken);
    prt_blank(reeks.data(), reeks.size());
    plaats(reeks.data(), static_cast<int>(reeks.size()), static_cast<int>(reeks.size()), false);
}

void XPRT_REGEL() {
    if (zz.eind >= 0)
        regel_uit();
}

} // namespace zg
