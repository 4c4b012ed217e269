// Module edifys: how the files of settings come to be: new, or out of the older form. A file is written beside as
// EDISYS.CVC, whole and on disk before it gets its name, by one program at a time; killed anywhere, the next one begins again.
#include "edi/edibinnen.h"
#include "edi/teksten.h"
#include "shared/files.h"
#include "shared/mapbeurt.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/dm_hdl.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace zg {
namespace {

constexpr char OUD[] = "DTEDI.TXT", BOUW[] = "EDISYS.CVC";
constexpr size_t OUDBYTES = 128, OVERGENOMEN = 5; // of the older form: read, and kept

bool zelfde(const char* a, const char* b) {
    struct stat x, y;
    return lstat(a, &x) == 0 && lstat(b, &y) == 0 && x.st_dev == y.st_dev && x.st_ino == y.st_ino;
}

bool schrijf(const edirec& rec) {
    const int fd = SYSNIEUW(BOUW, O_RDWR | O_EXCL);
    if (fd < 0)
        return false;
    bool goed = SYSSCHRIJF(fd, &rec, sizeof rec) && SYS.fsync(fd) == 0;
    const int fout = errno;
    goed = SYS.close(fd) == 0 && goed;
    if (!goed)
        errno = fout;
    return goed;
}

// Under the directory's lock: a program of the package that doesn't know that lock may still have been first, so the
// name is taken, never taken over. What a killed program left as EDISYS.CVC may be a second name of the file; it is the
// mark that what it was made of, `uit`, hasn't gone yet, and goes last.
bool maak(const char* naam, const edirec& rec, const char* uit = nullptr) {
    IOUNLINK(BOUW);
    if (schrijf(rec) && (SYS.link(BOUW, naam) == 0 || errno == EEXIST)) {
        if (uit)
            IOUNLINK(uit);
        IOUNLINK(BOUW);
        return true;
    }
    const int fout = errno;
    IOUNLINK(BOUW);
    SCHRIJFFOUT(naam, fout);
    return false;
}

// The older file as a record: 128 bytes of which five count, or as it is. False when it isn't there.
bool lees_oud(edirec* rec) {
    *rec = {};
    const int fd = SYS.open(OUD, O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    struct stat st;
    if (fd < 0)
        return false;
    bool goed = SYS.fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    char bytes[OUDBYTES] = {};
    goed = goed && SYSLEES(fd, bytes, sizeof bytes, 0) >= 0;
    SYS.close(fd);
    std::copy_n(bytes, OVERGENOMEN, rec->vrij0);
    return goed;
}

// The file is there; behind a kill in the middle of its making the older one may be, too, and another program of the
// package would convert it again, over what has been set since.
bool ruim_op() {
    const auto half = [] { return zelfde(OUD, EDIBESTAND) || zelfde(BOUW, EDIBESTAND); };
    if (half()) {
        const IOBEURT beurt(EDIBESTAND);
        if (half()) {
            IOUNLINK(OUD);
            IOUNLINK(BOUW);
        }
    }
    return true;
}

} // namespace

bool edi_nieuw(const char* naam, const edirec& rec) {
    const IOBEURT beurt(naam);
    return IOEXISTS(naam) || maak(naam, rec);
}

bool edi_zet_om() {
    edirec rec;
    if (IOEXISTS(EDIBESTAND))
        return ruim_op();
    if (!IOEXISTS(OUD)) // unless another has made the one of it between these two looks
        return IOEXISTS(EDIBESTAND);
    const IOBEURT beurt(EDIBESTAND);
    if (IOEXISTS(EDIBESTAND))
        return true;
    if (!lees_oud(&rec))
        return false;
    if (IOSIZE(OUD) != EDIREC)
        return maak(EDIBESTAND, rec, OUD);
    if (IOMOVE(OUD, EDIBESTAND, 0) || IOEXISTS(EDIBESTAND))
        return true;
    SCHRIJFFOUT(EDIBESTAND, errno);
    return false;
}

const char* edi_methodetekst(uint8_t methode) {
    return methode == 1 ? TXT(T_EDI_MODEM) : methode == 2 ? TXT(T_EDI_INTERNET) : "";
}

uint8_t edi_kies_methode(uint8_t nu) {
    int keus = 0;
    do {
        DMREC* menu = DMNEW(TXT(T_EDI_METHODE_LIJST));
        DMITEM(menu, TXT(T_EDI_KIES_MODEM), 1, 1);
        DMITEM(menu, TXT(T_EDI_KIES_INTERNET), 2, 1);
        keus = DMRUN(menu, 5, nu);
    } while (keus != 1 && keus != 2);
    return static_cast<uint8_t>(keus);
}

bool edi_aanwezig() {
    return IOEXISTS(OUD) || IOEXISTS(EDIBESTAND); // made of the older one before that goes
}

bool edi_maak(uint8_t methode) {
    edirec rec{};
    rec.initflag = 1;
    rec.methode = methode;
    return (edi_zet_om() || edi_nieuw(EDIBESTAND, rec)) && edisys('O', 0, nullptr);
}

bool edi_maak_vraag() {
    const uint8_t stond = edi_methode();
    if (stond == 1 || stond == 2)
        return edisys('O', 0, nullptr) != 0;
    const uint8_t methode = edi_kies_methode(0);
    if (!edi_maak(methode) || (edi_methode() != methode && !edi_methode_zet(methode)))
        return false;
    WINOPEN1(10, 6, 5, 70);
    WINBOX("%s", "");
    SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_EDI_METHODE));
    SCRPUT(A_WAARDE, 1, 24, "%s", edi_methodetekst(methode));
    ENTERWACHT(3, 2);
    WINCLOSE();
    return true;
}

} // namespace zg
