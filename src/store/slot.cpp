// Locks of the store: the ranges, what each protects, and the queue of reserved keys. The primitive that asks
// for a lock is IOLOCK (shared/iolock.cpp), which also tells the two traps of these locks.
//
//   header    index, bytes 0 to 511       one writer in the trees; for one update, or open to close in mode 1
//   queue     index, block nkeys + 1      one change of the queue
//   record    data, the record's bytes    a user at work on a record
//   the file  data, 0 to its end          mode 1, open to close; never for a temporary index
//
// Order of taking: record or reservation first, then the header; queue and, for a reused slot, its record
// within.
#include "shared/files.h"
#include "shared/teksten.h"
#include "store/bestand.h"
#include "store/node.h"
#include "store/teksten.h"
#include "store/wachtrij.h"
#include "term/scherm.h"
#include <sched.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr int WACHT = 2; // seconds

void wacht_standaard(ICB* icb) {
    if (!SCHERM.bestaat || SCHERM.dicht || SCHERM.aantal >= VENSTERS) {
        sleep(WACHT);
        return;
    }
    char wat[80];
    snprintf(wat, sizeof wat, "%s", TXT(T_IN_GEBRUIK));
    if (icb->wachtsleutel)
        snprintf(wat, sizeof wat, TXT(T_SLEUTEL_GERESERVEERD),
                 IXSLEUTELTEKST(icb->h.keydef[0], icb->keybuf).c_str());
    WINOPEN1(SCHERM.lines - 1, 1, 1, SCHERM.cols);
    SCRPUT(A_WAARDE, 1, 1, TXT(T_IX_REGEL), icb->h.name, icb->h.title, wat);
    SCRFLUSH(WACHT);
    WINCLOSE();
}

// Header and queue are held for the length of one update, so a short patience comes before the user is told.
bool geduld(char letter, int fd, int64_t start, int64_t lengte) {
    for (int poging = 0; poging < 400; poging++) {
        if (IOLOCK(letter, fd, start, lengte))
            return true;
        if (poging < 50)
            sched_yield();
        else
            usleep(poging < 150 ? 50 : 1000);
    }
    return false;
}

void tot_het_lukt(char letter, ICB* icb, int fd, int64_t start, int64_t lengte) {
    if (icb->filelocked || geduld(letter, fd, start, lengte))
        return;
    while (!IXLOCKRGN(letter, icb, fd, start, lengte))
        ;
}

int64_t recordplaats(const ICB* icb) {
    return int64_t{icb->currec} * icb->h.reclen;
}

// The queue of reserved keys, held by its lock while in use. The node in hand stays what it is.
struct Wachtrij {
    ICB* icb;
    IXKNOOP k;
    const IXKEYDEF& def;

    explicit Wachtrij(ICB* i) : icb(i), def(i->h.keydef[0]) {
        int32_t blok = WACHTRIJBLOK(icb);
        if (icb->h.nkeys < 1)
            IXSTUK(icb, blok);
        tot_het_lukt('E', icb, icb->idxfd, int64_t{blok} * IXBLOK, IXBLOK);
        if (IXBLOKLEES(icb->idxfd, blok, &k, sizeof k) != IXBLOK || k.keyno != 1 || k.level != 0 ||
            k.count * def.keylen > KNOOPRUIMTE)
            IXSTUK(icb, blok);
    }
    ~Wachtrij() { IOLOCK('U', icb->idxfd, int64_t{WACHTRIJBLOK(icb)} * IXBLOK, IXBLOK); }
    Wachtrij(const Wachtrij&) = delete;
    Wachtrij& operator=(const Wachtrij&) = delete;

    uint8_t* sleutel(int i) { return k.entries + i * def.keylen; }
    int vind() {
        for (int i = 0; i < k.count; i++)
            if (IXVERGELIJK(def, icb->keybuf, sleutel(i), def.keylen) == 0)
                return i;
        return -1;
    }
    void schrijf() {
        if (!IXBLOKSCHRIJF(icb->idxfd, WACHTRIJBLOK(icb), &k))
            IXSCHIJFFOUT(icb, icb->idxfd, int64_t{WACHTRIJBLOK(icb)} * IXBLOK, IXBLOK);
        IXCOMMITHOOK();
    }
};

int reserveer(ICB* icb) {
    {
        Wachtrij q(icb);
        if (q.vind() < 0) {
            if (q.def.keylen * (q.k.count + 1) > KNOOPRUIMTE)
                SCRFATAL(TXT(T_IX_REGELPUNT), icb->h.name, icb->h.title, TXT(T_IX_LOCKQUEUE_VOL));
            memcpy(q.sleutel(q.k.count++), icb->keybuf, q.def.keylen);
            q.schrijf();
            return 1;
        }
    }
    icb->wachtsleutel = 1;
    IXWAITHOOK(icb);
    icb->wachtsleutel = 0;
    return 0;
}

void vergeet(ICB* icb) {
    Wachtrij q(icb);
    int i = q.vind();
    if (i < 0)
        return;
    int laatste = --q.k.count;
    if (i != laatste)
        memcpy(q.sleutel(i), q.sleutel(laatste), q.def.keylen);
    memset(q.sleutel(laatste), 0, q.def.keylen);
    q.schrijf();
}

} // namespace

void (*IXWAITHOOK)(ICB* icb) = wacht_standaard;

int IXLOCKRGN(char letter, ICB* icb, int fd, int64_t start, int64_t lengte) {
    IXEIS(icb, "IXLOCKRGN");
    if (icb->filelocked || IOLOCK(letter, fd, start, lengte))
        return 1;
    IXWAITHOOK(icb);
    return 0;
}

int IXLOCK(ICB* icb, int operatie) {
    IXEIS(icb, "IXLOCK");
    switch (operatie) {
    case 1:
        if (!icb->tempidx)
            while (!IXLOCKRGN('S', icb, icb->datfd, 0, 0))
                ;
        tot_het_lukt('E', icb, icb->idxfd, 0, IXBLOK);
        icb->filelocked = 1;
        IXBESTANDVAST(icb->idxfd, true);
        return 1;
    case 2:
        tot_het_lukt('E', icb, icb->idxfd, 0, IXBLOK);
        icb->koplock = 1;
        return 1;
    case 3:
        // The data file of a temporary index belongs to the normal pair, and so do its locks.
        return icb->tempidx ? 1 : IXLOCKRGN('S', icb, icb->datfd, recordplaats(icb), icb->h.reclen);
    case 4:
        return icb->filelocked ? 1 : reserveer(icb);
    case 11:
        icb->filelocked = 0;
        icb->koplock = 0;
        IXBESTANDVAST(icb->idxfd, false);
        if (!icb->tempidx)
            IOLOCK('U', icb->datfd, 0, 0);
        IOLOCK('U', icb->idxfd, 0, IXBLOK);
        return 1;
    case 12:
        icb->koplock = 0;
        if (!icb->filelocked)
            IOLOCK('U', icb->idxfd, 0, IXBLOK);
        return 1;
    case 13:
        if (!icb->filelocked && !icb->tempidx && icb->currec >= 0)
            IOLOCK('U', icb->datfd, recordplaats(icb), icb->h.reclen);
        return 1;
    case 14:
        if (!icb->filelocked)
            vergeet(icb);
        return 1;
    default:
        return 0;
    }
}

} // namespace zg
