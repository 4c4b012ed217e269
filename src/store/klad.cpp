// The rough copy of a change; see store/klad.h.
#include "store/klad.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "store/bestand.h"
#include "store/cache.h"
#include "store/kaart.h"
#include "store/keur.h"
#include "store/kop.h"
#include "store/node.h"
#include "store/uitstel.h"
#include <algorithm>
#include <cerrno>
#include <vector>

namespace zg {
namespace {

struct Blad {
    int32_t blok;
    bool nieuw, vuil;
    uint8_t was[IXBLOK], wordt[IXBLOK];
};

// One change at a time: there is one thread, and a change ends before anything else of the store begins.
struct Klad {
    ICB* icb = nullptr;
    IXHEADER oud{};
    std::vector<Blad> bladen;
    size_t aantal = 0; // of `bladen` in use; the others keep their memory
    Kladsoort soort{};
    bool record = false, achteraan = false;
    int32_t recnr = -1;
    uint8_t rec_was[IXRECMAX], rec_wordt[IXRECMAX];
    IXGETUIGE getuige{};
    uint8_t begin[(IXSLEUTELS + 2) * IXBLOK]; // header, roots and queue, as read behind the header's lock
    int32_t begin_blokken = 0;
    uint32_t telling = 0;        // change count on disk
    std::vector<Blad*> volgorde; // of the writes
    size_t geschreven = 0;       // of them begun
    bool rij = false;            // the lock of the queue is held
    uint64_t gedaan = 0;         // since the program began
    bool kaart = false;          // what is in use is written in the mapping
    std::vector<uint8_t> nieuw;  // blocks, as one piece
    bool kop_geraakt = false, record_geraakt = false, kop_af = false;
    // On a shared file system: whose change the blocks are of, the count that it left, and is the size of the data file known?
    const ICB* warm = nullptr;
    uint32_t warm_telling = 0;
    bool omvang = false;
} klad;

Blad* zoek(int32_t blok) {
    for (size_t i = 0; i < klad.aantal; i++)
        if (klad.bladen[i].blok == blok)
            return &klad.bladen[i];
    return nullptr;
}

Blad& nieuw_blad(int32_t blok) {
    if (klad.aantal == klad.bladen.size())
        klad.bladen.emplace_back();
    Blad& b = klad.bladen[klad.aantal++];
    b.blok = blok;
    b.nieuw = b.vuil = false;
    return b;
}

bool schrijf_record() {
    klad.record_geraakt = true;
    ICB* icb = klad.icb;
    const size_t n = static_cast<size_t>(icb->h.reclen);
    if (!SYSSCHRIJFOP(icb->datfd, klad.rec_wordt, n, int64_t{klad.recnr} * icb->h.reclen))
        return false;
    if (!IXKIJKNA(icb, klad.getuige, klad.recnr, icb->h.nrecs))
        IXINGEKORT(icb);
    IXCOMMITHOOK();
    return true;
}

bool met_kop() {
    return klad.icb->mode != 1;
}

// New blocks by number, then those in use from the root down, and the queue, whose level is 0.
void zet_volgorde() {
    klad.volgorde.clear();
    for (size_t i = 0; i < klad.aantal; i++)
        if (klad.bladen[i].vuil)
            klad.volgorde.push_back(&klad.bladen[i]);
    std::sort(klad.volgorde.begin(), klad.volgorde.end(), [](const Blad* a, const Blad* b) {
        if (a->nieuw != b->nieuw)
            return a->nieuw;
        if (a->nieuw)
            return a->blok < b->blok;
        const auto niveau = [](const Blad* x) { return reinterpret_cast<const IXKNOOP*>(x->wordt)->level; };
        return niveau(a) != niveau(b) ? niveau(a) > niveau(b) : a < b;
    });
}

// The header as it was, marked; on disk only, the handle itself goes on reading.
bool schrijf_kop(const IXHEADER& h, Kopmerk merk) {
    if (!klad.kaart)
        return IXKOPSCHRIJF(klad.icb->idxfd, h, merk, &klad.telling);
    IXKOPZET(klad.icb->idxfd, h, merk, &klad.telling);
    IXCOMMITHOOK();
    return true;
}

bool merk() {
    return schrijf_kop(klad.oud, K_BEZIG);
}

// The new blocks, whose numbers follow each other, with one call.
bool schrijf_nieuwe() {
    klad.nieuw.clear();
    for (const Blad* b : klad.volgorde)
        if (b->nieuw)
            klad.nieuw.insert(klad.nieuw.end(), b->wordt, b->wordt + IXBLOK);
    const size_t n = klad.nieuw.size() / IXBLOK;
    if (n == 0)
        return true;
    klad.geschreven = n;
    if (!IXBLOKSCHRIJF(klad.icb->idxfd, klad.oud.nblocks, klad.nieuw.data(), n))
        return false;
    IXCOMMITHOOK();
    return true;
}

bool schrijf_blok(int32_t blok, const uint8_t* inhoud) {
    if (klad.kaart)
        IXKAARTZET(klad.icb->idxfd, int64_t{blok} * IXBLOK, inhoud, IXBLOK);
    else if (!IXBLOKSCHRIJF(klad.icb->idxfd, blok, inhoud))
        return false;
    IXCOMMITHOOK();
    return true;
}

// An exclusive handle's change: the mark, and are its blocks held back? What may not be keeps no others back either.
bool begin_alleen(bool* wacht) {
    ICB* icb = klad.icb;
    const bool kan = icb->filelocked && !icb->tempidx && klad.record && klad.soort == KL_INSERT && !klad.rij;
    if (!IXALLEENMERK(icb, klad.oud))
        return false;
    const Uitstelling u =
        kan ? UITSTELRUIMTE(icb, klad.volgorde.size(), klad.oud.nblocks, icb->h.nblocks) : U_NIET;
    *wacht = u == U_RUIMTE;
    return u == U_RUIMTE || (u == U_NIET && (klad.volgorde.empty() || UITSTELUIT(icb)));
}

bool schrijf_alles(bool* wacht) {
    ICB* icb = klad.icb;
    if (met_kop()) {
        klad.kop_geraakt = true;
        if (!merk())
            return false;
    } else if (!begin_alleen(wacht))
        return false;
    if (klad.record && klad.soort != KL_DELETE && !schrijf_record())
        return false;
    if (*wacht) {
        for (const Blad* b : klad.volgorde)
            UITSTELZET(icb, b->blok, b->wordt);
        return true;
    }
    if (!schrijf_nieuwe())
        return false;
    for (; klad.geschreven < klad.volgorde.size();) {
        const Blad* b = klad.volgorde[klad.geschreven++];
        if (!schrijf_blok(b->blok, b->wordt))
            return false;
    }
    if (klad.record && klad.soort == KL_DELETE && !schrijf_record())
        return false;
    if (klad.kaart &&
        IXKAARTGAT(icb->idxfd)) // the file was cut, and what was written with it: the mark stays
        IXSTUK(icb, 0);
    klad.kop_af = met_kop();
    return !met_kop() || schrijf_kop(icb->h, K_RUST);
}

bool staat(int fd, int64_t plaats, const void* was, size_t n) {
    std::vector<uint8_t> nu(n);
    return SYSLEES(fd, nu.data(), n, plaats) == static_cast<ssize_t>(n) && memcmp(nu.data(), was, n) == 0;
}

// Bytes as they stood. When even that is refused: do they stand there all the same?
bool zet_terug(int fd, int64_t plaats, const void* was, size_t n) {
    return SYSSCHRIJFOP(fd, was, n, plaats) || staat(fd, plaats, was, n);
}

bool kort_af(int fd, int64_t lengte) {
    const int64_t nu = SYSOMVANG(fd);
    return nu == lengte || (nu > lengte && SYS.ftruncate(fd, lengte) == 0);
}

bool record_terug() {
    if (!klad.record_geraakt)
        return true;
    const ICB* icb = klad.icb;
    const int64_t plaats = int64_t{klad.recnr} * icb->h.reclen;
    return klad.achteraan ? kort_af(icb->datfd, plaats)
                          : zet_terug(icb->datfd, plaats, klad.rec_was, static_cast<size_t>(icb->h.reclen));
}

// Everything as it stood, in the reverse order. The mark goes only when all else is back; the refused write of the last
// header may have taken it away already.
bool alles_terug() {
    ICB* icb = klad.icb;
    if (klad.kop_af && !merk())
        return false;
    bool goed = klad.soort != KL_DELETE || record_terug(), gegroeid = false;
    for (size_t i = klad.geschreven; i-- > 0;) {
        const Blad& b = *klad.volgorde[i];
        if (b.nieuw)
            gegroeid = true;
        else if (klad.kaart)
            goed &= schrijf_blok(b.blok, b.was) && !IXKAARTGAT(icb->idxfd);
        else
            goed &= zet_terug(icb->idxfd, int64_t{b.blok} * IXBLOK, b.was, IXBLOK);
    }
    if (gegroeid)
        goed &= kort_af(icb->idxfd, int64_t{klad.oud.nblocks} * IXBLOK);
    if (klad.soort != KL_DELETE)
        goed &= record_terug();
    if (!goed || !klad.kop_geraakt)
        return goed;
    // With a count that goes on: a reader may have seen the change half done.
    return schrijf_kop(klad.oud, K_RUST) || staat(icb->idxfd, 0, &klad.oud, sizeof klad.oud);
}

// Nobody has changed the pair since this handle did: what it read and wrote then stands there still, but for the queue, which
// isn't counted.
void blijf_warm(const ICB* icb) {
    constexpr size_t MEEST = 32;
    size_t n = 0;
    for (size_t i = 0; i < klad.aantal; i++) {
        Blad& b = klad.bladen[i];
        if (b.blok == WACHTRIJBLOK(icb))
            continue;
        memcpy(b.was, b.wordt, IXBLOK);
        b.nieuw = b.vuil = false;
        if (n != i)
            klad.bladen[n] = b;
        n++;
    }
    klad.aantal = n > MEEST ? 0 : n;
}

void einde(bool geschreven = false) {
    ICB* icb = klad.icb;
    klad.warm = geschreven && icb->mode != 1 && !IXKAARTER(icb->idxfd) && IOGEDEELD() ? icb : nullptr;
    klad.warm_telling = klad.telling;
    klad.icb = nullptr;
    if (klad.rij)
        IXRIJLOS(icb, geschreven);
    IXGEZIEN(icb, icb->h, icb->mode != 1 ? klad.telling : 0);
    if (icb->mode != 1)
        IXLOCK(icb, 12);
}

// What was worked out is not what stands: back to the header as it was, and no node in hand.
void ongedaan(ICB* icb) {
    const int8_t sleutel = KNOOP(icb).keyno;
    icb->h = klad.oud;
    einde();
    memset(icb->node, 0, sizeof icb->node);
    IXKIES(icb, sleutel);
}

} // namespace

void KLADBEGIN(ICB* icb) {
    if (icb->cached) // a bulk job is over when records are written
        IOCACHE('F', icb, 0);
    klad.begin_blokken = 0;
    if (icb->mode != 1) {
        IXLOCK(icb, 2);
        if (icb->h.busy)
            IXINCONSISTENT(icb);
        klad.begin_blokken = IXLEESBEGIN(icb, klad.begin, &klad.telling);
        if (icb->h.busy)
            IXINCONSISTENT(icb);
    }
    klad.icb = icb;
    klad.oud = icb->h;
    if (klad.warm == icb && klad.begin_blokken > 0 && klad.telling == klad.warm_telling)
        blijf_warm(icb);
    else
        klad.aantal = klad.omvang = 0;
    klad.geschreven = 0;
    klad.record = klad.rij = klad.kop_geraakt = klad.record_geraakt = klad.kop_af = false;
    // An exclusive handle goes on with the node that it has in hand, without reading it again.
    if (ALLEEN(icb) && !icb->koplock && !IXKAARTER(icb->idxfd) && KNOOP(icb).level > 0 &&
        KNOOP(icb).count > 0)
        KLADGELEZEN(icb, icb->curblock);
}

void KLADWEG(ICB* icb) {
    ongedaan(icb);
}

void KLADRECORD(ICB* icb, Kladsoort soort, const void* was, const void* wordt, IXGETUIGE voor) {
    const size_t n = static_cast<size_t>(icb->h.reclen);
    klad.soort = soort;
    klad.record = true;
    klad.recnr = icb->currec;
    klad.achteraan = !was;
    klad.getuige = voor;
    if (was)
        memcpy(klad.rec_was, was, n);
    memcpy(klad.rec_wordt, wordt, n);
}

void KLADRIJ(int32_t blok, const void* was, const void* wordt) {
    klad.rij = true;
    if (!was)
        return;
    Blad& b = nieuw_blad(blok);
    memcpy(b.was, was, IXBLOK);
    memcpy(b.wordt, wordt, IXBLOK);
    b.vuil = true;
}

int KLADSCHRIJF(ICB* icb) {
    zet_volgorde();
    // Stored bytes come one by one, and a writer may lose the processor between two of them. Readers wait for the mark of a
    // shared handle, not for that of an exclusive one, whose blocks are therefore written by calls, each at once.
    klad.kaart = icb->mode != 1 && IXKAARTZETTEN(icb->idxfd, int64_t{klad.oud.nblocks} * IXBLOK);
    if (IXKEURAAN) {
        std::vector<Gekeurd> blokken;
        for (size_t i = 0; i < klad.aantal; i++)
            if (klad.bladen[i].blok != WACHTRIJBLOK(icb))
                blokken.push_back({klad.bladen[i].blok, klad.bladen[i].nieuw ? nullptr : klad.bladen[i].was,
                                   klad.bladen[i].wordt});
        IXKEUR(icb, blokken.data(), blokken.size());
    }
    klad.gedaan++;
    bool wacht = false;
    if (schrijf_alles(&wacht)) {
        einde(true);
        if (klad.soort == KL_INSERT && icb->filelocked && !wacht)
            IXVERGEETNA(icb);
        return 1;
    }
    const int fout = errno;
    if (!alles_terug()) {
        icb->h.busy = klad.kop_geraakt;
        errno = fout;
        IXSCHIJFFOUT(icb, icb->datfd, int64_t{klad.recnr} * icb->h.reclen, icb->h.reclen);
    }
    ongedaan(icb);
    errno = fout;
    return 0;
}

uint64_t KLADTELLER() {
    return klad.gedaan;
}

bool KLADOMVANG(bool gekeken) {
    return klad.omvang || (klad.omvang = gekeken && klad.icb && !IXKAARTER(klad.icb->datfd) && IOGEDEELD());
}

void KLADVERGEET(const ICB* icb) {
    if (klad.warm == icb)
        klad.warm = nullptr;
    if (klad.icb == icb)
        klad.icb = nullptr;
}

bool KLADAAN(const ICB* icb) {
    return klad.icb == icb;
}

bool KLADLEES(ICB* icb, int32_t blok) {
    if (const Blad* b = zoek(blok)) {
        memcpy(icb->node, b->wordt, IXBLOK);
        return true;
    }
    if (blok >= klad.begin_blokken)
        return false;
    memcpy(icb->node, klad.begin + blok * IXBLOK, IXBLOK);
    KLADGELEZEN(icb, blok);
    return true;
}

void KLADGELEZEN(ICB* icb, int32_t blok) {
    Blad& b = nieuw_blad(blok);
    memcpy(b.was, icb->node, IXBLOK);
    memcpy(b.wordt, icb->node, IXBLOK);
}

void KLADZET(ICB* icb, int32_t blok) {
    Blad* b = zoek(blok);
    if (!b) {
        b = &nieuw_blad(blok);
        b->nieuw = blok >= klad.oud.nblocks;
        if (!b->nieuw && !IXHEELBLOK(icb, blok, b->was))
            IXSTUK(icb, blok);
    }
    memcpy(b->wordt, icb->node, IXBLOK);
    b->vuil = true;
}

bool KLADRIJLEEG(const ICB* icb) {
    const int32_t rij = WACHTRIJBLOK(icb);
    if (klad.icb == icb && rij < klad.begin_blokken)
        return klad.begin[static_cast<size_t>(rij) * IXBLOK + offsetof(IXKNOOP, count)] == 0;
    IXKNOOP k;
    return klad.icb == icb && IXKAARTER(icb->idxfd) && IXHEELBLOK(icb, rij, &k) && k.keyno == 1 &&
           k.level == 0 && k.count == 0;
}

int32_t KLADBLOKKEN(const ICB* icb) {
    return klad.icb == icb ? klad.oud.nblocks : icb->h.nblocks;
}

bool KLADEERSTE(const ICB* icb) {
    return icb->h.nblocks == klad.oud.nblocks;
}

int IXOVERSCHRIJF(ICB* icb, int fd, int64_t plaats, const void* was, const void* wordt, size_t n) {
    if (SYSSCHRIJFOP(fd, wordt, n, plaats)) {
        IXCOMMITHOOK();
        return 1;
    }
    const int fout = errno;
    if (!zet_terug(fd, plaats, was, n)) {
        errno = fout;
        IXSCHIJFFOUT(icb, fd, plaats, static_cast<int>(n));
    }
    errno = fout;
    return 0;
}

} // namespace zg
