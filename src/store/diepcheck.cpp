// The deep check; see store/diepcheck.h. Nothing here trusts a byte of either file: every number is looked at
// before it is used, a descent goes one level down at each step, and a walk ends after as many steps as the
// file has blocks or records.
#include "store/diepcheck.h"
#include "shared/files.h"
#include "store/bestand.h"
#include "store/node.h"
#include "store/wachten.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace zg {

void (*IXDIEPVOORTGANG)(int64_t gedaan, int64_t totaal) = nullptr;

namespace {

constexpr size_t HAP = 64 * 1024; // bytes of the data file read at once
constexpr size_t SAMEN = 4096;  // of it in a walk along a tree, whose records mostly stand behind each other
constexpr int VOORBEELDEN = 10; // missing records that are named

struct Grens {
    uint8_t sleutel[IXSLEUTELMAX];
    bool er = false; // not at the left edge of a tree
};

struct Check {
    int idxfd, datfd;
    bool tijdelijk;
    IXTELLING* telling;
    IXSPOOR* spoor = nullptr; // the tree by itself: what it leads to is counted, and not told
    std::vector<std::string> uit{};
    IXHEADER h{};
    int64_t blokken = 0, records = 0; // what the files really hold
    int64_t bezocht = 0, gevonden = 0, gedaan = 0, werk = 0;
    int32_t vorig_record = -1;  // of the leaf entry before the one that is looked at
    bool opgegeven = false;     // tree refers to more nodes than there are blocks
    std::vector<bool> geteld{}; // records met in the tree at hand, where its keys may be equal
    int64_t samen_van = 0, samen_tot = 0;
    uint8_t samen[SAMEN]{};

    void meld(const char* fmt, ...) __attribute__((format(printf, 2, 3))) {
        if (++telling->bevindingen > static_cast<int64_t>(IXBEVINDINGEN))
            return;
        char tekst[256];
        va_list ap;
        va_start(ap, fmt);
        vsnprintf(tekst, sizeof tekst, fmt, ap);
        va_end(ap);
        uit.push_back(tekst);
    }
    void vorder(int64_t stap) {
        gedaan += stap;
        if (IXDIEPVOORTGANG && (gedaan % 4096 < stap || gedaan == werk))
            IXDIEPVOORTGANG(std::min(gedaan, werk), werk);
    }
    // The one behind those that were read last comes with more.
    bool lees_record(int64_t nr, uint8_t* rec) {
        const size_t lengte = static_cast<size_t>(h.reclen);
        if (nr < samen_van || nr >= samen_tot) {
            const size_t n = nr == samen_tot ? SAMEN / lengte * lengte : lengte;
            samen_van = samen_tot = nr;
            samen_tot += std::max<ssize_t>(SYSLEES(datfd, samen, n, nr * h.reclen), 0) / h.reclen;
            if (samen_tot == nr)
                return false;
        }
        memcpy(rec, samen + (nr - samen_van) * h.reclen, lengte);
        return true;
    }
    bool lees_blok(int32_t blok, IXKNOOP* k) const { return IXBLOKLEES(idxfd, blok, k, sizeof *k) == IXBLOK; }
    const uint8_t* entry(const IXKNOOP& k, const IXKEYDEF& def, int i) const {
        return k.entries + i * (def.keylen + 4);
    }

    bool kop();
    void data();
    void vrije_keten();
    void wachtrij();
    void boom(int sleutel);
    bool klopt(const IXKEYDEF& def, const uint8_t* e, int32_t nr);
    void knoop(int sleutel, int32_t blok, int niveau, const Grens& laag, const uint8_t* hoog);
    void blad(int sleutel, int32_t blok, const IXKNOOP& k, bool laatste);
    void zoek_ontbrekende(int sleutel);
    bool staat_in(int sleutel, const uint8_t* waarde, int32_t recnr) const;
};

bool nullen(const uint8_t* p, const uint8_t* einde) {
    return std::all_of(p, einde, [](uint8_t b) { return b == 0; });
}

bool vol_ff(const uint8_t* p, int n) {
    return std::all_of(p, p + n, [](uint8_t b) { return b == 0xFF; });
}

long L(int64_t n) {
    return static_cast<long>(n);
}

// False when nothing further can be looked at.
bool Check::kop() {
    int64_t indexgrootte = SYSOMVANG(idxfd), datagrootte = SYSOMVANG(datfd);
    if (indexgrootte < 0 || datagrootte < 0) {
        meld("a file can't be read");
        return false;
    }
    if (IXBLOKLEES(idxfd, 0, &h, sizeof h) != static_cast<ssize_t>(sizeof h)) {
        meld("header: the index file is %ld bytes long, too short for a header", L(indexgrootte));
        return false;
    }
    if (h.version != IXVERSIE)
        meld("header: version %u, not %u", h.version, IXVERSIE);
    if (h.busy)
        meld("header: marked as being changed (%u): a program died while it wrote", h.busy);
    if (const char* fout = IXDEFFOUT(h)) {
        meld("header: %s", fout);
        return false;
    }
    if (const char* fout = IXKOPFOUT(h))
        meld("header: %s", fout);
    if (h.keydef[0].dupflag != 'N')
        meld("header: key 1 allows duplicates");
    blokken = indexgrootte / IXBLOK;
    records = datagrootte / h.reclen;
    telling->blokken = blokken;
    if (indexgrootte != int64_t{h.nblocks} * IXBLOK)
        meld("header: counts %ld blocks, the index file is %ld bytes long", L(h.nblocks), L(indexgrootte));
    if (const int64_t rest = datagrootte % h.reclen)
        meld("data: ends inside a record, %ld bytes behind %ld whole ones (ixremake --truncate)", L(rest),
             L(records));
    if (!tijdelijk && records != h.nrecs)
        meld("header: counts %ld records, the data file holds %ld", L(h.nrecs), L(records));
    werk = records * (1 + (tijdelijk ? 0 : h.nkeys));
    return true;
}

void Check::data() {
    const size_t lengte = static_cast<size_t>(h.reclen);
    std::vector<uint8_t> hap(HAP / lengte * lengte);
    telling->records = records;
    for (int64_t nr = 0; nr < records;) {
        ssize_t n = SYSLEES(datfd, hap.data(), hap.size(), nr * h.reclen);
        int64_t aantal = n < 0 ? 0 : std::min(n / h.reclen, static_cast<ssize_t>(records - nr));
        if (aantal == 0) {
            meld("data: record %ld can't be read", L(nr));
            return;
        }
        for (int64_t i = 0; i < aantal; i++)
            (IXRECLIVE(&hap[static_cast<size_t>(i) * lengte], h.reclen) ? telling->levend : telling->vrij)++;
        nr += aantal;
        vorder(aantal);
    }
}

void Check::vrije_keten() {
    uint8_t rec[IXRECMAX];
    memset(rec, 0xFF, sizeof rec);
    int64_t nr = h.freehead, lengte = 0;
    for (; nr >= 0; lengte++) {
        if (lengte >= records) {
            meld("free chain: runs in a circle");
            return;
        }
        if (nr >= records) {
            meld("free chain: leads to record %ld, behind the last", L(nr));
            return;
        }
        if (!lees_record(nr, rec) || IXRECLIVE(rec, h.reclen)) {
            meld("free chain: leads to record %ld, which is in use", L(nr));
            return;
        }
        nr = LEES32(rec + 1);
    }
    if (nr != -1)
        meld("free chain: ends in %ld, not in -1", L(nr));
    if (lengte != telling->vrij && h.reclen >= 5) // shorter slots have no room for a link
        meld("free chain: has %ld records, the data file has %ld free ones", L(lengte), L(telling->vrij));
}

void Check::wachtrij() {
    const IXKEYDEF& def = h.keydef[0];
    const int32_t blok = h.nkeys + 1;
    IXKNOOP k;
    if (!lees_blok(blok, &k)) {
        meld("lock queue: block %d can't be read", blok);
        return;
    }
    if (k.keyno != 1 || k.level != 0)
        meld("lock queue: block %d is not a queue (key %d, level %d)", blok, k.keyno, k.level);
    if (k.count * def.keylen > KNOOPRUIMTE) {
        meld("lock queue: counts %d keys, more than there is room for", k.count);
        return;
    }
    telling->reserveringen = k.count;
    if (!nullen(k.entries + k.count * def.keylen, k.entries + KNOOPRUIMTE))
        meld("lock queue: there is something behind the last key");
    for (int i = 0; i < k.count; i++)
        for (int j = 0; j < i; j++)
            if (IXVERGELIJK(def, k.entries + i * def.keylen, k.entries + j * def.keylen, def.keylen) == 0)
                meld("lock queue: keys %d and %d are the same", j + 1, i + 1);
}

// Does that record stand there, with the key of its entry?
bool Check::klopt(const IXKEYDEF& def, const uint8_t* e, int32_t nr) {
    uint8_t rec[IXRECMAX], waarde[IXSLEUTELMAX + 4];
    if (nr >= records || !lees_record(nr, rec) || !IXRECLIVE(rec, h.reclen))
        return false;
    IXMAAKSLEUTEL(def, rec, nr, def.keylen, waarde);
    return IXVERGELIJK(def, waarde, e, def.keylen) == 0;
}

void Check::blad(int sleutel, int32_t blok, const IXKNOOP& k, bool laatste) {
    const IXKEYDEF& def = h.keydef[sleutel - 1];
    uint8_t rec[IXRECMAX], waarde[IXSLEUTELMAX + 4];
    for (int i = 0; i < k.count; i++) {
        const uint8_t* e = entry(k, def, i);
        const int32_t nr = LEES32(e + def.keylen);
        if (laatste && i == k.count - 1) {
            if (nr != -1)
                meld("key %d, block %d: the sentinel leads to record %d", sleutel, blok, nr);
            break;
        }
        gevonden++;
        vorder(1);
        if (spoor && nr >= 0) {
            spoor->terug += klopt(def, e, nr);
            continue;
        }
        if (nr < 0 || nr >= records)
            meld("key %d, block %d: entry %d leads to record %d, which does not exist", sleutel, blok, i + 1,
                 nr);
        else if (!lees_record(nr, rec))
            meld("data: record %d can't be read", nr);
        else if (!IXRECLIVE(rec, h.reclen))
            meld("key %d, block %d: entry %d leads to record %d, which is free", sleutel, blok, i + 1, nr);
        else {
            IXMAAKSLEUTEL(def, rec, nr, def.keylen, waarde);
            if (IXVERGELIJK(def, waarde, e, def.keylen) != 0)
                meld("key %d, block %d: entry %d is not the key of its record %d", sleutel, blok, i + 1, nr);
            if (!geteld.empty()) {
                const size_t plaats = static_cast<size_t>(nr);
                if (geteld[plaats]) {
                    meld("key %d, block %d: entry %d leads to record %d a second time", sleutel, blok, i + 1,
                         nr);
                    gevonden--; // or it would stand for one that is missing
                }
                geteld[plaats] = true;
            }
        }
    }
}

// niveau 0: a root, whose level is its own. hoog: separator above, null for the rightmost node of a level.
void Check::knoop(int sleutel, int32_t blok, int niveau, const Grens& laag, const uint8_t* hoog) {
    const IXKEYDEF& def = h.keydef[sleutel - 1];
    IXKNOOP k;
    if (opgegeven)
        return;
    if (++bezocht > blokken) {
        meld("key %d: some block is referred to more than once", sleutel);
        opgegeven = true;
        return;
    }
    if (!lees_blok(blok, &k)) {
        meld("key %d: block %d can't be read", sleutel, blok);
        return;
    }
    telling->gebruikt++;
    if (k.keyno != sleutel) {
        meld("key %d: block %d says that it belongs to key %d", sleutel, blok, k.keyno);
        return;
    }
    if (k.level < 1 || k.level > KNOOPNIVEAUS || (niveau && k.level != niveau)) {
        meld("key %d: block %d says that it is of level %d", sleutel, blok, k.level);
        return;
    }
    if (!niveau)
        telling->diepte[sleutel - 1] = k.level;
    if (k.count < 1 || k.count >= def.maxent) {
        meld("key %d: block %d counts %d entries, of 1 to %d", sleutel, blok, k.count, def.maxent - 1);
        return;
    }
    if (!nullen(entry(k, def, k.count), k.entries + KNOOPRUIMTE))
        meld("key %d: block %d has something behind its last entry", sleutel, blok);

    // Equal neighbours are damage in key 1 and where the record number makes keys differ; else nobody forbids
    // them.
    const int gelijk = sleutel > 1 && def.dupflag == 'N' ? 0 : -1;
    Grens vorige = laag;
    for (int i = 0; i < k.count; i++) {
        const uint8_t* e = entry(k, def, i);
        if (vorige.er) {
            int uitslag = IXVERGELIJK(def, vorige.sleutel, e, def.keylen);
            bool wacht = !hoog && i == k.count - 1; // a real key may be all 0xFF too, before the sentinel
            const bool dubbel = uitslag == 0 && gelijk < 0 && !wacht;
            if (dubbel && k.level == 1)
                meld("key %d: records %d and %d have the same value", sleutel, vorig_record,
                     LEES32(e + def.keylen));
            else if (uitslag > 0 || dubbel)
                meld(uitslag ? "key %d, block %d: entry %d is out of order"
                             : "key %d, block %d: entry %d has the key of the one before it",
                     sleutel, blok, i + 1);
        }
        if (k.level == 1)
            vorig_record = LEES32(e + def.keylen);
        memcpy(vorige.sleutel, e, def.keylen);
        vorige.er = true;
    }
    const uint8_t* top = entry(k, def, k.count - 1);
    if (!hoog && !vol_ff(top, def.keylen))
        meld("key %d, block %d: the sentinel is missing", sleutel, blok);
    if (hoog && IXVERGELIJK(def, hoog, top, def.keylen) != 0)
        meld("key %d, block %d: the separator above is not the highest key", sleutel, blok);

    if (k.level == 1)
        return blad(sleutel, blok, k, !hoog);
    vorige = laag;
    for (int i = 0; i < k.count; i++) {
        const uint8_t* e = entry(k, def, i);
        const int32_t kind = LEES32(e + def.keylen);
        if (kind < h.nkeys + 2 || kind >= blokken)
            meld("key %d, block %d: entry %d leads to block %d, which is no node", sleutel, blok, i + 1,
                 kind);
        else
            knoop(sleutel, kind, k.level - 1, vorige, !hoog && i == k.count - 1 ? nullptr : e);
        memcpy(vorige.sleutel, e, def.keylen);
        vorige.er = true;
    }
}

// Does a search for the key lead to the record?
bool Check::staat_in(int sleutel, const uint8_t* waarde, int32_t recnr) const {
    const IXKEYDEF& def = h.keydef[sleutel - 1];
    int32_t blok = sleutel;
    IXKNOOP k;
    for (int diep = 0; diep < KNOOPNIVEAUS; diep++) {
        if (!lees_blok(blok, &k) || k.keyno != sleutel || k.count >= def.maxent)
            return false;
        int i = 0;
        while (i < k.count && IXVERGELIJK(def, waarde, entry(k, def, i), def.keylen) > 0)
            i++;
        if (i == k.count)
            return false;
        if (k.level == 1) {
            return IXVERGELIJK(def, waarde, entry(k, def, i), def.keylen) == 0 &&
                   LEES32(entry(k, def, i) + def.keylen) == recnr;
        }
        blok = LEES32(entry(k, def, i) + def.keylen);
        if (blok < h.nkeys + 2 || blok >= blokken)
            return false;
    }
    return false;
}

void Check::zoek_ontbrekende(int sleutel) {
    const IXKEYDEF& def = h.keydef[sleutel - 1];
    uint8_t rec[IXRECMAX], waarde[IXSLEUTELMAX + 4];
    int genoemd = 0;
    for (int64_t nr = 0; nr < records && genoemd < VOORBEELDEN; nr++) {
        if (!lees_record(nr, rec) || !IXRECLIVE(rec, h.reclen))
            continue;
        IXMAAKSLEUTEL(def, rec, static_cast<int32_t>(nr), def.keylen, waarde);
        if (geteld.empty() ? !staat_in(sleutel, waarde, static_cast<int32_t>(nr))
                           : !geteld[static_cast<size_t>(nr)]) {
            meld("key %d: record %ld is not found by its key", sleutel, L(nr));
            genoemd++;
        }
    }
}

void Check::boom(int sleutel) {
    gevonden = 0;
    bezocht = 0;
    vorig_record = -1;
    opgegeven = false;
    // Where nothing makes keys differ, entries are counted by the record that they lead to.
    geteld.assign(sleutel > 1 && h.keydef[sleutel - 1].dupflag == 'N' ? static_cast<size_t>(records) : 0,
                  false);
    knoop(sleutel, sleutel, 0, Grens{}, nullptr);
    if (tijdelijk || gevonden == telling->levend)
        return;
    meld("key %d: the tree has %ld records, the data file has %ld in use", sleutel, L(gevonden),
         L(telling->levend));
    zoek_ontbrekende(sleutel);
}

} // namespace

std::vector<std::string> IXDIEPCHECK(int idxfd, int datfd, bool tijdelijk, IXTELLING* telling) {
    IXTELLING eigen;
    Check c{idxfd, datfd, tijdelijk, telling ? telling : &eigen};
    *c.telling = IXTELLING{};
    if (c.kop()) {
        c.data();
        if (!tijdelijk)
            c.vrije_keten();
        c.telling->gebruikt = 2; // header and queue
        c.wachtrij();
        for (int k = 1; k <= c.h.nkeys; k++)
            c.boom(k);
    }
    int64_t meer = c.telling->bevindingen - static_cast<int64_t>(c.uit.size());
    if (meer > 0)
        c.uit.push_back("and " + std::to_string(meer) + " more");
    return c.uit;
}

IXSPOOR IXZOEKTERUG(int idxfd, int datfd, const IXHEADER& h) {
    IXTELLING telling;
    IXSPOOR spoor;
    Check c{idxfd, datfd, false, &telling, &spoor};
    c.h = h;
    if (IXDEFFOUT(h) || h.busy)
        return {};
    c.blokken = SYSOMVANG(idxfd) / IXBLOK;
    c.records = SYSOMVANG(datfd) / c.h.reclen;
    c.knoop(1, 1, 0, Grens{}, nullptr);
    spoor.sleutels = c.gevonden;
    // A single one proves little: its entry may be what was hit. A file with a record in it wasn't emptied.
    uint8_t rec[IXRECMAX];
    for (int64_t nr = 0; c.gevonden == 1 && !spoor.terug && nr < c.records; nr++)
        spoor.terug = c.lees_record(nr, rec) && IXRECLIVE(rec, h.reclen) && !nullen(rec, rec + h.reclen);
    return telling.bevindingen ? IXSPOOR{} : spoor;
}

std::vector<std::string> IXDIEPCHECK(const char* naam, IXTELLING* telling) {
    IXTELLING eigen;
    IXTELLING& t = telling ? *telling : eigen;
    t = IXTELLING{};
    t.bevindingen = 1;
    int idxfd = IXBESTANDOPEN(IXINDEXPAD(naam).c_str(), O_RDWR);
    if (idxfd < 0)
        return {"the index file can't be opened"};
    int datfd = IXBESTANDOPEN(IXDATAPAD(naam).c_str(), O_RDWR);
    if (datfd < 0) {
        IXBESTANDDICHT(idxfd);
        return {"the data file can't be opened"};
    }
    const bool eigen_slot = IXBESTANDVAST(idxfd);
    std::vector<std::string> uit{eigen_slot ? "in use: this program has it open in exclusive mode"
                                            : "in use: the header lock could not be had"};
    for (int ms = 0; ms < CHECKWACHT && !eigen_slot; ms++) {
        if (IOLOCK('E', idxfd, 0, IXBLOK)) {
            uit = IXDIEPCHECK(idxfd, datfd, IXTIJDELIJKENAAM(naam), &t);
            IOLOCK('U', idxfd, 0, IXBLOK);
            break;
        }
        usleep(1000);
    }
    IXBESTANDDICHT(datfd);
    IXBESTANDDICHT(idxfd);
    return uit;
}

} // namespace zg
