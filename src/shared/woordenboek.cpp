// The data dictionary: rows cut out of their text form at compile time, and the making, comparing and repairing of
// pairs after them. Positions count from 1 as in key texts.
#include "shared/woordenboek.h"
#include "shared/files.h"
#include "shared/teksten.h"
#include "store/bestand.h"
#include "store/ix.h"
#include "store/rebuild.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace zg {

namespace {

// "I,1,4 C,7,17" as parts. What is not of this form doesn't compile.
consteval DDRIJ rij(int nr, int keys, int reclen, int keynr, int dups, std::string_view delen) {
    DDRIJ r{static_cast<uint8_t>(nr),    static_cast<uint8_t>(keys), static_cast<int16_t>(reclen),
            static_cast<uint8_t>(keynr), static_cast<uint8_t>(dups), {}};
    size_t i = 0, deel = 0;
    auto teken = [&](char c) {
        if (delen.at(i++) != c)
            throw "part of another form";
    };
    auto getal = [&] {
        int n = 0;
        while (i < delen.size() && delen[i] >= '0' && delen[i] <= '9')
            n = n * 10 + (delen[i++] - '0');
        if (n < 1 || n > 255 || n > reclen)
            throw "position outside the record";
        return static_cast<uint8_t>(n);
    };
    while (i < delen.size()) {
        DDDEEL& d = r.delen[deel++];
        d.type = delen[i++];
        if (d.type != 'I' && d.type != 'C')
            throw "part type";
        teken(',');
        d.van = getal();
        teken(',');
        d.tot = getal();
        if (d.tot < d.van)
            throw "part runs backward";
        if (i < delen.size())
            teken(' ');
    }
    return r;
}

constexpr DDRIJ rijen[] = {
#define DDRIJ(nr, keys, reclen, keynr, dups, delen) rij(nr, keys, reclen, keynr, dups, delen),
#include "shared/woordenboek.def"
#undef DDRIJ
    {DDEINDE, 0, 0, 0, 0, {}},
};

// Titles of the files that have one.
constexpr struct {
    int nr;
    const Tekst* tekst;
} titels[] = {
#define TITEL(n)                                                                                             \
    { n, &T_DDTITEL_##n }
    TITEL(1),  TITEL(2),  TITEL(3),  TITEL(4),  TITEL(6),  TITEL(7),   TITEL(8),  TITEL(9),  TITEL(10),
    TITEL(11), TITEL(13), TITEL(14), TITEL(15), TITEL(16), TITEL(17),  TITEL(18), TITEL(20), TITEL(21),
    TITEL(22), TITEL(24), TITEL(25), TITEL(26), TITEL(27), TITEL(28),  TITEL(29), TITEL(30), TITEL(31),
    TITEL(32), TITEL(33), TITEL(34), TITEL(35), TITEL(36), TITEL(37),  TITEL(38), TITEL(40), TITEL(41),
    TITEL(42), TITEL(44), TITEL(45), TITEL(47), TITEL(48), TITEL(49),  TITEL(50), TITEL(51), TITEL(53),
    TITEL(54), TITEL(55), TITEL(56), TITEL(58), TITEL(59), TITEL(200), TITEL(201)
#undef TITEL
};

const Tekst* titel(int nr) {
    for (const auto& t : titels)
        if (t.nr == nr)
            return t.tekst;
    return nullptr;
}

// Names by which the programs open their tables.
constexpr struct {
    const char* naam;
    int nr;
} namen[] = {
    {"DTART", 4},     {"DTBARC", 8},    {"DTDD", 13},     {"DTDOELGR", 15}, {"DTEAN", 16},
    {"DTIPA", 20},    {"DTISOLND", 21}, {"DTISOVAL", 22}, {"DTKOERS", 27},  {"DTLEV", 30},
    {"DTLEVEXT", 31}, {"DTMAAT", 32},   {"DTMERK", 34},   {"DTMTOM", 35},   {"DTOMZGRP", 40},
    {"DTORDNR", 43},  {"DTSER", 55},    {"DTSERPIC", 56}, {"DTVVTAB", 59},
};

// Record lengths of former makers, which serve as well: what is not there reads as zeros.
constexpr struct { int nr, reclen; } ook_goed[] = {{56, 53}};

// Files that are never empty: an empty one was lost, and is not to be taken for sound.
constexpr std::string_view nooitleeg[] = {"DTDD", "DTISOLND", "DTISOVAL"};

std::string inx(const char* naam) {
    return std::string(naam) + ".INX";
}
std::string txt(const char* naam) {
    return std::string(naam) + ".TXT";
}

} // namespace

const DDRIJ* const DDRIJEN = rijen;

namespace {

// 18 characters of a title without blanks at its ends; `vertaald`: in the user's language.
char* in_buffer(int bestandnr, bool vertaald, char* buffer) {
    buffer[0] = '\0';
    if (const Tekst* t = titel(bestandnr)) {
        snprintf(buffer, 19, "%-.18s", vertaald ? TXT(*t) : t->standaard);
        std::replace(buffer, buffer + strlen(buffer), ',', ' '); // a comma would end the title in a key text
        size_t n = strlen(buffer);
        while (n && buffer[n - 1] == ' ')
            buffer[--n] = '\0';
        memmove(buffer, buffer + strspn(buffer, " "), n - std::min(n, strspn(buffer, " ")) + 1);
    }
    return buffer;
}

} // namespace

char* DDTITLE(int bestandnr, char* buffer) {
    return in_buffer(bestandnr, true, buffer);
}

int DDROW(int bestandnr, int keynr, DDRIJ* rij) {
    const DDRIJ* r = rijen;
    while (r->bestandnr < DDEINDE && (r->bestandnr != bestandnr || r->keynr != keynr))
        r++;
    if (rij)
        *rij = *r;
    return r->bestandnr < DDEINDE;
}

int DDNUMMER(const char* naam) {
    for (const auto& n : namen)
        if (!strcmp(n.naam, IOBASENAME(naam)))
            return n.nr;
    return 0;
}

std::vector<int> DDRECLENGTES(int bestandnr) {
    DDRIJ r;
    std::vector<int> uit;
    if (DDROW(bestandnr, 1, &r))
        uit.push_back(r.reclen);
    for (const auto& o : ook_goed)
        if (o.nr == bestandnr)
            uit.push_back(o.reclen);
    return uit;
}

int DDRECLEN(int bestandnr, int64_t databytes) {
    const std::vector<int> lengtes = DDRECLENGTES(bestandnr);
    for (int l : lengtes)
        if (databytes % l == 0)
            return l;
    return lengtes.empty() ? 0 : lengtes[0];
}

int DDDEFINIEER(ICB* icb, int bestandnr, const char* naam, int reclen) {
    DDRIJ r;
    if (!DDROW(bestandnr, 1, &r))
        return 0;
    char buffer[19], tekst[160];
    if (!*in_buffer(bestandnr, false, buffer)) // what stands in a file is of no language of a user's
        snprintf(buffer, sizeof buffer, "%s", IOBASENAME(naam));
    snprintf(tekst, sizeof tekst, "%-.19s,%d", buffer, reclen ? reclen : r.reclen);
    IXUPDFCB(icb, 0, tekst);
    int keys = r.keys;
    for (int k = 1; k <= keys && DDROW(bestandnr, k, &r); k++) {
        int n = snprintf(tekst, sizeof tekst, "key-%d%s", k, r.dups ? "" : ",NODUPS");
        for (const DDDEEL& d : r.delen)
            if (d.type && n > 0 && static_cast<size_t>(n) < sizeof tekst)
                n += snprintf(tekst + n, sizeof tekst - static_cast<size_t>(n), ",%c,%d,%d", d.type, d.van,
                              d.tot);
        IXUPDFCB(icb, k, tekst);
    }
    return keys;
}

int DDCREATE(int bestandnr, const char* naam, int reclen) {
    if (!DDROW(bestandnr, 1, nullptr))
        return 0;
    ICB* icb = IXCREATE(naam, 1);
    int keys = DDDEFINIEER(icb, bestandnr, naam, reclen);
    IXINITIX(icb);
    IXCLOSE(icb);
    return keys;
}

int DDCREATETXT(const char* naam) {
    int fd = SYSNIEUW(txt(naam).c_str(), O_RDWR | O_EXCL);
    if (fd >= 0)
        SYS.close(fd);
    return fd >= 0 || IOEXISTS(txt(naam).c_str());
}

int DDNEW(int bestandnr, const char* naam) {
    return DDCREATE(bestandnr, naam) && DDCREATETXT(naam);
}

int DDCOMPARE(int bestandnr, const char* naam) {
    IXHEADER h;
    int fd = IXBESTANDOPEN(inx(naam).c_str(), O_RDONLY); // a handle on it keeps its locks
    bool gelezen = fd >= 0 && SYSLEES(fd, &h, sizeof h, 0) == static_cast<ssize_t>(sizeof h);
    if (fd >= 0)
        IXBESTANDDICHT(fd);
    return gelezen ? DDCOMPARE(bestandnr, h) : DD_ONLEESBAAR;
}

int DDCOMPARE(int bestandnr, const IXHEADER& h) {
    DDRIJ r;
    if (!DDROW(bestandnr, 1, &r))
        return DD_ONLEESBAAR;
    const std::vector<int> lengtes = DDRECLENGTES(bestandnr);
    if (std::ranges::find(lengtes, h.reclen) == lengtes.end())
        return DD_RECLEN;
    if (h.nkeys != r.keys)
        return DD_KEYS;
    for (int k = 1; k <= h.nkeys && DDROW(bestandnr, k, &r); k++) {
        const IXKEYDEF& kd = h.keydef[k - 1];
        if (kd.dupflag != (r.dups ? 'J' : 'N'))
            return DD_SLEUTEL * k;
        for (int d = 0; d < IXDELEN; d++) {
            const DDDEEL& deel = r.delen[d];
            if (kd.ptype[d] != deel.type || kd.pstart[d] != deel.van || kd.pend[d] != deel.tot)
                return DD_SLEUTEL * k + d + 1;
        }
    }
    return DD_GELIJK;
}

int DDCHECK(int bestandnr, const char* naam, DDRAPPORT* rapport) {
    DDRAPPORT& r = *rapport;
    r = {r.repair, DDF_GEEN, 0, 0, 0, 0};
    auto fout = [&](DDfout f) { return r.fout = f, 0; };

    int64_t index = IOSIZE(inx(naam).c_str()), data = IOSIZE(txt(naam).c_str());
    if (r.repair) {
        if (index <= 0)
            r.indexnieuw = DDCREATE(bestandnr, naam, DDRECLEN(bestandnr, data)) != 0;
        if (data < 0)
            r.datanieuw = DDCREATETXT(naam);
        index = IOSIZE(inx(naam).c_str());
        data = IOSIZE(txt(naam).c_str());
    }
    if (!data && std::ranges::find(nooitleeg, IOBASENAME(naam)) != std::end(nooitleeg))
        return fout(DDF_LEEG);
    if (index < 0)
        return fout(DDF_INDEX);
    if (data < 0)
        return fout(DDF_DATA);
    if ((r.code = DDCOMPARE(bestandnr, naam)) != DD_GELIJK)
        return fout(DDF_VERSCHIL);
    int vrij = IXCHECK(naam);
    if (vrij < 0 && r.repair) {
        r.herbouwd = IXBLDIX(naam);
        vrij = IXCHECK(naam);
    }
    return vrij < 0 ? fout(DDF_STUK) : 1;
}

} // namespace zg
