// The format language of fields. INGAVEFMT reads the format, fills SCHERM's description of the field, loads
// the caller's variable as text and value, and sets allowed keys and range in INSTEL. A wrong format is an
// error of the program and stops it.
#include "term/formaat.h"
#include "term/datum.h"
#include "term/teksten.h"
#include "term/veld.h"
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace zg {
namespace {

constexpr int BREEDTEMAX = 255;
constexpr int TEKEN_VAN = 32, TEKEN_TM = 254;
constexpr const char* TYPEN = "BCDSUXbcdflnsux";

int tekenset;          // 0 none, 1 only these, 2 all but these
std::string_view heel; // the format, for the report

[[noreturn]] void fout(const Tekst& melding) {
    std::string cs(heel);
    SCRFATAL("INGAVE(): r=%d, c=%d, cs=%s --> %s ", SCHERM.rij, SCHERM.kolom, cs.c_str(), TXT(melding));
}

bool een_van(char c, const char* letters) {
    return c != 0 && strchr(letters, c);
}

// Digits at the front of the format; stops counting above every sensible width.
int lees_getal(std::string_view& f) {
    int n = 0;
    for (; !f.empty() && f[0] >= '0' && f[0] <= '9'; f.remove_prefix(1))
        n = std::min(n * 10 + f[0] - '0', 100000);
    return n;
}

template <class T> double lees() {
    T x;
    memcpy(&x, SCHERM.doel, sizeof x);
    return static_cast<double>(x);
}

// Where the caller's bytes begin; null when the field starts empty and doesn't look at them.
const char* bron() {
    return VELDOPTIE('I') ? nullptr : static_cast<const char*>(SCHERM.doel);
}

void laad_bytes() {
    if (const char* p = bron()) {
        memset(ingavetekst, 0, INGAVEMAX);
        memcpy(ingavetekst, p, strnlen(p, static_cast<size_t>(SCHERM.breedte)));
    }
}

void laad_string() {
    const char* p = bron();
    if (p && strnlen(p, static_cast<size_t>(SCHERM.breedte) + 1) > static_cast<size_t>(SCHERM.breedte))
        fout(T_FMT_STRING);
    laad_bytes();
}

double laad_getal() {
    double waarde = 0.0;
    switch (SCHERM.type) {
    case 'B':
        return lees<int32_t>() / (SCHERM.kpos == 2 ? 100.0 : 1.0);
    case 'l':
        return lees<int32_t>();
    case 'd':
        return lees<int16_t>();
    case 'D':
    case 'u':
        return lees<uint16_t>();
    case 'U':
    case 'b':
        return lees<uint8_t>();
    case 'n':
        return lees<int8_t>();
    case 'f':
        waarde = lees<double>();
        return std::isfinite(waarde) ? waarde : 0.0;
    default:
        return 0.0;
    }
}

struct Grenzen {
    double onder, boven;
};

Grenzen typegrenzen() {
    switch (SCHERM.type) {
    case 'B': {
        double d = SCHERM.kpos == 2 ? 100.0 : 1.0;
        return {-2147483647.0 / d, 2147483647.0 / d};
    }
    case 'U':
        return {0, 255};
    case 'd':
        return {-32768, 32767};
    case 'l':
        return {-2147483647.0, 2147483647.0};
    case 'n':
        return {-128, 127};
    case 'u':
        return {0, 65535};
    default:
        return {-DBL_MAX, DBL_MAX};
    }
}

// What fits in the width, and what the options Z, N and P leave of it.
Grenzen getalgrenzen() {
    const int w = SCHERM.breedte, d = SCHERM.decimalen;
    if (d > 0 && d >= w)
        fout(T_FMT_BEREIK);
    auto plaatje = [&](char vul) {
        std::string s(static_cast<size_t>(w), vul);
        if (d > 0)
            s[static_cast<size_t>(w - d - 1)] = '.';
        return s;
    };
    auto waarde = [](const std::string& s) { return strtod(s.c_str(), nullptr); };

    Grenzen g = typegrenzen();
    std::string negens = plaatje('9');
    g.boven = std::min(g.boven, waarde(negens));
    if (negens[0] == '.' || w < 2) { // no room for a sign
        g.onder = std::max(g.onder, 0.0);
    } else {
        negens[0] = '-';
        g.onder = std::max(g.onder, waarde(negens));
    }
    std::string een = plaatje('0');
    een.back() = '1';
    const double eenheid = VELDOPTIE('Z') ? 0.0 : waarde(een);
    if (!VELDOPTIE('N'))
        g.onder = eenheid;
    if (!VELDOPTIE('P'))
        g.boven = 0.0 - eenheid;
    return g;
}

// The caller may narrow the field's own range, not widen it.
void verenig(Grenzen g) {
    if (INSTEL.minimum <= INSTEL.maximum) {
        INSTEL.minimum = std::max(INSTEL.minimum, g.onder);
        INSTEL.maximum = std::min(INSTEL.maximum, g.boven);
        if (INSTEL.minimum > INSTEL.maximum)
            fout(T_FMT_BEREIK);
    } else {
        if (INSTEL.minimum == 0.0)
            INSTEL.minimum = g.onder;
        INSTEL.maximum = g.boven;
    }
}

void toe_reeks(int van, int tm) {
    for (int c = van; c <= tm; c++)
        TOETSAAN(c);
}

void toe_tekens(std::string_view tekens, bool aan = true) {
    for (char c : tekens)
        if (static_cast<uint8_t>(c) >= TEKEN_VAN)
            (aan ? TOETSAAN : TOETSUIT)(static_cast<uint8_t>(c));
}

void standaardtekens() {
    if (SCHERM.numeriek) {
        toe_tekens("0123456789");
        if (SCHERM.decimalen > 0)
            toe_tekens(".,");
    } else if (SCHERM.type == 'D') {
        toe_tekens("-+0123456789");
    } else if (VELDTYPE("xX")) {
        toe_tekens("0123456789ABCDEF");
    } else if (SCHERM.type == 'b') {
        toe_tekens("+-");
        TOETSAAN(static_cast<uint8_t>(TXTLETTER(T_JA)));
        TOETSAAN(static_cast<uint8_t>(TXTLETTER(T_NEE)));
    } else {
        toe_reeks(TEKEN_VAN, TEKEN_TM);
    }
}

void lees_tekenset(std::string_view& f) {
    tekenset = 0;
    if (f.empty() || f[0] != '[')
        return;
    size_t einde = f.find(']');
    if (einde == std::string_view::npos)
        fout(T_FMT_HAAK);
    std::string_view tekens = f.substr(1, einde - 1);
    f.remove_prefix(einde + 1);
    if (!tekens.empty() && tekens[0] == '^') {
        tekenset = 2;
        toe_tekens(tekens.substr(1), false);
    } else {
        tekenset = 1;
        for (int c = TEKEN_VAN; c <= TEKEN_TM; c++)
            TOETSUIT(c);
        toe_tekens(tekens);
    }
}

// SCHERM.opties holds twenty letters; of more than that only those with a meaning stay, each once.
void bewaar_opties(std::string o) {
    constexpr size_t MAX = sizeof SCHERM.opties - 1;
    if (o.size() > MAX) {
        std::string kort;
        for (char c : o)
            if (een_van(c, "AEFIJNPSUZ") && kort.find(c) == std::string::npos)
                kort += c;
        o = kort;
    }
    memset(SCHERM.opties, 0, sizeof SCHERM.opties);
    memcpy(SCHERM.opties, o.data(), o.size());
}

void lees_opties(std::string_view f) {
    if (!f.empty() && f[0] == ',')
        f.remove_prefix(1);
    std::string o(f);
    if (SCHERM.numeriek && o.find_first_of("ZNP") == std::string::npos)
        o += "NZP";
    else if (VELDTYPE("xX"))
        o += "U";
    else if (SCHERM.type == 'b')
        o += "UE";
    bewaar_opties(o);
}

// The letter, and what it makes of width and precision.
void lees_type(std::string_view& f) {
    SCHERM.type = f.empty() ? '\0' : f[0];
    if (!f.empty())
        f.remove_prefix(1);
    if (SCHERM.decimalen > 0 && !VELDTYPE("fCSX"))
        fout(T_FMT_PRECISION);
    if (!VELDTYPE(TYPEN))
        fout(T_FMT_VARTYPE);
    SCHERM.numeriek = !VELDTYPE("DcCbsSxX");
    SCHERM.scroll = VELDTYPE("CSX");
    if (SCHERM.type == 'b')
        SCHERM.breedte = 1;
    if (SCHERM.type == 'D' && SCHERM.breedte != 8 && SCHERM.breedte != 10)
        SCHERM.breedte = 6;
    if (SCHERM.type == 'B')
        SCHERM.decimalen = SCHERM.kpos;
    if (SCHERM.scroll) {
        const int venster = WINBREEDTE(); // 0 without a screen
        int ruimte = venster > 0 ? std::max(1, venster - SCHERM.kolom + 1) : SCHERM.breedte;
        int zicht = SCHERM.decimalen > 0 ? SCHERM.decimalen : SCHERM.breedte;
        SCHERM.zichtbaar = std::min({zicht, SCHERM.breedte, ruimte});
        SCHERM.decimalen = 0;
    }
}

void laad_datum() {
    if (INSTEL.minimum != 0.0 || INSTEL.maximum != 0.0) { // a caller's 0 to 0 leaves every date free
        bool lang = SCHERM.breedte == 10;
        verenig({static_cast<double>(DATUMNR(lang ? "01011900" : "010180")),
                 static_cast<double>(DATUMNR(lang ? "31122078" : "311250"))});
    }
    if (ingavewaarde != 0.0)
        VELDTEKST(VELDDATUM(static_cast<uint16_t>(ingavewaarde)));
}

} // namespace

bool VELDOPTIE(char letter) {
    return een_van(letter, SCHERM.opties);
}

void VELDTEKENSET(int modus) {
    tekenset = modus;
}

int INGAVESET() {
    return tekenset;
}

const char* INGAVEFMT(const char* formaat) {
    std::string_view f = formaat;
    while (!f.empty() && f.front() == ' ')
        f.remove_prefix(1);
    while (!f.empty() && f.back() == ' ')
        f.remove_suffix(1);
    heel = f;

    SCHERM.breedte = std::max(1, lees_getal(f));
    if (SCHERM.breedte > BREEDTEMAX)
        fout(T_FMT_LENGTE);
    SCHERM.decimalen = 0;
    if (!f.empty() && f[0] == '.') {
        f.remove_prefix(1);
        SCHERM.decimalen = std::min(lees_getal(f), BREEDTEMAX);
    }
    ingavewaarde = 0.0;
    memset(ingavetekst, 0, INGAVEMAX);
    SCHERM.scroll = SCHERM.zichtbaar = 0;
    lees_type(f);

    standaardtekens();
    TOETSAAN(K_EXIT);
    TOETSAAN(K_HOME);
    if (SCHERM.breedte > 1)
        for (int32_t key : {K_RIGHT, K_LEFT, K_IC, K_DC, K_BACK})
            TOETSAAN(key);
    lees_tekenset(f);
    lees_opties(f);

    ingavewaarde = laad_getal();
    if (SCHERM.numeriek) {
        Grenzen g = getalgrenzen();
        VELDGETAL();
        verenig(g);
        if (INSTEL.minimum < 0)
            TOETSAAN('-');
    } else if (SCHERM.type == 'D') {
        laad_datum();
    } else if (SCHERM.type == 'b') {
        ingavetekst[0] = TXTLETTER(ingavewaarde != 0.0 ? T_JA : T_NEE);
    } else if (VELDTYPE("sS")) {
        laad_string();
    } else {
        laad_bytes();
    }
    if (VELDOPTIE('I')) {
        ingavewaarde = 0.0;
        memset(ingavetekst, 0, INGAVEMAX);
    }
    heel = {};
    return SCHERM.opties;
}

} // namespace zg
