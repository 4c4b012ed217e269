#include "store/model.h"
#include "support/terminal.h"
#include <cstring>
#include <gtest/gtest.h>

namespace zg::test {
namespace {

// Letter and mark of each byte that has one, as letter, mark, bytes.
const std::vector<std::string> merktekens = {
    "A\"\x84\x8E", "A'\x85\xB7",     "A*\x86\x8F", "A^\x83\xB6", "A`\x90\xA0\xB5", "A~\xC6\xC7",
    "C5\x80\x87",  "E\"\x89\xD3",    "E'\x8A\xD4", "E^\x88\xD2", "E`\x82",         "I\"\x8B\xD8",
    "I'\x8D\xDE",  "I^\x8C\xD7",     "I`\xA1\xD6", "N~\xA4\xA5", "O\"\x94\x99",    "O'\x95\xE3",
    "O/\x9B\x9D",  "O^\x93\xD0\xE2", "O`\xA2\xE0", "O~\xE4\xE5", "U\"\x81\x9A",    "U'\x97\xEB",
    "U^\x96\xEA",  "U`\xA3\xE9",     "Y\"\x98",    "Y`\xEC\xED"};

// Weights of a byte on a level: none, one or two.
std::string weeg(uint8_t c, int niveau) {
    auto een = [](int g) { return std::string(1, static_cast<char>(g)); };
    if (c == 0x91 || c == 0x92)
        return niveau == 1 ? "AE" : "";
    if (c == 0xE1)
        return niveau == 1 ? "SS" : "";
    if ((c >= 1 && c <= 0x1F) || c == 0x7F)
        return niveau == 1 ? "" : een(c);
    if (c == 0 || c == 0xFF)
        return een(c);
    for (const std::string& m : merktekens)
        if (m.find(static_cast<char>(c), 2) != std::string::npos)
            return een(m[niveau == 1 ? 0 : 1]);
    if (niveau == 2)
        return een(1);
    return een(c >= 'a' && c <= 'z' ? c - 32 : c);
}

const std::string& gewicht(uint8_t c, int niveau) {
    static const std::vector<std::string> tabel = [] {
        std::vector<std::string> t;
        for (int i = 0; i < 512; i++)
            t.push_back(weeg(static_cast<uint8_t>(i / 2), i % 2 + 1));
        return t;
    }();
    return tabel[static_cast<size_t>(2 * c + niveau - 1)];
}

std::string vorm(const uint8_t* p, int n, int niveau, int* lengte) {
    std::string uit;
    for (int i = 0; i < n; i++)
        uit += gewicht(p[i], niveau);
    *lengte = n;
    for (int i = 0; i < n; i++)
        *lengte += gewicht(p[i], 1).size() == 2;
    uit.resize(static_cast<size_t>(2 * n + 1));
    return uit;
}

void zet32(uint8_t* p, int32_t n) {
    memcpy(p, &n, 4);
}

} // namespace

int model_collate(const uint8_t* a, const uint8_t* b, int n) {
    int la, lb;
    std::string va = vorm(a, n, 1, &la), vb = vorm(b, n, 1, &lb);
    if (int d = memcmp(va.data(), vb.data(), static_cast<size_t>(std::max(la, lb))))
        return d;
    va = vorm(a, n, 2, &la);
    vb = vorm(b, n, 2, &lb);
    return memcmp(va.data(), vb.data(), static_cast<size_t>(n));
}

Model::Model(const IXHEADER& leeg) : h(leeg) {
    h.freehead = -1;
    h.nrecs = 0;
    h.nblocks = h.nkeys + 2;
    blok.resize(static_cast<size_t>(h.nblocks));
    for (int k = 1; k <= h.nkeys; k++) {
        auto& b = blok[static_cast<size_t>(k)];
        b[0] = static_cast<uint8_t>(k);
        b[1] = b[4] = 1;
        memset(&b[5], 0xFF, h.keydef[k - 1].keylen + size_t{4});
    }
    blok[static_cast<size_t>(h.nkeys) + 1][0] = 1;
    rdix(1);
}

int Model::comp(const uint8_t* a, const uint8_t* b, int lengte) const {
    const IXKEYDEF& d = def();
    int i = 0;
    for (int p = 0; p < 10 && d.ptype[p] && i < lengte; p++) {
        int breed = d.pend[p] - d.pstart[p] + 1;
        int uit = d.ptype[p] == 'C' ? model_collate(a + i, b + i, breed)
                                    : memcmp(a + i, b + i, static_cast<size_t>(breed));
        if (uit)
            return uit;
        i += breed;
    }
    return i < lengte ? memcmp(a + i, b + i, 4) : 0;
}

void Model::bouw(const uint8_t* rec) {
    const IXKEYDEF& d = def();
    std::string s;
    for (int p = 0; p < 10 && d.ptype[p]; p++) {
        std::string deel(reinterpret_cast<const char*>(rec) + d.pstart[p] - 1,
                         d.pend[p] - d.pstart[p] + size_t{1});
        if (d.ptype[p] == 'C') {
            size_t breed = deel.size();
            deel.resize(strnlen(deel.data(), breed));
            deel.resize(breed);
        } else
            deel.assign(deel.rbegin(), deel.rend());
        s += deel;
    }
    if (d.dupflag == 'J')
        for (int i = 3; i >= 0; i--)
            s += static_cast<char>(currec >> (8 * i));
    memcpy(keybuf, s.data(), s.size());
}

void Model::rdix(int32_t b) {
    node = blok.at(static_cast<size_t>(b));
    curblock = b;
    if (b == node[0])
        parent[niveau()] = -1;
    if (niveau() >= 2)
        parent[niveau() - 1] = b;
}

void Model::wrix(int32_t b) {
    if (static_cast<size_t>(b) >= blok.size())
        blok.resize(static_cast<size_t>(b) + 1);
    blok[static_cast<size_t>(b)] = node;
}

void Model::kies(int k) {
    if (node[0] != k)
        rdix(k);
}

void Model::lockey() {
    curent = 5;
    while (curent < einde() && comp(keybuf, op(curent), def().keylen) > 0)
        curent += stap();
}

int32_t Model::wijzer(int plaats) const {
    int32_t n;
    memcpy(&n, op(plaats + def().keylen), 4);
    return n;
}

// Climb from where the last search ended, then descend.
int32_t Model::zoek_gelijk() {
    auto erin = [&] {
        const uint8_t *eerste = op(5), *laatste = op(5 + (aantal() - 1) * stap());
        return comp(keybuf, eerste, def().keylen) > 0 && comp(keybuf, laatste, def().keylen) <= 0;
    };
    while (!erin() && parent[niveau()] != -1)
        rdix(parent[niveau()]);
    for (;;) {
        lockey();
        if (niveau() == 1)
            return comp(keybuf, op(curent), def().keylen) == 0 ? wijzer(curent) : -1;
        rdix(wijzer(curent));
    }
}

void Model::inskey() {
    memmove(op(curent + stap()), op(curent), static_cast<size_t>(einde() - curent));
    memcpy(op(curent), keybuf, def().keylen);
    zet32(op(curent + def().keylen), insptr);
    if (++aantal() != def().maxent)
        wrix(curblock);
    else
        split();
}

void Model::split() {
    const int links = def().maxent * 7 / 10, lengte = def().keylen;
    const bool wortel = parent[niveau()] == -1;
    if (wortel) {
        parent[niveau()] = node[0];
        parent[niveau() + 1] = -1;
    }
    auto kopie = node;
    auto neem = [&](int van, int tot) {
        std::fill(node.begin() + 5, node.end(), uint8_t{0});
        std::copy(kopie.begin() + 5 + van * stap(), kopie.begin() + 5 + tot * stap(), node.begin() + 5);
        aantal() = static_cast<uint8_t>(tot - van);
    };
    neem(0, links);
    insptr = h.nblocks++;
    wrix(insptr);
    memcpy(keybuf, &kopie[static_cast<size_t>(5 + (links - 1) * stap())], static_cast<size_t>(lengte));
    neem(links, def().maxent);
    if (wortel) {
        wrix(h.nblocks);
        std::fill(node.begin() + 5, node.end(), uint8_t{0});
        node[1]++;
        aantal() = 2;
        memcpy(op(5), keybuf, static_cast<size_t>(lengte));
        zet32(op(5 + lengte), insptr);
        memset(op(5 + stap()), 0xFF, static_cast<size_t>(lengte));
        zet32(op(5 + stap() + lengte), h.nblocks);
        wrix(node[0]);
        h.nblocks++;
        return;
    }
    wrix(curblock);
    rdix(parent[niveau()]);
    lockey();
    inskey();
}

void Model::delentry() {
    rdix(curblock);
    lockey();
    const bool laatste = curent + stap() == einde();
    memmove(op(curent), op(curent + stap()), static_cast<size_t>(einde() - curent - stap()));
    memset(op(einde() - stap()), 0, static_cast<size_t>(stap()));
    aantal()--;
    wrix(curblock);
    if (!laatste)
        return;
    curblock = parent[niveau()];
    if (aantal() == 0)
        return delentry();
    uint8_t nieuw[64];
    memcpy(nieuw, op(einde() - stap()), def().keylen);
    setsep(nieuw);
}

void Model::setsep(const uint8_t* nieuw) {
    rdix(curblock);
    lockey();
    memcpy(op(curent), nieuw, def().keylen);
    wrix(curblock);
    if (curent + stap() != einde())
        return;
    curblock = parent[niveau()];
    setsep(nieuw);
}

void Model::sleutel_in(int k, const uint8_t* rec) {
    kies(k);
    bouw(rec);
    zoek_gelijk();
    insptr = currec;
    inskey();
}

void Model::sleutel_uit(int k, const uint8_t* rec) {
    kies(k);
    bouw(rec);
    zoek_gelijk();
    delentry();
}

int32_t Model::zoek(const uint8_t* rec) {
    kies(1);
    bouw(rec);
    return currec = zoek_gelijk();
}

void Model::schrijf(const uint8_t* rec) {
    const size_t n = static_cast<size_t>(h.reclen);
    auto slot = [&] { return &data[static_cast<size_t>(currec) * n]; };
    if (zoek(rec) >= 0) {
        for (int k = 1; k <= h.nkeys; k++) {
            uint8_t nieuw[64];
            kies(k);
            bouw(rec);
            memcpy(nieuw, keybuf, sizeof nieuw);
            bouw(slot());
            if (comp(nieuw, keybuf, def().keylen) == 0)
                continue;
            sleutel_uit(k, slot());
            sleutel_in(k, rec);
        }
    } else {
        if (h.freehead != -1) {
            currec = h.freehead;
            memcpy(&h.freehead, slot() + 1, 4);
        } else {
            currec = h.nrecs++;
            data.resize(data.size() + n);
        }
        for (int k = 1; k <= h.nkeys; k++)
            sleutel_in(k, rec);
    }
    memcpy(slot(), rec, n);
}

void Model::wis(const uint8_t* rec) {
    for (int k = h.nkeys; k >= 1; k--)
        sleutel_uit(k, rec);
    uint8_t* p = &data[static_cast<size_t>(currec) * static_cast<size_t>(h.reclen)];
    memset(p, 0xFF, static_cast<size_t>(h.reclen));
    zet32(p + 1, h.freehead);
    h.freehead = currec;
}

std::string Model::verschil(const std::string& naam) const {
    std::string index = lees_bestand(naam + ".INX"), inhoud = lees_bestand(naam + ".TXT");
    if (inhoud != std::string(data.begin(), data.end()))
        return "the data files differ";
    if (index.size() != blok.size() * IXBLOK)
        return "blocks: " + std::to_string(index.size() / IXBLOK) + ", expected " +
               std::to_string(blok.size());
    if (memcmp(index.data(), &h, sizeof h) != 0)
        return "the headers differ";
    for (size_t b = 1; b < blok.size(); b++)
        if (memcmp(index.data() + b * IXBLOK, blok[b].data(), IXBLOK) != 0)
            return "block " + std::to_string(b) + " is " +
                   testing::PrintToString(index.substr(b * IXBLOK, IXBLOK));
    return "";
}

} // namespace zg::test
