// Locks of the store: the ranges, what each protects, and the queue of reserved keys. The primitive that asks
// for a lock is IOLOCK (shared/iolock.cpp), which also tells the two traps of these locks.
//
//   header    index, bytes 0 to 511       one writer in the trees; for one update, or open to close in mode 1
//   queue     index, block nkeys + 1      one change of the queue
//   record    data, the record's bytes    a user at work on a record
//   the file  data, 0 to its end          mode 1, open to close; never for a temporary index
//
// Order of taking: record or reservation first, then the header; the queue within, before the first write. Nobody who
// holds the header waits for a record or for the queue: refused, it ends the bracket without a write, waits outside and
// starts again (store/schrijven.cpp). So nothing is waited for, told or given up while a pair is half changed. Only a
// rebuild, before it writes, and an exclusive handle, behind what it wrote, wait for the queue with the header in hand;
// who has the queue's lock never asks for the header. And an exclusive opener who is refused the header lets go of the data file before he waits: else he and a
// writer could wait for each other.
#include "shared/files.h"
#include "shared/teksten.h"
#include "store/bestand.h"
#include "store/klad.h"
#include "store/node.h"
#include "store/teksten.h"
#include "store/uitstel.h"
#include "store/wachten.h"
#include "store/wachtrij.h"
#include "term/scherm.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

// The keys that this program has reserved: the queue on disk names no owner.
struct Eigen {
    ICB* icb;
    uint8_t sleutel[IXSLEUTELMAX + 4];
};
std::vector<Eigen> eigen;
pid_t eigenaar; // a process that was forked off has nothing reserved

// The records that this program has locked: who gives up one that it hasn't asks for nothing.
struct Slot {
    int fd;
    int32_t nr;
};
std::vector<Slot> sloten; // the last one taken is mostly the first to go

auto vind_slot(const ICB* icb) {
    return std::find_if(sloten.rbegin(), sloten.rend(),
                        [icb](const Slot& s) { return s.fd == icb->datfd && s.nr == icb->currec; });
}

void noteer_slot(const ICB* icb) {
    if (!icb->filelocked && !icb->tempidx && vind_slot(icb) == sloten.rend())
        sloten.push_back({icb->datfd, icb->currec});
}

void geef_alles_terug();

void niet_meer_eigen(const ICB* icb) {
    const IXKEYDEF& def = icb->h.keydef[0];
    std::erase_if(eigen, [&](const Eigen& e) {
        return e.icb == icb && IXVERGELIJK(def, e.sleutel, icb->keybuf, def.keylen) == 0;
    });
}

void wacht_standaard(ICB* icb) {
    if (!SCHERM.bestaat || SCHERM.dicht || SCHERM.aantal >= VENSTERS) {
        sleep(HOOKWACHT);
        return;
    }
    char wat[80];
    snprintf(wat, sizeof wat, "%s", TXT(T_IN_GEBRUIK));
    if (icb->wachtsleutel)
        snprintf(wat, sizeof wat, TXT(T_SLEUTEL_GERESERVEERD),
                 IXSLEUTELTEKST(icb->h.keydef[0], icb->keybuf).c_str());
    WINOPEN1(SCHERM.lines - 1, 1, 1, SCHERM.cols);
    SCRPUT(A_WAARDE, 1, 1, TXT(T_IX_REGEL), icb->h.name, icb->h.title, wat);
    SCRFLUSH(HOOKWACHT);
    WINCLOSE();
}

// Header and queue are held for the length of one update, so a short patience comes before the user is told.
bool geduldig(char letter, int fd, int64_t start, int64_t lengte) {
    for (int poging = 0;; poging++) {
        if (IOLOCK(letter, fd, start, lengte))
            return true;
        if (poging >= IXRUSTIG() - 1)
            return false;
        IXPAUZE(R_SLOT, poging);
    }
}

void tot_het_lukt(char letter, ICB* icb, int fd, int64_t start, int64_t lengte) {
    if (geduldig(letter, fd, start, lengte))
        return;
    while (!IOLOCK(letter, fd, start, lengte))
        IXWAITHOOK(icb);
}

int64_t recordplaats(const ICB* icb) {
    return int64_t{icb->currec} * icb->h.reclen;
}

bool rijslot(char letter, const ICB* icb) {
    return IOLOCK(letter, icb->idxfd, int64_t{WACHTRIJBLOK(icb)} * IXBLOK, IXBLOK);
}

// The queue of reserved keys, held by its lock while in use. The node in hand stays what it is.
struct Wachtrij {
    ICB* icb;
    IXKNOOP k;
    const IXKEYDEF& def;
    bool vast = true; // the lock goes with this object

    explicit Wachtrij(ICB* i, bool wacht = true) : icb(i), def(i->h.keydef[0]) {
        int32_t blok = WACHTRIJBLOK(icb);
        if (icb->h.nkeys < 1)
            IXSTUK(icb, blok);
        if (wacht)
            tot_het_lukt('E', icb, icb->idxfd, int64_t{blok} * IXBLOK, IXBLOK);
        else
            vast = rijslot('E', icb);
        if (vast && (!IXHEELBLOK(icb, blok, &k) || k.keyno != 1 || k.level != 0 ||
                     k.count * def.keylen > KNOOPRUIMTE))
            IXSTUK(icb, blok);
    }
    ~Wachtrij() {
        if (vast)
            rijslot('U', icb);
    }
    Wachtrij(const Wachtrij&) = delete;
    Wachtrij& operator=(const Wachtrij&) = delete;

    uint8_t* sleutel(int i) { return k.entries + i * def.keylen; }
    int vind() {
        for (int i = 0; i < k.count; i++)
            if (IXVERGELIJK(def, icb->keybuf, sleutel(i), def.keylen) == 0)
                return i;
        return -1;
    }
    void wis(int i) {
        const int laatste = --k.count;
        if (i != laatste)
            memcpy(sleutel(i), sleutel(laatste), def.keylen);
        memset(sleutel(laatste), 0, def.keylen);
    }
    // `was`: the queue as it was read. False, with errno, when the disk refuses; it stands as it was then.
    bool schrijf(const IXKNOOP& was) {
        return IXOVERSCHRIJF(icb, icb->idxfd, int64_t{WACHTRIJBLOK(icb)} * IXBLOK, &was, &k, sizeof k);
    }
};

enum Rij { RIJ_GEDAAN, RIJ_AL, RIJ_GEWEIGERD };

Rij reserveer(ICB* icb) {
    Wachtrij q(icb);
    if (q.vind() >= 0)
        return RIJ_AL;
    const IXKNOOP was = q.k;
    if (q.def.keylen * (q.k.count + 1) > KNOOPRUIMTE)
        SCRFATAL(TXT(T_IX_REGELPUNT), icb->h.name, icb->h.title, TXT(T_IX_LOCKQUEUE_VOL));
    memcpy(q.sleutel(q.k.count++), icb->keybuf, q.def.keylen);
    if (!q.schrijf(was))
        return RIJ_GEWEIGERD;
    static const bool aan_het_eind = atexit(geef_alles_terug) == 0;
    static_cast<void>(aan_het_eind);
    eigenaar = getpid();
    Eigen& e = eigen.emplace_back();
    e.icb = icb;
    memcpy(e.sleutel, icb->keybuf, sizeof e.sleutel);
    return RIJ_GEDAAN;
}

bool vergeet(ICB* icb) {
    Wachtrij q(icb);
    int i = q.vind();
    if (i < 0)
        return niet_meer_eigen(icb), true;
    const IXKNOOP was = q.k;
    q.wis(i);
    if (!q.schrijf(was))
        return false;
    niet_meer_eigen(icb);
    return true;
}

// The program's end in the middle of a screen, when its terminal has gone: what it had reserved would keep everybody else
// waiting for ever. There is no wait here: a key that can't be given up now is left to a rebuild.
void geef_alles_terug() {
    IXWAITHOOK = [](ICB*) { _exit(1); };
    while (!eigen.empty() && eigenaar == getpid()) {
        const Eigen e = eigen.back();
        eigen.pop_back();
        memcpy(e.icb->keybuf, e.sleutel, sizeof e.sleutel);
        if (!e.icb->filelocked)
            vergeet(e.icb);
    }
}

void exclusief(ICB* icb) {
    while (!icb->filelocked) {
        if (!icb->tempidx)
            while (!IXLOCKRGN('S', icb, icb->datfd, 0, 0))
                ;
        if (geduldig('E', icb->idxfd, 0, IXBLOK))
            break;
        if (!icb->tempidx)
            IOLOCK('U', icb->datfd, 0, 0);
        IXWAITHOOK(icb);
    }
    icb->filelocked = 1;
    IXBESTANDVAST(icb->idxfd, true);
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

bool IXPROBEERSLOT(ICB* icb) {
    if (icb->filelocked || icb->tempidx)
        return true;
    if (!IOLOCK('E', icb->datfd, recordplaats(icb), icb->h.reclen))
        return false;
    noteer_slot(icb);
    return true;
}

bool IXSLOTVRIJ(const ICB* icb) {
    return icb->filelocked || icb->tempidx || IOLOCK('T', icb->datfd, recordplaats(icb), icb->h.reclen);
}

void IXHOUDVAST(ICB* icb, const void* rec) {
    icb->vast.er = !icb->filelocked && !icb->tempidx;
    icb->vast.nr = icb->currec;
    memcpy(icb->vast.rec, rec, static_cast<size_t>(icb->h.reclen));
}

int IXPROBEERSLEUTEL(ICB* icb) {
    switch (icb->filelocked ? RIJ_GEDAAN : reserveer(icb)) {
    case RIJ_AL:
        return 0;
    case RIJ_GEWEIGERD:
        IXGEWEIGERD(icb, errno, TXT(T_IX_NIET_GERESERVEERD));
        return -1;
    default:
        return 1;
    }
}

bool IXVERGEET(ICB* icb) {
    return vergeet(icb);
}

bool IXVERGEETMEE(ICB* icb) {
    if (icb->filelocked || KLADRIJLEEG(icb))
        return true;
    Wachtrij q(icb, false);
    if (!q.vast)
        return false;
    const IXKNOOP was = q.k;
    const int i = q.vind();
    if (i >= 0)
        q.wis(i);
    KLADRIJ(WACHTRIJBLOK(icb), i >= 0 ? &was : nullptr, &q.k);
    q.vast = false;
    return true;
}

void IXVERGEETNA(const ICB* icb) {
    IXKNOOP k;
    if (!IXHEELBLOK(icb, WACHTRIJBLOK(icb), &k) || k.count == 0)
        return;
    ICB zoeker = *icb; // the handle may be in the middle of a change: it keeps what it has in hand
    zoeker.cached = 0;
    memset(zoeker.node, 0, sizeof zoeker.node);
    IXKIES(&zoeker, 1);
    Wachtrij q(&zoeker);
    const IXKNOOP was = q.k;
    for (int i = q.k.count; i-- > 0;) {
        memset(zoeker.keybuf, 0, sizeof zoeker.keybuf);
        memcpy(zoeker.keybuf, q.sleutel(i), q.def.keylen);
        if (IXSEARCH(&zoeker, '=', q.def.keylen) >= 0)
            q.wis(i);
    }
    if (q.k.count != was.count && !q.schrijf(was))
        IXGEWEIGERD(icb, errno);
}

void IXRIJLOS(ICB* icb, bool geschreven) {
    rijslot('U', icb);
    if (geschreven)
        niet_meer_eigen(icb);
}

void IXSLOTENWEG(int datfd) {
    std::erase_if(sloten, [datfd](const Slot& s) { return s.fd == datfd; });
}

void IXEIGENWEG(const ICB* icb) {
    std::erase_if(eigen, [icb](const Eigen& e) { return e.icb == icb; });
}

void IXGEEFTERUG(ICB* icb) {
    IXEIS(icb, "IXGEEFTERUG");
    const std::vector<Eigen> alle = eigen;
    for (const Eigen& e : alle)
        if (e.icb == icb) {
            memcpy(icb->keybuf, e.sleutel, sizeof e.sleutel);
            IXLOCK(icb, 14);
        }
}

int IXLOCK(ICB* icb, int operatie) {
    IXEIS(icb, "IXLOCK");
    switch (operatie) {
    case 1:
        exclusief(icb);
        return 1;
    case 2:
        if (!icb->filelocked)
            tot_het_lukt('E', icb, icb->idxfd, 0, IXBLOK);
        icb->koplock = 1;
        return 1;
    case 3:
        // The data file of a temporary index belongs to the normal pair, and so do its locks.
        if (!icb->tempidx && !IXLOCKRGN('E', icb, icb->datfd, recordplaats(icb), icb->h.reclen))
            return 0;
        noteer_slot(icb);
        return 1;
    case 4: {
        const int vast = IXPROBEERSLEUTEL(icb);
        if (vast == 0) {
            icb->wachtsleutel = 1;
            IXWAITHOOK(icb);
            icb->wachtsleutel = 0;
        }
        return vast;
    }
    case 11:
        UITSTELAF(icb);
        icb->filelocked = 0;
        icb->koplock = icb->vast.er = 0;
        IXSLOTENWEG(icb->datfd);
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
        if (icb->currec == icb->vast.nr)
            icb->vast.er = 0;
        if (const auto s = vind_slot(icb); s != sloten.rend() && !icb->filelocked && !icb->tempidx) {
            sloten.erase(std::next(s).base());
            IOLOCK('U', icb->datfd, recordplaats(icb), icb->h.reclen);
        }
        return 1;
    case 14:
        if (!icb->filelocked && !vergeet(icb))
            IXGEWEIGERD(icb, errno);
        return 1;
    default:
        return 0;
    }
}

} // namespace zg
