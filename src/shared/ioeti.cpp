// Module ioeti: walks along the chain of a series, and labels read, written and deleted one by one.
#include "shared/ioeti.h"
#include "shared/etibinnen.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

namespace zg {

using namespace eti;

namespace {

int32_t getal20;

// Where a walk stands: the place given last. Behind the tenth when the chain has ended.
int32_t plek_blok = -1;
int plek;
int64_t stappen; // blocks of the walk

// No place in front of this one is free; block -1: not known.
int32_t zoek_blok = -1;
int zoek_plek;

std::unordered_map<int32_t, uint16_t> btw; // by article group, until the file is opened anew

void vergeet_btw() {
    btw.clear();
}

// VAT of a label that doesn't hold it, tenths of a per cent.
uint16_t btw_van(int32_t artikelgroep) {
    constexpr int BTWCODES = 10;
    if (const auto bekend = btw.find(artikelgroep); bekend != btw.end())
        return bekend->second;
    stam_houder(vergeet_btw);
    artrec groep{};
    const bool er =
        artikelgroep && (dtart ? leesart(dtart, &groep, artikelgroep) : opart(&groep, artikelgroep));
    const int code = er ? groep.btwcode : 1;
    return btw[artikelgroep] = code >= 1 && code <= BTWCODES ? firma.btw[code - 1] : uint16_t{0};
}

void pak_uit(const uint8_t* plaats, const seriesleutel& van, uint16_t etiketsoort, etiket* label) {
    eti_uit(plaats, van, static_cast<uint8_t>(etiketsoort), label);
    if (label->status == ETI_ORDER || label->status == ETI_VOORRAAD)
        label->btw = btw_van(van.artikelgroep);
}

int64_t plaats_van(int32_t nr, int plaats) {
    return begin(nr) + static_cast<int64_t>(offsetof(etiblok, plaats)) + plaats * ETIPLAATS;
}

// A label number into block and place. False when there can't be such a label.
bool ontleed(int32_t nummer, int32_t* nr, int* plaats) {
    if (nummer <= 0)
        return false;
    *nr = (nummer - 1) / ETIPLAATSEN;
    *plaats = (nummer - 1) % ETIPLAATSEN;
    return *nr <= ioeti_hoogste_blok() && (*nr < ioeti_hoogste_blok() || *plaats < ETIPLAATSEN - 1);
}

bool te_nummeren(int32_t nr, int plaats) {
    return nr < ioeti_hoogste_blok() || plaats < ETIPLAATSEN - 1;
}

// The next filled place from the present one on.
int zoek_label(int32_t* nummer, etiket* label) {
    for (;;) {
        for (; plek < ETIPLAATSEN; plek++) {
            const uint8_t status = eti_status(blok.plaats[plek]);
            if (status == ETI_VRIJ || !te_nummeren(plek_blok, plek))
                continue;
            if (status > ETI_CORRECTIE) {
                beschadigd(plek_blok, "%s %d", TXT(T_ETI_STATUS), status);
                return -1;
            }
            pak_uit(blok.plaats[plek], blok.serie, blok.etiketsoort, label);
            *nummer = plek_blok * ETIPLAATSEN + plek + 1;
            return 1;
        }
        const int verder = volgend_blok(&stappen);
        if (verder <= 0)
            return verder;
        plek_blok = blok_nr;
        plek = 0;
    }
}

int eerste(int32_t* nummer, etiket* label) {
    vergeet_mee();
    stappen = 1;
    plek_blok = *nummer;
    plek = 0;
    return lees(plek_blok) ? zoek_label(nummer, label) : -1;
}

int volgende(int32_t* nummer, etiket* label) {
    if (plek_blok < 0)
        return 0;
    if (!lees(plek_blok))
        return -1;
    plek = std::min(plek + 1, ETIPLAATSEN);
    return zoek_label(nummer, label);
}

int lees_label(int32_t nummer, etiket* label) {
    *label = {};
    int32_t nr;
    int plaats;
    etiblok los;
    if (!ontleed(nummer, &nr, &plaats) || !lees_los(nr, &los))
        return 0;
    blok = los;
    blok_nr = plek_blok = nr;
    plek = plaats;
    stappen = 1;
    pak_uit(blok.plaats[plaats], blok.serie, blok.etiketsoort, label);
    return label->status != ETI_VRIJ;
}

// Over a place of the block in memory.
bool schrijf_plaats(int plaats, const uint8_t* bytes) {
    uint8_t* oud = blok.plaats[plaats];
    if (!memcmp(oud, bytes, ETIPLAATS))
        return true;
    vergeet_mee();
    if (SYSSCHRIJFOP(fd, bytes, ETIPLAATS, plaats_van(blok_nr, plaats))) {
        memcpy(oud, bytes, ETIPLAATS);
        return true;
    }
    const int fout = errno;
    SYSSCHRIJFOP(fd, oud, ETIPLAATS, plaats_van(blok_nr, plaats)); // it was half written, perhaps
    ioeti_vergeet();
    SCHRIJFFOUT(BESTAND, fout);
    return false;
}

// System record 20 has no number, and marks of labels in stock are ours.
bool merk_stopt() {
    return eti_intern && !getal20;
}

bool pak_in(const etiket& label, const uint8_t* was, uint8_t* plaats, int32_t nummer) {
    if (label.status == ETI_VOORRAAD && label.merk_aan && merk_stopt())
        INTERNAL("ioeti", 5);
    if (eti_pak(label, was, plaats))
        return true;
    char regel[80];
    snprintf(regel, sizeof regel, TXT(T_ETI_TE_GROOT), nummer);
    ALARMBOX(regel);
    return false;
}

// The chain's first free place that is known: the block in memory is the one with it, or the last. Damage stops.
bool vrije_plaats(int* plaats) {
    int32_t nr = zoek_blok >= 0 ? zoek_blok : *kop;
    *plaats = zoek_blok >= 0 ? zoek_plek : 0;
    if (nr < 0)
        return false;
    if (!lees(nr))
        stop(ioeti_schade().blok);
    for (int64_t gelopen = 1;;) {
        for (; *plaats < ETIPLAATSEN; ++*plaats)
            if (eti_status(blok.plaats[*plaats]) == ETI_VRIJ && te_nummeren(blok_nr, *plaats)) {
                zoek_blok = blok_nr;
                zoek_plek = *plaats;
                return true;
            }
        const int verder = volgend_blok(&gelopen);
        if (verder < 0)
            stop(ioeti_schade().blok);
        if (!verder)
            break;
        *plaats = 0;
    }
    zoek_blok = blok_nr; // full to the last place of the last block
    zoek_plek = ETIPLAATSEN;
    return false;
}

int schrijf_erbij(int32_t* nummer, const etiket& label) {
    if (!gewapend)
        INTERNAL("ioeti", 6);
    uint8_t bytes[ETIPLAATS];
    if (!pak_in(label, nullptr, bytes, 0))
        return 0;
    int plaats;
    if (vrije_plaats(&plaats)) {
        if (!schrijf_plaats(plaats, bytes))
            return 0;
        *nummer = blok_nr * ETIPLAATSEN + plaats + 1;
        return 1;
    }
    int32_t nr;
    if (!nieuw_blok(*kop < 0 ? -1 : blok_nr, label.etiketsoort, bytes, &nr))
        return 0;
    zoek_blok = nr;
    zoek_plek = 1;
    *nummer = nr * ETIPLAATSEN + 1;
    return 1;
}

int schrijf(int32_t* nummer, const etiket& label) {
    if (!*nummer)
        return schrijf_erbij(nummer, label);
    int32_t nr;
    int plaats;
    if (!ontleed(*nummer, &nr, &plaats)) {
        nr = *nummer > 0 ? (*nummer - 1) / ETIPLAATSEN : -1;
        beschadigd(nr, "%s", TXT(T_ETI_ONGELDIG));
        stop(nr);
    }
    if (!lees(nr))
        stop(nr);
    uint8_t bytes[ETIPLAATS];
    const bool stond = eti_status(blok.plaats[plaats]) != ETI_VRIJ;
    return pak_in(label, stond ? blok.plaats[plaats] : nullptr, bytes, *nummer) &&
           schrijf_plaats(plaats, bytes);
}

int verwijder(int32_t nummer) {
    if (plek_blok < 0 || plek >= ETIPLAATSEN || nummer != plek_blok * ETIPLAATSEN + plek + 1)
        return 1;
    if (!lees(plek_blok))
        stop(plek_blok);
    const uint8_t leeg[ETIPLAATS] = {};
    zoek_blok = -1;
    return schrijf_plaats(plek, leeg) ? 0 : -1;
}

int nieuw(int32_t* nummer, const etiket& label) {
    if (!gewapend)
        INTERNAL("ioeti", 6);
    int32_t laatste = *kop, nr;
    int64_t gelopen = 1;
    if (laatste >= 0) {
        int verder = lees(laatste) ? 1 : -1;
        while (verder > 0)
            verder = volgend_blok(&gelopen);
        if (verder < 0)
            stop(ioeti_schade().blok);
        laatste = blok_nr;
    }
    if (!nieuw_blok(laatste, label.etiketsoort, nullptr, &nr))
        return 0;
    *nummer = nr * ETIPLAATSEN + 1;
    return 1;
}

void open_bestand() {
    if (fd >= 0)
        INTERNAL("ioeti", 3);
    fd = SYS.open(BESTAND, O_RDWR | O_CLOEXEC, 0);
    if (fd < 0)
        OPENFAIL("ioeti", BESTAND);
    ioeti_vergeet();
    vergeet_btw();
    sysgetal getal;
    int32_t nr = 20;
    iotab('R', &nr, &getal, SYS_RECORD);
    getal20 = getal.waarde;
    eti_intern = getenv("ZEB_INTERN") != nullptr;
}

} // namespace

int64_t ioeti_plaatsen() {
    return stappen * ETIPLAATSEN;
}

int ioeti(char actie, int32_t* nummer, etiket* label) {
    letter = actie;
    if (actie == 'O') {
        open_bestand();
        return 0;
    }
    if (fd < 0 && actie != 'C')
        INTERNAL("ioeti", 2);
    switch (actie) {
    case 'C':
        if (fd >= 0)
            SYS.close(fd);
        fd = -1;
        ioeti_keten(nullptr, nullptr);
        gebruiker_stand(1);
        return 1;
    case 'R':
        return lees_label(*nummer, label);
    case 'F':
        return eerste(nummer, label);
    case 'N':
        return volgende(nummer, label);
    case 'W':
        return schrijf(nummer, *label);
    case 'D':
        return verwijder(*nummer);
    case 'I':
        return nieuw(nummer, *label);
    default:
        return 0;
    }
}

int ioeti_status(char actie, int32_t* nummer, etiket* label, uint8_t status) {
    if (!strchr("FRN", actie) || !actie)
        INTERNAL("ioeti", 4);
    int uit = ioeti(actie, nummer, label);
    while (uit > 0 && label->status != status)
        uit = ioeti('N', nummer, label);
    return uit;
}

void ioeti_keten(const seriesleutel* van, int32_t* eerste) {
    gewapend = van && eerste;
    serie = gewapend ? *van : seriesleutel{};
    kop = gewapend ? eerste : nullptr;
    ioeti_vergeet();
}

void ioeti_vergeet() {
    zoek_blok = -1;
    blok_nr = -1;
    vergeet_mee();
}

void ioeti_heropen() {
    if (fd >= 0)
        SYS.close(fd);
    fd = -1;
    ioeti('O', nullptr, nullptr);
}

bool ioeti_past(int64_t labels) {
    if (!gewapend)
        INTERNAL("ioeti", 6);
    letter = 'T';
    int64_t vrij = 0, gelopen = 1;
    int verder = *kop < 0 ? 0 : lees(*kop) ? 1 : -1;
    for (; verder > 0 && vrij < labels; verder = volgend_blok(&gelopen))
        for (int i = 0; i < ETIPLAATSEN; i++)
            vrij += eti_status(blok.plaats[i]) == ETI_VRIJ && te_nummeren(blok_nr, i);
    if (vrij >= labels)
        return true;
    const int64_t nodig = (labels - vrij + ETIPLAATSEN - 1) / ETIPLAATSEN;
    const int64_t ruimte = verder < 0 ? -1 : ioeti_ruimte(nodig);
    if (ruimte < 0) {
        ioeti_schademeld(serie);
        return false;
    }
    if (labels - vrij < ruimte * ETIPLAATSEN) // the highest block has a place less
        return true;
    char regel[80];
    snprintf(regel, sizeof regel, TXT(T_ETI_GEEN_RUIMTE), static_cast<long>(labels));
    ALARMBOX(regel);
    return false;
}

void ioeti_merktoets() {
    etiket label;
    int32_t nummer = kop ? *kop : -1;
    if (!merk_stopt() || nummer < 0)
        return;
    for (int er = ioeti_status('F', &nummer, &label, ETI_VOORRAAD); er > 0;
         er = ioeti_status('N', &nummer, &label, ETI_VOORRAAD))
        if (label.merk_aan)
            INTERNAL("ioeti", 5);
}

} // namespace zg
