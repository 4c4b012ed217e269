// Pairs: NAME.INX with header, trees and lock queue, NAME.TXT with the records. Create, open, check, empty,
// close.
#include "shared/files.h"
#include "shared/report.h"
#include "store/bestand.h"
#include "store/cache.h"
#include "store/klad.h"
#include "store/kop.h"
#include "store/node.h"
#include "store/teksten.h"
#include "store/uitstel.h"
#include "store/voortgang.h"
#include "store/wachten.h"
#include "term/scherm.h"
#include "term/teksten.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

constexpr size_t VERSIEPLAATS = offsetof(IXHEADER, version);
constexpr uint16_t OUDEVERSIE = 350;
constexpr int32_t BIJNAVOL = 2147482999;
constexpr int BALKNA = 2; // seconds

// An existing file of a pair. `vragen`: without permission ask whether to try again. Stops the program when
// it can't be opened.
int open_bestand(const std::string& pad, bool vragen, int64_t minstens, int al_open) {
    for (;;) {
        errno = 0;
        int fd = IXBESTANDOPEN(pad.c_str(), O_RDWR);
        if (fd >= 0 && IOOMVANG(fd) >= minstens)
            return fd;
        int fout = errno;
        if (fd >= 0)
            IXBESTANDDICHT(fd);
        if (vragen && fout == EACCES && IXJANEE(pad.c_str(), "%s", TXT(T_OPEN_DOOR_ANDER)))
            continue;
        if (al_open >= 0)
            IXBESTANDDICHT(al_open);
        if (fout) // 0: too short to be one
            STOPREDEN(fout);
        SCRFATAL(TXT(T_QUILLDB), fout, pad.c_str());
    }
}

// Answers the version found. Any but the former one is taken as the present one, and put right on disk.
uint16_t lees_versie(int fd) {
    uint16_t versie = 0;
    IOLEES(fd, &versie, sizeof versie, VERSIEPLAATS);
    if (versie != OUDEVERSIE && versie != IXVERSIE)
        SYSSCHRIJFOP(fd, &IXVERSIE, sizeof IXVERSIE, VERSIEPLAATS);
    return versie;
}

// Name and title for messages, while `busy` keeps its value.
bool lees_naam(ICB* icb) {
    return IOLEES(icb->idxfd, &icb->h, offsetof(IXHEADER, busy), 0) ==
           static_cast<ssize_t>(offsetof(IXHEADER, busy));
}

// Who only reads doesn't wait for one who has the pair to himself: he goes by the header on disk, whose counters may be those of
// before. False: nobody holds it for himself, or he rebuilds the trees, and the lock is to be waited for.
bool kop_van_een_ander(ICB* icb) {
    for (int keer = 0; icb->mode == 0 && keer < IXRUSTIG(); keer++) {
        IXHEADER h;
        if (IOLOCK('T', icb->idxfd, 0, IXBLOK))
            return false;
        if (IXKOPBLOK(icb, &h) && (h.busy == K_RUST || h.busy == K_ALLEEN) && !IXKOPFOUT(h)) {
            icb->h = h;
            icb->h.busy = K_RUST; // the mark is that of a living one
            IXGEZIEN(icb, h);
            return true;
        }
        IXPAUZE(R_SLOT, keer);
    }
    return false;
}

// Empty a file under its name. The descriptor stays when that is still the same file, and with it the locks.
int leeg_bestand(int fd, const std::string& pad, bool naam_heel) {
    struct stat open_nu, op_pad;
    bool zelfde = fstat(fd, &open_nu) == 0 && stat(pad.c_str(), &op_pad) == 0 &&
                  open_nu.st_dev == op_pad.st_dev && open_nu.st_ino == op_pad.st_ino;
    if (zelfde || !naam_heel) {
        if (SYS.ftruncate(fd, 0) < 0)
            SCRFATAL(TXT(T_OPEN_MISLUKT), pad.c_str());
        return fd;
    }
    IXBESTANDDICHT(fd);
    fd = IXBESTANDOPEN(pad.c_str(), O_RDWR | O_CREAT | O_TRUNC);
    if (fd < 0)
        SCRFATAL(TXT(T_OPEN_MISLUKT), pad.c_str());
    return fd;
}

// Free records along the chain, or -1 when it doesn't end within the file.
int loop_vrijen(ICB* icb, const std::string& datapad) {
    std::vector<uint8_t> rec(static_cast<size_t>(icb->h.reclen) + 1);
    const time_t begin = time(nullptr);
    int vrij = 0;
    bool balk = false;
    int32_t nr = icb->h.freehead;
    // The header of a temporary index says nothing of the data file: a chain is never longer than that.
    const int64_t slots = std::min<int64_t>(icb->h.nrecs, IOOMVANG(icb->datfd) / icb->h.reclen);
    for (int64_t stap = 0; stap < slots && nr >= 0; stap++) {
        ssize_t n =
            IOLEES(icb->datfd, rec.data(), static_cast<size_t>(icb->h.reclen), int64_t{nr} * icb->h.reclen);
        // The last byte of a slot is not looked at here, as in all programs that share the files.
        if (n != icb->h.reclen || IXRECLIVE(rec.data(), icb->h.reclen - 1))
            break;
        nr = LEES32(rec.data() + 1);
        vrij++;
        if (stap % 1024 != 1023)
            continue;
        if (!balk && time(nullptr) - begin > BALKNA) {
            char titel[128];
            snprintf(titel, sizeof titel, TXT(T_IX_VOORTGANG_BESTAND), datapad.c_str());
            VOORTGANG(VG_OPEN, 0, 0, titel);
            balk = true;
        }
        if (balk)
            VOORTGANG(VG_TOON, vrij, icb->h.nrecs);
    }
    if (balk)
        VOORTGANG(VG_SLUIT);
    return nr < 0 ? vrij : -1;
}

// The answer of IXCHECK for a pair whose header has been read under lock.
int beoordeel(ICB* icb, const std::string& indexpad, const std::string& datapad) {
    if (icb->h.busy || IXKOPFOUT(icb->h) || IOOMVANG(icb->idxfd) != int64_t{icb->h.nblocks} * IXBLOK)
        return -1;
    if (indexpad.find(".INX") != std::string::npos &&
        IOSIZE(datapad.c_str()) != int64_t{icb->h.reclen} * icb->h.nrecs)
        return -1;
    icb->datfd = IXBESTANDOPEN(datapad.c_str(), O_RDWR);
    if (icb->datfd < 0) {
        const int fout = errno;
        STOPREDEN(fout);
        SCRFATAL(TXT(T_QUILLDB), fout, datapad.c_str());
    }
    int vrij = loop_vrijen(icb, datapad);
    char naam[sizeof icb->h.name + 1] = {};
    memcpy(naam, icb->h.name, sizeof icb->h.name);
    if (icb->h.nblocks > BIJNAVOL && !IXJANEE(TXT(T_IX_WAARSCHUWING), TXT(T_IX_BIJNA_VOL_VRAAG), naam))
        SCRFATAL(TXT(T_IX_BIJNA_VOL), naam);
    return vrij;
}

// Who waited for a pair may have got one whose place was given to another meanwhile: that is let go.
bool andere_weg(ICB* icb) {
    if (icb->tempidx || !(IXBESTANDVERVANGEN(icb->idxfd) || IXBESTANDVERVANGEN(icb->datfd)))
        return false;
    IXLOCK(icb, icb->filelocked ? 11 : 12);
    IXLAATLOS(icb);
    return true;
}

} // namespace

bool IXDIEPERKIJKEN = true;

ICB* IXHANDVAT(const char* naam, int mode, int idxfd, int datfd) {
    ICB* icb = static_cast<ICB*>(calloc(1, sizeof(ICB)));
    if (!icb)
        SCRFATAL("%s", TXT(T_GEHEUGEN_ICB));
    KLADVERGEET(icb);
    icb->idxfd = idxfd;
    icb->datfd = datfd;
    icb->mode = mode == 0 || mode == 1 ? mode : 2;
    icb->tempidx = IXTIJDELIJKENAAM(naam);
    icb->curent = KNOOP(icb).entries;
    std::fill(std::begin(icb->parent), std::end(icb->parent), -1);
    snprintf(icb->path, sizeof icb->path, "%s", naam);
    return icb;
}

void IXLAATLOS(ICB* icb) {
    if (icb->cached)
        IOCACHE('X', icb, 0);
    IXEIGENWEG(icb);
    UITSTELWEG(icb);
    if (icb->datfd >= 0)
        IXBESTANDDICHT(icb->datfd);
    if (icb->idxfd >= 0)
        IXBESTANDDICHT(icb->idxfd);
    free(icb);
}

ICB* IXCREATE(const char* naam, int mode) {
    const bool vragen = mode & IXVRAAG;
    mode &= ~IXVRAAG;
    const std::string indexpad = IXINDEXPAD(naam), datapad = IXDATAPAD(naam);
    const bool bestaat = IOEXISTS(datapad.c_str());
    int datfd = IXBESTANDOPEN(datapad.c_str(), O_RDWR | O_CREAT);
    if (datfd < 0)
        SCRFATAL(TXT(bestaat && vragen ? T_OPEN_MISLUKT : T_CREATE_MISLUKT), datapad.c_str());
    int idxfd = IXBESTANDOPEN(indexpad.c_str(), O_RDWR | O_CREAT);
    if (idxfd < 0) {
        IXBESTANDDICHT(datfd);
        SCRFATAL(TXT(T_CREATE_MISLUKT), indexpad.c_str());
    }
    ICB* icb = IXHANDVAT(naam, mode, idxfd, datfd);
    const std::string kort = IXNAAM(naam);
    memcpy(icb->h.name, kort.data(), std::min(kort.size(), sizeof icb->h.name));
    icb->h.version = IXVERSIE;
    if (mode == 1)
        IXLOCK(icb, 1);
    // Emptied only now: until the lock is got others may be in it.
    if (SYS.ftruncate(idxfd, 0) < 0)
        SCRFATAL(TXT(T_CREATE_MISLUKT), indexpad.c_str());
    return icb;
}

void IXINITIX(ICB* icb) {
    IXEIS(icb, "IXINITIX");
    if (IXDEFFOUT(icb->h))
        IXSTUK(icb, 0);
    UITSTELWEG(icb);
    icb->h.freehead = -1;
    icb->h.nrecs = 0;
    icb->h.nblocks = icb->h.nkeys + 2;
    icb->h.busy = 0;
    icb->h.version = IXVERSIE;
    IXGEZIEN(icb, icb->h);
    IXWRIX(icb, 0);
    for (int k = 1; k <= icb->h.nkeys; k++) {
        memset(icb->node, 0, sizeof icb->node);
        KNOOP(icb).keyno = static_cast<int8_t>(k);
        KNOOP(icb).level = 1;
        KNOOP(icb).count = 1;
        memset(KNOOP(icb).entries, 0xFF, icb->h.keydef[k - 1].keylen + size_t{4});
        IXWRIX(icb, k);
    }
    memset(icb->node, 0, sizeof icb->node);
    KNOOP(icb).keyno = 1;
    IXWRIX(icb, WACHTRIJBLOK(icb));
    // A file that was longer keeps nothing behind the empty trees, or its size would not agree with the
    // header.
    const int64_t lengte = int64_t{icb->h.nblocks} * IXBLOK;
    if (SYSOMVANG(icb->idxfd) > lengte && SYS.ftruncate(icb->idxfd, lengte) < 0)
        IXSCHIJFFOUT(icb, icb->idxfd, lengte, 0);
    IXRDIX(icb, 1);
}

void IXINIT(ICB* icb) {
    IXEIS(icb, "IXINIT");
    if (IXDEFFOUT(icb->h))
        IXSTUK(icb, 0); // before anything is emptied
    if (icb->tempidx)   // the data file is the normal pair's
        return IXINITIX(icb);
    IXLOCK(icb, 1);
    const bool heel = strlen(icb->path) < sizeof icb->path - 1; // else the name may have been cut
    icb->idxfd = leeg_bestand(icb->idxfd, std::string(icb->path) + ".INX", heel);
    IXLOCK(icb, 1);
    IXINITIX(icb);
    icb->datfd = leeg_bestand(icb->datfd, std::string(icb->path) + ".TXT", heel);
    if (icb->mode != 1)
        IXLOCK(icb, 11);
}

ICB* IXOPEN(const char* naam, int mode) {
    const int gevraagd = mode;
    const bool vragen = mode & IXVRAAG;
    mode &= ~IXVRAAG;
    const std::string indexpad = IXINDEXPAD(naam), datapad = IXDATAPAD(naam);
    int datfd = open_bestand(datapad, vragen, 0, -1);
    int idxfd = open_bestand(indexpad, vragen, IXBLOK, datfd);
    ICB* icb = IXHANDVAT(naam, mode, idxfd, datfd);
    const bool tijdelijk = icb->tempidx;
    if (uint16_t versie = lees_versie(idxfd); versie == OUDEVERSIE) {
        IXLAATLOS(icb);
        IXWAARSCHUW("", TXT(tijdelijk ? T_IX_VERSIE_TIJDELIJK : T_IX_VERSIE), indexpad.c_str(), versie,
                    IXVERSIE);
        SCRFATAL("%s", TXT(tijdelijk ? T_IX_BEEINDIGD : T_IX_CONVERTEER));
    }
    if (lees_naam(icb) && !kop_van_een_ander(icb)) {
        IXLOCK(icb, 2);
        if (andere_weg(icb))
            return IXOPEN(naam, gevraagd);
        IXRDIX(icb, 0);
        IXLOCK(icb, 12);
    }
    if (icb->mode == 1) {
        IXLOCK(icb, 1);
        if (andere_weg(icb))
            return IXOPEN(naam, gevraagd);
        IXRDIX(icb, 0); // others may have written until now, and from here on the counters are this handle's
    }
    IXSWITCH(icb, 1);
    return icb;
}

void IXCLOSE(ICB* icb) {
    IXEIS(icb, "IXCLOSE");
    if (icb->cached)
        IOCACHE('F', icb, 0);
    if (icb->mode == 1) {
        IXWRIX(icb, 0);
        IXLOCK(icb, 11);
    }
    IXEISPAAR(icb, true);
    IXLAATLOS(icb);
}

int IXCHECK(const char* naam) {
    const std::string indexpad = IXINDEXPAD(naam), datapad = IXDATAPAD(naam);
    const int64_t grootte = IOSIZE(indexpad.c_str());
    if (grootte < IXBLOK || grootte % IXBLOK || !IOEXISTS(datapad.c_str()))
        return -1;
    int idxfd = IXBESTANDOPEN(indexpad.c_str(), O_RDWR);
    if (idxfd < 0)
        return -1;
    ICB* icb = IXHANDVAT(naam, 2, idxfd, -1);
    if (uint16_t versie = lees_versie(idxfd); versie == OUDEVERSIE) {
        const bool tijdelijk = icb->tempidx;
        IXLAATLOS(icb);
        IXWAARSCHUW("", TXT(tijdelijk ? T_IX_VERSIE_TIJDELIJK_CHECK : T_IX_VERSIE), indexpad.c_str(), versie,
                    IXVERSIE);
        if (tijdelijk)
            return -1;
        SCRFATAL("%s", TXT(T_IX_CONVERTEER_CHECK));
    }
    int uitslag = -1;
    if (lees_naam(icb)) {
        IXLOCK(icb, 2);
        IXHEADER h;
        if (IXKOPBLOK(icb, &h)) {
            icb->h = h;
            uitslag = IXDIEPERKIJKEN ? beoordeel(icb, indexpad, datapad) : 0;
        }
        IXLOCK(icb, 12);
    }
    IXLAATLOS(icb);
    return uitslag;
}

int IXREMOVE(const char* naam) {
    int index_weg = IOUNLINK((std::string(naam) + ".INX").c_str());
    int data_weg = IOUNLINK((std::string(naam) + ".TXT").c_str());
    return index_weg && data_weg;
}

} // namespace zg
