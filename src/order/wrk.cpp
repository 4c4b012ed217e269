// The work file: names, the index of its lines (ORS), the scratch file (TMP), the marker (ACT) and wrk_open.
// Its siblings wrkregel.cpp, commit.cpp and herstel.cpp change lines, splice the order back, repair.
#include "order/wrk.h"
#include "order/meld.h"
#include "order/programma.h"
#include "order/wrkbinnen.h"
#include "shared/files.h"
#include "shared/registerrec.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <unistd.h>
#include <vector>

namespace zg {

int32_t aantal_regels;
ordhandle* journaal;
ordhandle* werk;
int32_t order_start, order_volgende;
bool order_nieuw;
bool order_alleen_lezen;
ors_ingang regelingang;
seriesleutel regel_uit;

namespace {

std::string stam; // "2016Z/ORD0012", empty outside an order
std::string journaalnaam;

inline constexpr size_t TMPBUFFER = 256 * 1024;
inline constexpr int32_t REGELS_MAX = UINT16_MAX; // line numbers of the index are 16 bits

struct scratch {
    int fd = -1;
    std::vector<uint8_t> buffer;
    int64_t omvang = 0; // with what is still in the buffer
    int fout = 0;       // errno of the first failure
    // The index under construction, and what tmp_weg puts back.
    std::vector<ors_ingang> ors;
    ors_ingang ingang = {};
    int32_t regels_oud = 0;
} tmp;

int ors_fd = -1;
std::vector<ors_ingang> ors_nu; // what the ORS file holds; lines are looked up here, nobody else writes it

bool tmp_leeg() {
    if (!tmp.fout && !tmp.buffer.empty() && !SYSSCHRIJF(tmp.fd, tmp.buffer.data(), tmp.buffer.size()))
        tmp.fout = errno ? errno : EIO;
    tmp.buffer.clear();
    return !tmp.fout;
}

void indexeer_record(char tag) {
    int32_t offset = static_cast<int32_t>(tmp.omvang);
    if (tag == 'M') {
        tmp.ingang = {};
        tmp.ingang.m = offset;
    } else if (tag == 'D') {
        if (aantal_regels == REGELS_MAX) {
            tmp.fout = EOVERFLOW;
            return;
        }
        tmp.ingang.regel = static_cast<uint16_t>(++aantal_regels);
        tmp.ingang.d = offset;
        tmp.ors.push_back(tmp.ingang);
    }
}

} // namespace

void wrk_namen() {
    wrk_namen_wis();
    char naam[16];
    snprintf(naam, sizeof naam, "ORD%04u", static_cast<unsigned>(gekozen_leverancier));
    stam = seizoensmap + '/' + naam;
    if (gekozen_leverancier) {
        journaalnaam = stam + ".JRN";
    } else {
        snprintf(naam, sizeof naam, "ORD%5.5s", seizoensmap.c_str());
        journaalnaam = std::string(naam) + ".JRN";
    }
}

void wrk_namen_wis() {
    stam.clear();
    journaalnaam.clear();
}

std::string wrk_naam(const char* ext) {
    if (stam.empty())
        return {};
    return strcmp(ext, "JRN") == 0 ? journaalnaam : stam + '.' + ext;
}

namespace {

// A call by name that failed may be the first that is heard of a lost connection: then the others aren't tried.
bool gelukt(bool goed) {
    const int reden = errno;
    if (!goed && journaal)
        ord_nog_vast(journaal);
    errno = reden;
    return goed;
}

} // namespace

int wrk_maak(const char* ext, int vlaggen) {
    if (journaal && !ord_nog_vast(journaal))
        return -1;
    const int fd = SYSNIEUW(wrk_naam(ext).c_str(), vlaggen);
    gelukt(fd >= 0);
    return fd;
}

bool wrk_hernoem(const char* van, const char* naar) {
    return (!journaal || ord_nog_vast(journaal)) &&
           gelukt(SYS.rename(wrk_naam(van).c_str(), wrk_naam(naar).c_str()) == 0);
}

bool wrk_verwijder(const char* ext) {
    return (!journaal || ord_nog_vast(journaal)) && gelukt(IOUNLINK(wrk_naam(ext).c_str()));
}

bool wrk_verloren() {
    return journaal && journaal->verloren;
}

void wrk_geweigerd(const char* ext, int reden, const char* regel2, const char* regel3) {
    if (wrk_verloren())
        regel2 = TXT(T_JRN_SLOT_WEG), regel3 = TXT(T_JRN_KIES_OPNIEUW);
    SCHRIJFFOUT(wrk_naam(ext).c_str(), reden, regel2, regel3);
}

bool wrk_actief_schrijf() {
    act_record act = {};
    act.start = order_start;
    act.volgende = order_volgende;
    act.omvang = static_cast<int32_t>(IOOMVANG(journaal->fd));
    act.sessie = static_cast<uint8_t>(sessienummer);
    int fd = wrk_maak("ACT", O_WRONLY | O_TRUNC);
    if (fd < 0)
        return false;
    bool goed = SYSSCHRIJF(fd, &act, sizeof act);
    int reden = errno;
    if (SYS.close(fd) != 0 && goed) {
        goed = false;
        reden = errno;
    }
    errno = reden;
    return goed;
}

void wrk_actief_wis() {
    wrk_verwijder("ACT");
}

void wrk_ruim_op() {
    if (stam.empty())
        return;
    wrk_verwijder("WRK");
    tmp_weg();
    wrk_verwijder("TMP");
    ors_wis();
    wrk_actief_wis();
}

// ---- the index

bool ors_nieuw() {
    if (ors_fd >= 0)
        SYS.close(ors_fd);
    ors_nu.clear();
    aantal_regels = 0;
    ors_fd = wrk_maak("ORS", O_RDWR | O_TRUNC);
    return ors_fd >= 0;
}

void ors_wis() {
    if (ors_fd >= 0)
        SYS.close(ors_fd);
    ors_fd = -1;
    ors_nu.clear();
    wrk_verwijder("ORS");
}

bool ors_lees(char modus, ors_ingang* ingang) {
    int32_t nr;
    switch (modus) {
    case 'F':
        nr = 1;
        break;
    case 'N':
        nr = ingang->regel + 1;
        break;
    case 'P':
        nr = ingang->regel - 1;
        break;
    case 'R':
        nr = ingang->regel;
        break;
    default:
        return false;
    }
    if (nr < 1 || nr > aantal_regels || nr > std::ssize(ors_nu))
        return false;
    *ingang = ors_nu[static_cast<size_t>(nr) - 1];
    return true;
}

namespace {
bool ors_schrijf(const std::vector<ors_ingang>& lijst) {
    size_t bytes = lijst.size() * sizeof(ors_ingang);
    return SYSSCHRIJFOP(ors_fd, lijst.data(), bytes, 0) &&
           SYS.ftruncate(ors_fd, static_cast<off_t>(bytes)) == 0;
}
} // namespace

bool ors_af() {
    if (ors_fd < 0) {
        errno = EBADF;
        return false;
    }
    if (ors_schrijf(tmp.ors)) {
        ors_nu.swap(tmp.ors);
        return true;
    }
    int reden = errno;
    ors_schrijf(ors_nu);
    errno = reden;
    return false;
}

// ---- the scratch file

bool tmp_nieuw(bool ors_ook) {
    if (tmp.fd >= 0)
        SYS.close(tmp.fd);
    tmp.buffer.clear();
    tmp.buffer.reserve(TMPBUFFER);
    tmp.omvang = 0;
    tmp.ors.clear();
    tmp.ingang = {};
    tmp.ingang.m = -1; // a line without a model in front of it can't be loaded
    tmp.regels_oud = aantal_regels;
    if (ors_ook)
        aantal_regels = 0;
    tmp.fd = wrk_maak("TMP", O_RDWR | O_TRUNC);
    tmp.fout = tmp.fd < 0 ? errno : 0;
    return tmp.fd >= 0;
}

bool tmp_rauw(const uint8_t* data, size_t lengte, bool indexeer) {
    if (tmp.fout)
        return false;
    if (tmp.omvang + static_cast<int64_t>(lengte) > INT32_MAX) {
        tmp.fout = EFBIG; // offsets are 32 bits
        return false;
    }
    if (indexeer)
        indexeer_record(static_cast<char>(*data));
    if (tmp.buffer.size() + lengte > TMPBUFFER)
        tmp_leeg();
    tmp.buffer.insert(tmp.buffer.end(), data, data + lengte);
    tmp.omvang += static_cast<int64_t>(lengte);
    return !tmp.fout;
}

bool tmp_schrijf(char tag, const void* inhoud, bool indexeer) {
    int lengte = ord_lengte(tag);
    if (lengte < 0)
        return false;
    uint8_t bytes[1 + sizeof(orddessin)];
    bytes[0] = static_cast<uint8_t>(tag);
    memcpy(bytes + 1, inhoud, static_cast<size_t>(lengte));
    return tmp_rauw(bytes, 1 + static_cast<size_t>(lengte), indexeer);
}

bool tmp_tekst(int soort, const char* blok) {
    uint8_t bytes[5 * (1 + sizeof(ordtekst))];
    tekst_records(soort, blok, bytes);
    return tmp_rauw(bytes, sizeof bytes, false);
}

bool tmp_af() {
    if (tmp_leeg())
        return true;
    errno = tmp.fout;
    return false;
}

int tmp_fd() {
    return tmp.fd;
}

int tmp_neem() {
    int fd = tmp.fd;
    tmp.fd = -1;
    return fd;
}

void tmp_weg() {
    if (tmp.fd < 0)
        return;
    SYS.close(tmp_neem());
    wrk_verwijder("TMP");
    aantal_regels = tmp.regels_oud;
}

bool tmp_begin_wrk() {
    if (tmp_nieuw(true))
        return true;
    aantal_regels = tmp.regels_oud;
    wrk_geweigerd("TMP", tmp.fout, TXT(T_JRN_WERK_BLIJFT), nullptr);
    return false;
}

bool tmp_op_schijf() {
    // Some file systems know no fsync; others tell only now that the disk is full.
    return SYS.fsync(tmp.fd) == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool tmp_naar_wrk(const std::function<bool()>& tevoren) {
    // The index goes first: with a kill in between the repair finds the old work file, and it does not read
    // ORS.
    std::vector<ors_ingang> vorige = ors_nu;
    const char* ext = "TMP";
    bool goed = tmp_af() && (!tevoren || tmp_op_schijf());
    bool gezegd = false;
    if (goed) {
        ext = "ORS";
        goed = ors_af();
    }
    if (goed) {
        ext = "WRK";
        goed = IOLOCK('E', tmp.fd, 0, 1) && SYSEVENALS(tmp.fd, wrk_naam("WRK").c_str());
        gezegd = goed && tevoren && !tevoren();
        if (goed && !gezegd && wrk_hernoem("TMP", "WRK")) {
            ord_wissel(werk, tmp_neem());
            return true;
        }
        int reden = errno;
        ors_schrijf(vorige);
        ors_nu = vorige;
        errno = reden;
    }
    int reden = errno;
    tmp_weg();
    if (!gezegd)
        wrk_geweigerd(ext, reden, TXT(T_JRN_WERK_BLIJFT), nullptr);
    return false;
}

// ---- opening an order

namespace {

bool open_mislukt(const char* ext, bool niet_te_openen) {
    int reden = errno;
    std::string naam = wrk_naam(ext);
    ord_sluit(werk);
    werk = nullptr;
    wrk_ruim_op();
    if (niet_te_openen && !wrk_verloren())
        ord_meld_niet_open(naam.c_str(), reden);
    else
        wrk_geweigerd(ext, reden, TXT(T_JRN_WERK_BLIJFT), nullptr);
    return false;
}

// The order under the journal's handle into TMP, each text as five records again; ends behind the order.
void kopieer_order(bool* zonder_register) {
    char blok[BLOKLEN];
    *zonder_register = kop.ordernummer == 0;
    do {
        if (journaal->tag == 'T')
            continue;
        if (journaal->tag == 'D' && !dessin.geregistreerd)
            *zonder_register = true;
        tmp_schrijf(journaal->tag, ord_beeld(journaal->tag), true);
        for (int soort = 1; soort <= 4; soort++) {
            if (journaal->tag != (soort <= 2 ? 'O' : soort == 3 ? 'M' : 'D'))
                continue;
            ord_tekst_lees(journaal, soort, blok);
            tmp_tekst(soort, blok);
        }
    } while (ord_kind(journaal, 'O'));
}

} // namespace

bool wrk_open() {
    wrk_namen();
    if (!registermodus)
        ord_keur_order(journaal); // before anything is made
    wrk_actief_wis();
    if (!ors_nieuw())
        return open_mislukt("ORS", true);
    if (!tmp_nieuw(false))
        return open_mislukt("TMP", true);
    order_start = journaal->offset;
    order_alleen_lezen = false;
    regel_uit = {};
    ord_lees(journaal, 'R');
    if (journaal->tag == 'O') {
        bool zonder_register;
        kopieer_order(&zonder_register);
        order_alleen_lezen =
            registermodus ? zonder_register || (kop.status != 0 && gebruikersrecht == 'I') : kop.status != 0;
    } else if (journaal->tag != 'X') {
        INTERNAL("ioord", 4);
    }
    ordkop eigen = kop; // the step to the next order reads that one's header
    order_volgende = ord_lees(journaal, 'N') ? journaal->offset : -1;
    kop = eigen;
    if (!tmp_af())
        return open_mislukt("TMP", false);
    if (!ors_af())
        return open_mislukt("ORS", false);
    if (SYS.close(tmp_neem()) != 0)
        return open_mislukt("TMP", false);
    if (!wrk_hernoem("TMP", "WRK"))
        return open_mislukt("WRK", false);
    if (!wrk_actief_schrijf())
        return open_mislukt("ACT", false);
    werk = ord_open_wrk(seizoensmap.c_str(), gekozen_leverancier, O_RDWR);
    if (!werk)
        return open_mislukt("WRK", true);
    return true;
}

} // namespace zg
