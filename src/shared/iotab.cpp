// Module iotab: slots of the fixed tables in DTSYS.TXT, and the program's images of the most used ones.
#include "shared/iotab.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/houder.h"
#include "shared/iofil.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include "term/einde.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace zg {

sysfirma firma;
sysstatus status10;
sysinstel instel15;
int32_t sessie;
gebruikerslot gebruiker;

namespace {

const char* bestand = "DTSYS.TXT";
int fd = -1;

int64_t plaats(int32_t nr, const Systabel& tabel) {
    return tabel.start + int64_t{nr - 1} * tabel.grootte;
}

bool binnen(int32_t nr, const Systabel& tabel) {
    return nr >= 1 && nr <= tabel.slots;
}

void zoek(char letter, int64_t offset) {
    if (lseek(fd, offset, SEEK_SET) < 0)
        SCRFATAL("%s: errno=%d a=%c fd=%d o=%ld", "iotab", errno, letter, fd, static_cast<long>(offset));
}

int lees(char letter, int32_t nr, void* record, const Systabel& tabel) {
    auto n = static_cast<size_t>(tabel.grootte);
    auto* bytes = static_cast<char*>(record);
    if (binnen(nr, tabel)) {
        zoek(letter, plaats(nr, tabel));
        if (IOLEES(fd, record, n, plaats(nr, tabel)) == static_cast<ssize_t>(n))
            return std::any_of(bytes, bytes + n, [](char c) { return c != 0; });
    }
    memset(record, 0, n);
    return 0;
}

// A refused write is told, and the slot is as it was.
int schrijf(char letter, int32_t nr, const void* record, const Systabel& tabel) {
    if (!binnen(nr, tabel))
        return 1;
    zoek(letter, plaats(nr, tabel));
    if (SYSVERVANG(fd, record, static_cast<size_t>(tabel.grootte), plaats(nr, tabel)))
        return 1;
    SCHRIJFFOUT(bestand, errno);
    return 0;
}

int slot(char letter, int32_t nr, const Systabel& tabel) {
    return binnen(nr, tabel) && IOLOCK(letter, fd, plaats(nr, tabel), tabel.grootte);
}

// Slots are mostly held for moments, and of two that try at once both may be refused: so a few tries, not in step
// with another's, before anybody is told.
bool geduld(int32_t nr, const Systabel& tabel) {
    constexpr int POGINGEN = 60;
    for (int i = 0; i < POGINGEN; i++) {
        if (slot('S', nr, tabel))
            return true;
        IOWACHT(i, 1000 + (getpid() + i * 7) % 8 * 1000);
    }
    return false;
}

void neem(int32_t nr, const Systabel& tabel) {
    zoek('X', plaats(nr, tabel));
    while (!geduld(nr, tabel)) {
        char tekst[81] = "";
        houder_tekst(tekst, sizeof tekst, fd, plaats(nr, tabel), tabel.grootte);
        houder_toon("SYSTEEM-", tekst);
    }
}

int volgende(int32_t* nr, void* record, const Systabel& tabel) {
    *nr = std::max(*nr, 0);
    while (*nr <= tabel.slots) {
        ++*nr;
        if (lees('N', *nr, record, tabel))
            return 1;
    }
    return 0;
}

int vorige(int32_t* nr, void* record, const Systabel& tabel) {
    *nr = std::min(*nr, tabel.slots + 1);
    while (*nr > 0) {
        --*nr;
        if (lees('P', *nr, record, tabel))
            return 1;
    }
    return 0;
}

// A path in the room that the report has for it: its begin and its end, which tells more.
std::string in_het_kort(const std::string& pad) {
    constexpr size_t RUIMTE = 39, BEGIN = 12;
    return pad.size() <= RUIMTE
               ? pad
               : pad.substr(0, BEGIN) + "..." + pad.substr(pad.size() - (RUIMTE - BEGIN - 3));
}

void open_tabellen() {
    if (fd >= 0)
        return;
    fd = SYS.open(bestand, O_RDWR | O_CLOEXEC, 0);
    if (fd < 0) {
        char map[PATH_MAX];
        if (errno != ENOENT)
            STOPREDEN(errno);
        SCRFATAL(TXT(T_NIET_AANWEZIG), bestand, in_het_kort(getcwd(map, sizeof map) ? map : "").c_str());
    }
}

void sluit_tabellen() {
    if (fd >= 0)
        SYS.close(fd);
    fd = -1;
}

void lees_image(int32_t nr, void* record) {
    iotab('R', &nr, record, SYS_RECORD);
}

} // namespace

int iotab(char letter, int32_t* nr, void* record, const Systabel& tabel) {
    switch (letter) {
    case 'O':
        *nr = 1;
        open_tabellen();
        return 1;
    case 'C':
        sluit_tabellen();
        return 1;
    case 'R':
        return lees(letter, *nr, record, tabel);
    case 'F':
        return lees(letter, *nr, record, tabel) || volgende(nr, record, tabel);
    case 'N':
        return volgende(nr, record, tabel);
    case 'P':
        return vorige(nr, record, tabel);
    case 'X':
        if (binnen(*nr, tabel))
            neem(*nr, tabel);
        return lees(letter, *nr, record, tabel);
    case 'D':
        memset(record, 0, static_cast<size_t>(tabel.grootte));
        [[fallthrough]];
    case 'W': {
        const int geschreven = schrijf(letter, *nr, record, tabel);
        slot('U', *nr, tabel);
        return geschreven;
    }
    case 'w':
        return schrijf(letter, *nr, record, tabel);
    case 'T':
    case 'U':
        return slot(letter, *nr, tabel);
    default:
        return 0;
    }
}

int iotab_probeer(int32_t* nr, void* record, const Systabel& tabel) {
    if (!binnen(*nr, tabel) || !geduld(*nr, tabel))
        return 0;
    if (lees('X', *nr, record, tabel))
        return 1;
    slot('U', *nr, tabel);
    return 0;
}

int32_t iotab_vrij(const Systabel& tabel) {
    char record[512];
    for (int32_t nr = 1; nr <= tabel.slots && sizeof record >= static_cast<size_t>(tabel.grootte); nr++) {
        if (lees('R', nr, record, tabel) || !slot('S', nr, tabel))
            continue;
        if (!lees('X', nr, record, tabel)) // still empty, now that it is held
            return nr;
        slot('U', nr, tabel);
    }
    return 0;
}

void iotab_naam(const char* pad) {
    bestand = pad ? pad : "DTSYS.TXT";
}

bool in_overgave(const gebruikerslot& slot) {
    constexpr int64_t DUUR = 10; // seconds; a program that has not come by then won't
    const int64_t oud = time(nullptr) - int64_t{slot.usertime};
    return slot.userstate == 2 && oud >= -DUUR && oud < DUUR;
}

int iotab_fd() {
    return fd;
}

namespace {
// The slot of a code in a table by set, `verder` slots behind set x 10 + code.
int setcode(int32_t* nr, void* record, const Systabel& tabel, int verder) {
    const int64_t plek = gebruiker.set * 10 + int64_t{*nr} + verder;
    int32_t slot = plek >= 0 && plek <= tabel.slots ? static_cast<int32_t>(plek) : 0;
    if (!iotab('R', &slot, record, tabel) || slot / 10 != gebruiker.set)
        return 0;
    *nr = slot % 10;
    return 1;
}
} // namespace

int iotab_setcode(int32_t* nr, tekst20* record) {
    int32_t code = *nr;
    if (!setcode(&code, record, SYS_SETCODE, 0) || code == 0)
        return 0;
    *nr = code;
    return 1;
}

int iotab_setcode2(int32_t* nr, setcode2rec* record) {
    return setcode(nr, record, SYS_SETCODE2, 1);
}

int iotab_code(char letter, int soort, int32_t* nr, tekst30* record) {
    static constexpr Systabel tabellen[4][2] = {{SYS_ACTIE_KOP, SYS_ACTIE},
                                                {SYS_CORRECTIE_KOP, SYS_CORRECTIE},
                                                {SYS_INKOOP_KOP, SYS_INKOOP},
                                                {SYS_DEELSEIZOEN_KOP, SYS_DEELSEIZOEN}};
    if (soort < 1 || soort > 4)
        return 0;
    // 'N' and 'P' walk the codes, so for them 0 is the place in front of the first.
    if (*nr == 0 && letter != 'N' && letter != 'P') {
        *nr = 1;
        return iotab(letter, nr, record, tabellen[soort - 1][0]);
    }
    return iotab(letter, nr, record, tabellen[soort - 1][1]);
}

int32_t iotab_teller(int sysrecord, int32_t hoogste, bool (*bezet)(int32_t)) {
    constexpr int32_t EERSTE = 1000;
    systeller teller;
    int32_t nr = sysrecord;
    iotab('X', &nr, &teller, SYS_RECORD);
    for (int32_t over = hoogste - EERSTE + 1; over > 0; over--) {
        if (teller.laatste < 1 || teller.laatste >= hoogste)
            teller.laatste = EERSTE - 1;
        teller.laatste++;
        if (!bezet || !bezet(teller.laatste))
            return iotab('W', &nr, &teller, SYS_RECORD) ? teller.laatste : 0;
    }
    iotab('U', &nr, &teller, SYS_RECORD);
    return 0;
}

void sys_lees() {
    lees_image(1, &firma);
    if (firma.filialen > FILIALEN) // records by branch have no more places, whatever stands there
        firma.filialen = FILIALEN;
    lees_image(10, &status10);
    lees_image(15, &instel15);
}

void gebruiker_schrijf(char letter) {
    int32_t nr = sessie;
    iotab(letter, &nr, &gebruiker, SYS_GEBRUIKER);
}

uint8_t gebruiker_stand(uint8_t userstate) {
    const uint8_t stond = gebruiker.userstate;
    if (stond != userstate) {
        gebruiker.userstate = userstate;
        SCREINDELATER(userstate >= 10);
        gebruiker_schrijf('w');
    }
    return stond;
}

const char* gebruiker_naam() {
    return gebruiker_naam(gebruiker);
}

const char* gebruiker_naam(const gebruikerslot& van) {
    static char naam[sizeof van.username + 1];
    memset(naam, 0, sizeof naam);
    memcpy(naam, van.username, sizeof van.username);
    UNSCRAMBLE(naam);
    return naam;
}

} // namespace zg
