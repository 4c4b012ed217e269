#include "tools/indeling.h"
#include "codes/seizoen.h"
#include "shared/dagtekst.h"
#include "shared/ioeti.h"
#include "term/datum.h"
#include "term/natl.h"
#include "term/vast.h"
#include <algorithm>
#include <charconv>
#include <cstring>

namespace zg {

namespace {

struct Rij {
    const char* tabel; // not null: a new table begins
    const char* naam;
    char soort;
    int begin, lengte;
    Veldmag mag;
};

using enum Veldmag::Soort;
constexpr Veldmag MAG(Veldmag::Soort soort = NAAR_TYPE) {
    return {soort};
}
constexpr Veldmag MAG(Veldmag mag) {
    return mag;
}
constexpr Veldmag ELK(int breedte, int64_t van, int64_t tot) {
    return {Veldmag::GETAL, van, tot, van, breedte};
}
constexpr Veldmag TUSSEN_OF(int64_t van, int64_t tot, int64_t ook) {
    return {Veldmag::GETAL, van, tot, ook};
}
constexpr Veldmag TUSSEN(int64_t van, int64_t tot) {
    return TUSSEN_OF(van, tot, van);
}
constexpr Veldmag LETTER(const char* letters) {
    return {Veldmag::EEN_VAN, 0, 0, 0, 0, letters};
}

// A table's row has the name of its records in place of a field's.
const Rij RIJEN[] = {
#define TABEL(naam, ...) {naam, "" __VA_ARGS__, 0, 0, 0, {}},
#define VELD(naam, soort, begin, lengte, ...) {nullptr, naam, soort, begin, lengte, MAG(__VA_ARGS__)},
#include "tools/indeling.def"
#undef TABEL
#undef VELD
};

std::vector<Veld> bekend(std::string_view tabel) {
    std::vector<Veld> velden;
    bool hier = false;
    for (const Rij& rij : RIJEN) {
        if (rij.tabel)
            hier = tabel == rij.tabel;
        else if (hier)
            velden.push_back({rij.naam, rij.soort, rij.begin, rij.lengte, rij.mag});
    }
    return velden;
}

// Key parts as fields; of parts that overlap the first counts.
std::vector<Veld> uit_sleutels(const IXHEADER& kop) {
    std::vector<Veld> velden;
    for (int s = 0; s < std::clamp<int>(kop.nkeys, 0, IXSLEUTELS); s++) {
        const IXKEYDEF& def = kop.keydef[s];
        for (int d = 0; d < IXDELEN && def.ptype[d] != 0; d++) {
            int begin = def.pstart[d] - 1, lengte = def.pend[d] - def.pstart[d] + 1;
            if (begin < 0 || lengte < 1 || begin + lengte > kop.reclen)
                continue;
            bool vrij = std::none_of(velden.begin(), velden.end(), [&](const Veld& v) {
                return begin < v.begin + v.lengte && v.begin < begin + lengte;
            });
            bool getal = def.ptype[d] == 'I' && (lengte == 1 || lengte == 2 || lengte == 4);
            if (vrij)
                velden.push_back({"@" + std::to_string(begin),
                                  getal                 ? 'u'
                                  : def.ptype[d] == 'C' ? 'c'
                                                        : 'x',
                                  begin, lengte});
        }
    }
    return velden;
}

uint32_t getal_uit(const uint8_t* p, int lengte) {
    uint32_t w = 0;
    for (int i = lengte; i-- > 0;)
        w = w << 8 | p[i];
    return w;
}

void utf8_bij(std::string& uit, char32_t u) {
    auto b = [&](char32_t x) { uit += static_cast<char>(static_cast<unsigned char>(x)); };
    if (u < 0x80)
        b(u);
    else if (u < 0x800)
        b(0xC0 | u >> 6), b(0x80 | (u & 63));
    else
        b(0xE0 | u >> 12), b(0x80 | (u >> 6 & 63)), b(0x80 | (u & 63));
}

// Next character of a UTF-8 text; -1 for bytes that are none.
int32_t utf8_teken(std::string_view& s) {
    auto byte = [&](size_t i) { return static_cast<unsigned char>(s[i]); };
    unsigned c = byte(0);
    size_t n = c < 0x80 ? 1 : c >= 0xC2 && c < 0xE0 ? 2 : c >= 0xE0 && c < 0xF0 ? 3 : 0;
    if (n == 0 || s.size() < n)
        return -1;
    uint32_t u = n == 1 ? c : n == 2 ? c & 31 : c & 15;
    for (size_t i = 1; i < n; i++) {
        if ((byte(i) & 0xC0) != 0x80)
            return -1;
        u = u << 6 | (byte(i) & 63);
    }
    s.remove_prefix(n);
    return static_cast<int32_t>(u);
}

int teken_in(int32_t u) {
    if (u >= 0x2400 && u < 0x2420)
        return u - 0x2400;
    if (u == 0x2421)
        return 0x7F;
    return u < 0 ? -1 : CP850EXACT(static_cast<char32_t>(u));
}

bool datum_in(const std::string& tekst, uint16_t* nr) {
    int jaar, maand, dag;
    char rest, t[40];
    if (sscanf(tekst.c_str(), "#%hu%c", nr, &rest) == 1)
        return dag_tekst(*nr) == tekst;
    if (sscanf(tekst.c_str(), "%4d-%2d-%2d%c", &jaar, &maand, &dag, &rest) != 3 || jaar < 1900 || maand < 1 ||
        dag < 1)
        return false;
    snprintf(t, sizeof t, "%02d%02d%04d", dag, maand, jaar);
    *nr = DATUMGELDIG(t) ? DATUMNR(t) : 0;
    return *nr != 0 && dag_tekst(*nr) == tekst;
}

int hexcijfer(char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

} // namespace

std::string tabelnaam(std::string_view pad) {
    return std::string(pad.substr(pad.rfind('/') + 1));
}

std::string_view indeling_wie(std::string_view tabel) {
    const auto rij = std::ranges::find_if(RIJEN, [&](const Rij& r) { return r.tabel && tabel == r.tabel; });
    return rij == std::end(RIJEN) ? "" : rij->naam;
}

std::vector<std::string> bekende_tabellen() {
    std::vector<std::string> uit;
    for (const Rij& rij : RIJEN)
        if (rij.tabel && !strchr(rij.tabel, ':')) // records of journals are no table
            uit.emplace_back(rij.tabel);
    return uit;
}

std::vector<Veld> indeling(std::string_view tabel, const IXHEADER& kop) {
    std::vector<Veld> velden = bekend(tabel), alle;
    std::erase_if(velden, [&](const Veld& v) { return v.begin + v.lengte > kop.reclen; });
    if (velden.empty())
        velden = uit_sleutels(kop);
    std::sort(velden.begin(), velden.end(), [](const Veld& a, const Veld& b) { return a.begin < b.begin; });
    int tot = 0;
    auto gat = [&](int einde) {
        if (einde > tot)
            alle.push_back({"@" + std::to_string(tot), 'x', tot, einde - tot});
    };
    for (const Veld& v : velden) {
        gat(v.begin);
        alle.push_back(v);
        tot = v.begin + v.lengte;
    }
    gat(kop.reclen);
    return alle;
}

int64_t veld_getal(const uint8_t* bytes, int lengte, bool teken) {
    const int schuif = 32 - 8 * lengte;
    const uint32_t w = getal_uit(bytes, lengte);
    return teken ? int64_t{static_cast<int32_t>(w << schuif) >> schuif} : int64_t{w};
}

std::string tekst_uit(std::string_view bytes) {
    std::string uit;
    for (const char c : bytes) {
        const auto b = static_cast<uint8_t>(c);
        utf8_bij(uit, b < 0x20 ? 0x2400u + b : b == 0x7F ? 0x2421u : CP850UIT(b));
    }
    return uit;
}

std::string tekst_in(std::string_view utf8) {
    std::string uit;
    while (!utf8.empty()) {
        const int32_t u = utf8_teken(utf8);
        if (u < 0)
            utf8.remove_prefix(1);
        const int c = teken_in(u);
        uit += c < 0 ? '?' : static_cast<char>(static_cast<uint8_t>(c));
    }
    return uit;
}

std::string veld_uit(const Veld& veld, const uint8_t* rec) {
    const uint8_t* p = rec + veld.begin;
    std::string uit;
    switch (veld.soort) {
    case 'u':
        return std::to_string(getal_uit(p, veld.lengte));
    case 'i':
        return std::to_string(veld_getal(p, veld.lengte, true));
    case 'd':
        return dag_tekst(static_cast<uint16_t>(getal_uit(p, 2)));
    case 'c': {
        int n = veld.lengte;
        while (n > 0 && p[n - 1] == 0)
            n--;
        return tekst_uit({reinterpret_cast<const char*>(p), static_cast<size_t>(n)});
    }
    default:
        for (int i = 0; i < veld.lengte; i++) {
            uit += "0123456789abcdef"[p[i] >> 4];
            uit += "0123456789abcdef"[p[i] & 15];
        }
        return uit;
    }
}

std::string veld_in(const Veld& veld, std::string_view waarde, uint8_t* rec) {
    uint8_t bytes[IXRECMAX] = {};
    int n = 0;
    std::string zo = veld.naam + ": ";
    switch (veld.soort) {
    case 'u':
    case 'i': {
        int64_t w = 0;
        auto [einde, fout] = std::from_chars(waarde.data(), waarde.data() + waarde.size(), w);
        int64_t hoog = (int64_t{1} << (8 * veld.lengte - (veld.soort == 'i'))) - 1,
                laag = veld.soort == 'i' ? -hoog - 1 : 0;
        if (waarde.empty())
            w = 0;
        else if (fout != std::errc() || einde != waarde.data() + waarde.size())
            return zo + "not a number";
        if (w < laag || w > hoog)
            return zo + "outside " + std::to_string(laag) + " to " + std::to_string(hoog);
        for (; n < veld.lengte; n++)
            bytes[n] = static_cast<uint8_t>(static_cast<uint64_t>(w) >> (8 * n));
        break;
    }
    case 'd': {
        uint16_t nr = 0;
        if (!waarde.empty() && !datum_in(std::string(waarde), &nr))
            return zo + "not a date like 2016-03-01";
        bytes[0] = static_cast<uint8_t>(nr), bytes[1] = static_cast<uint8_t>(nr >> 8);
        break;
    }
    case 'c':
        while (!waarde.empty()) {
            int c = teken_in(utf8_teken(waarde));
            if (c < 0)
                return zo + "a character without a place in code page 850";
            if (n == veld.lengte)
                return zo + "longer than " + std::to_string(veld.lengte) + " characters";
            bytes[n++] = static_cast<uint8_t>(c);
        }
        break;
    default:
        // Fewer digits leave zeros behind them.
        if (waarde.size() % 2 != 0 || waarde.size() > static_cast<size_t>(veld.lengte) * 2)
            return zo + "not " + std::to_string(veld.lengte) + " bytes in hexadecimal";
        for (; static_cast<size_t>(n) * 2 < waarde.size(); n++) {
            int hoog = hexcijfer(waarde[static_cast<size_t>(n) * 2]),
                laag = hexcijfer(waarde[static_cast<size_t>(n) * 2 + 1]);
            if (hoog < 0 || laag < 0)
                return zo + "not hexadecimal";
            bytes[n] = static_cast<uint8_t>(hoog << 4 | laag);
        }
    }
    memcpy(rec + veld.begin, bytes, static_cast<size_t>(veld.lengte));
    return {};
}

std::string sleuteltekst(const IXKEYDEF& sleutel) {
    std::string uit = tekst_uit(VASTUIT(sleutel.keyname));
    if (sleutel.dupflag == 'N')
        uit += ",NODUPS";
    for (int d = 0; d < IXDELEN && sleutel.ptype[d] != 0; d++)
        uit += std::string(",") + sleutel.ptype[d] + "," + std::to_string(sleutel.pstart[d]) + "," +
               std::to_string(sleutel.pend[d]);
    return uit;
}

} // namespace zg
