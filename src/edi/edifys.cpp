// Module edifys: the two files of settings, and a setting by its name. Their first making is in edibegin.cpp.
#include "edi/edifys.h"
#include "edi/edibinnen.h"
#include "shared/files.h"
#include "shared/houder.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace zg {
namespace {

constexpr char TAG[] = "edifys";
constexpr int64_t SLOT = EDIREC, SLOTLENGTE = 1;

int fd = -1, pcfd = -1;

// A file as its owner may have it: who may only read looks at the settings all the same.
int open_bestand(const char* naam) {
    int uit = SYS.open(naam, O_RDWR | O_CLOEXEC, 0);
    if (uit < 0 && (errno == EACCES || errno == EROFS))
        uit = SYS.open(naam, O_RDONLY | O_CLOEXEC, 0);
    if (uit < 0)
        OPENFAIL(TAG, naam);
    return uit;
}

// Zeros behind what there is. A writer doesn't hold up readers: so read until two looks are alike.
int lees(int bestand, int32_t nr, edirec* rec) {
    constexpr int POGINGEN = 20;
    edirec weer;
    ssize_t n = -1;
    for (int i = 0; i < POGINGEN; i++) {
        for (edirec* r : {rec, &weer}) {
            memset(r, 0, sizeof *r);
            n = IOLEES(bestand, r, sizeof *r, int64_t{nr} * EDIREC);
        }
        if (memcmp(rec, &weer, sizeof weer) == 0)
            break;
    }
    return n == EDIREC;
}

int schrijf(int bestand, const char* naam, int32_t nr, const edirec& rec) {
    if (SYSVERVANG(bestand, &rec, sizeof rec, int64_t{nr} * EDIREC))
        return 1;
    SCHRIJFFOUT(naam, errno == EBADF ? EACCES : errno); // open for reading only
    return 0;
}

// The lock is mostly held for a moment, and of two that try at once both may be refused: so tries that grow longer, and
// not in step with another's, before anybody is told.
bool geduld() {
    constexpr int POGINGEN = 120, LANGST = 8000;
    for (int i = 0; i < POGINGEN; i++) {
        if (IOLOCK('S', fd, SLOT, SLOTLENGTE))
            return true;
        usleep(static_cast<useconds_t>(std::min(LANGST, 20 * (1 + i * i)) + (getpid() + i * 7) % 8 * 20));
    }
    return false;
}

void neem() {
    for (bool gezegd = false; !geduld(); gezegd = true) {
        char tekst[81] = "";
        houder_tekst(tekst, sizeof tekst, fd, SLOT, SLOTLENGTE);
        if (!SCHERM.bestaat && !gezegd) // moving the mailboxes may take its time
            ALARMBOX(tekst);
        houder_toon("", tekst);
    }
}

// ---- a setting by name

struct Naam {
    const char* naam;
    size_t plaats, breedte, past; // bytes of the field, and how long a value may be
};
constexpr Naam NAMEN[] = {
    {"ZEBEDI", offsetof(edirec, zebedi), sizeof edirec::zebedi, EDIPAD},
    {"EDIDIR", offsetof(edirec, edidir), sizeof edirec::edidir, EDIPAD},
    {"EDIRPC", offsetof(edirec, edirpc), sizeof edirec::edirpc, EDIPAD},
    {"RPCHOST", offsetof(edirec, rpchost), sizeof edirec::rpchost, sizeof edirec::rpchost},
    {"EDICMD", offsetof(edirec, edicmd), sizeof edirec::edicmd, EDIPAD},
};

const Naam* zoek(const char* naam) {
    for (const Naam& n : NAMEN)
        if (strstr(naam, n.naam))
            return &n;
    return nullptr;
}

std::string waarde_uit(const edirec& rec, const Naam& n) {
    const char* veld = reinterpret_cast<const char*>(&rec) + n.plaats;
    return {veld, strnlen(veld, n.breedte)};
}

void waarde_in(edirec* rec, const Naam& n, const char* waarde) {
    char* veld = reinterpret_cast<char*>(rec) + n.plaats;
    memset(veld, 0, n.breedte);
    memcpy(veld, waarde, strnlen(waarde, n.breedte));
}

// One of the two files open for as long as this lives; `er` false where it is missing.
struct Open {
    explicit Open(bool pc) : pc_(pc), sluit_((pc ? pcfd : fd) < 0) {
        if (sluit_ && pc && IOEXISTS(EDIPCBESTAND))
            edisyspc('O', 0, nullptr);
        else if (sluit_ && !pc)
            edisys('O', 0, nullptr);
        er = (pc ? pcfd : fd) >= 0;
    }
    ~Open() {
        if (sluit_ && er)
            pc_ ? edisyspc('C', 0, nullptr) : edisys('C', 0, nullptr);
    }
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;
    bool er;

private:
    bool pc_, sluit_;
};

const char* geef(const char* naam, bool pc) {
    static std::string uit;
    uit = edi_kaal(naam, pc);
    if (const Naam* n = zoek(naam); n && n->plaats == offsetof(edirec, edidir) && !IOISDIR(uit.c_str()))
        uit.clear();
    return uit.c_str();
}

// A record changed under the lock of the first file. That file must be there; the other is made.
template <class F> int wijzig(bool pc, F doe) {
    const Open open(false);
    if (!open.er)
        return 0;
    edirec rec;
    if (!pc) {
        edisys('X', 0, &rec);
        doe(&rec);
        return edisys('W', 0, &rec);
    }
    neem();
    const bool sluit = pcfd < 0;
    int uit = edisyspc('O', 0, nullptr);
    if (uit) {
        edisyspc('R', 0, &rec);
        doe(&rec);
        uit = edisyspc('W', 0, &rec);
        if (sluit)
            edisyspc('C', 0, nullptr);
    }
    IOLOCK('U', fd, SLOT, SLOTLENGTE);
    return uit;
}

int zet(const char* naam, const char* waarde, bool pc) {
    return edi_past(naam, waarde) && wijzig(pc, [&](edirec* rec) { waarde_in(rec, *zoek(naam), waarde); });
}

// Byte and mask of a flag.
uint8_t* vlagbyte(edirec* rec, int n) {
    return reinterpret_cast<uint8_t*>(rec) + offsetof(edirec, vlag) + n / 8;
}
uint8_t vlagbit(int n) {
    return static_cast<uint8_t>(1u << (n % 8));
}

} // namespace

int edisys(char letter, int32_t nr, edirec* rec) {
    if (letter == 'O') {
        if (fd < 0 && edi_zet_om())
            fd = open_bestand(EDIBESTAND);
        return fd >= 0;
    }
    if (fd < 0)
        INTERNAL(TAG, 1);
    if (nr < 0)
        return 0;
    switch (letter) {
    case 'C':
        SYS.close(fd);
        fd = -1;
        return 1;
    case 'X':
        neem();
        [[fallthrough]];
    case 'R':
        return lees(fd, nr, rec);
    case 'W':
    case 'w': {
        rec->vlag[4] = 0;
        const int geschreven = schrijf(fd, EDIBESTAND, nr, *rec);
        if (letter == 'W')
            IOLOCK('U', fd, SLOT, SLOTLENGTE);
        return geschreven;
    }
    case 'T':
    case 'U':
        return IOLOCK(letter, fd, SLOT, SLOTLENGTE);
    default:
        return 0;
    }
}

int edisyspc(char letter, int32_t nr, edirec* rec) {
    if (letter == 'O') {
        if (pcfd < 0 && !IOEXISTS(EDIPCBESTAND) && !edi_nieuw(EDIPCBESTAND, edirec{}))
            return 0;
        if (pcfd < 0)
            pcfd = open_bestand(EDIPCBESTAND);
        return 1;
    }
    if (pcfd < 0)
        INTERNAL(TAG, 1);
    if (nr < 0)
        return 0;
    switch (letter) {
    case 'C':
        SYS.close(pcfd);
        pcfd = -1;
        return 1;
    case 'R':
        return lees(pcfd, nr, rec);
    case 'W':
        return schrijf(pcfd, EDIPCBESTAND, nr, *rec);
    default:
        return 0;
    }
}

std::string edi_kaal(const char* naam, bool pc) {
    const Naam* n = zoek(naam);
    const Open open(pc);
    if (!n || !open.er)
        return "";
    edirec rec;
    lees(pc ? pcfd : fd, 0, &rec);
    return waarde_uit(rec, *n);
}

bool edi_open() {
    return fd >= 0;
}

const char* ediget(const char* naam) {
    return geef(naam, false);
}

const char* edigetpc(const char* naam) {
    return geef(naam, true);
}

bool edi_past(const char* naam, const char* waarde) {
    const Naam* n = zoek(naam);
    const size_t lengte = strlen(waarde);
    return n && lengte <= n->past && std::none_of(waarde, waarde + lengte, [](char c) {
               return (NKLASSE[static_cast<uint8_t>(c)] & N_CONTROL) != 0;
           });
}

bool edi_mag(const char* naam, const char* waarde) {
    const Naam* n = zoek(naam);
    return edi_past(naam, waarde) &&
           ((n->plaats != offsetof(edirec, zebedi) && n->plaats != offsetof(edirec, edidir)) ||
            std::none_of(waarde, waarde + strlen(waarde), [](char c) { return (c & 0x80) != 0; }));
}

int ediset(const char* naam, const char* waarde) {
    return zet(naam, waarde, false);
}

int edisetpc(const char* naam, const char* waarde) {
    return zet(naam, waarde, true);
}

uint8_t edi_methode() {
    const Open open(false);
    edirec rec{};
    if (open.er)
        lees(fd, 0, &rec);
    return rec.methode;
}

int edi_methode_zet(uint8_t methode) {
    return wijzig(false, [methode](edirec* rec) { rec->methode = methode; });
}

int ediflagset(int n) {
    return n >= 0 && n < EDIVLAGGEN && wijzig(true, [n](edirec* rec) {
               *vlagbyte(rec, n) = static_cast<uint8_t>(*vlagbyte(rec, n) | vlagbit(n));
           });
}

int ediflagget(int n) {
    const Open open(true);
    edirec rec;
    if (n < 0 || n >= EDIVLAGGEN || !open.er)
        return 0;
    lees(pcfd, 0, &rec);
    return (*vlagbyte(&rec, n) & vlagbit(n)) != 0;
}

} // namespace zg
