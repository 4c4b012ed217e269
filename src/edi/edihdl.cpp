// Module edihdl: the kinds of messages, their directories, the location files, and who is at work. The tree itself is in
// ediboom.cpp, what messages say in edibericht.cpp.
#include "edi/edihdl.h"
#include "edi/edibinnen.h"
#include "edi/teksten.h"
#include "shared/files.h"
#include "shared/houder.h"
#include "shared/iotab.h"
#include "shared/mapbeurt.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/datum.h"
#include "term/vast.h"
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace zg {
namespace {

struct Soort {
    const char *map, *extensie;
};
constexpr Soort SOORTEN[EDI_SOORTEN] = {
    {"order", ".INH"},  {"admord", ".ORD"}, {"pricat", ".PRI"}, {"slsrpt", ".SLS"},
    {"invrpt", ".INV"}, {"ibis", ""},       {"desadv", ".DES"}, {"slsmon", ".MON"},
    {"in", ""},         {"out", ""},        {"ongeldig", ""},
};

constexpr size_t LOCATIEBREEDTE = 100;
constexpr char STANDAARD[] = "zebedi";

const Soort* soort_van(int soort) {
    return soort >= 0 && soort < EDI_SOORTEN ? &SOORTEN[soort] : nullptr;
}

// The standard root, made and set; empty when it can't be.
std::string standaardroot() {
    char hier[PATH_MAX];
    if (!edi_aanwezig() || !getcwd(hier, sizeof hier))
        return "";
    const std::string pad = edi_zonder_streep(hier) + "/" + STANDAARD;
    if (!edi_past("ZEBEDI", pad.c_str())) {
        ALARMBOX(TXT(T_EDI_PAD_LANG), pad.substr(0, 76).c_str());
        return "";
    }
    if (!IOISDIR(pad.c_str()) && !edi_maakmap(pad))
        return "";
    return ediset("ZEBEDI", pad.c_str()) ? pad : "";
}

void zeg_weg(const std::string& root) {
    static std::string gezegd;
    if (gezegd == root)
        return;
    gezegd = root;
    edi_zeg(T_EDI_GEEN_ROOT, root);
}

// One line, beside and then in place: who reads it finds the old or the new one.
bool schrijf_locatie(const std::string& naam, const std::string& regel) {
    const std::string naast = naam.substr(0, naam.rfind('/') + 1) + EDIBOUW;
    IOUNLINK(naast.c_str());
    const int fd = SYSNIEUW(naast.c_str(), O_RDWR | O_EXCL);
    bool goed = fd >= 0 && SYSEVENALS(fd, naam.c_str()) && SYSSCHRIJF(fd, regel.data(), regel.size()) &&
                SYS.fsync(fd) == 0;
    int fout = errno;
    if (fd >= 0 && SYS.close(fd) != 0 && goed)
        goed = false, fout = errno;
    if (goed && SYS.rename(naast.c_str(), naam.c_str()) < 0)
        goed = false, fout = errno;
    if (goed)
        return true;
    if (fd >= 0)
        IOUNLINK(naast.c_str());
    SCHRIJFFOUT(naam.c_str(), fout);
    return false;
}

} // namespace

std::string edi_zonder_streep(std::string pad) {
    while (!pad.empty() && pad.back() == '/')
        pad.pop_back();
    return pad;
}

const char* edidirname(int soort) {
    const Soort* s = soort_van(soort);
    return s ? s->map : "";
}

const char* ediext(int soort) {
    const Soort* s = soort_van(soort);
    return s ? s->extensie : "";
}

std::string edipattern(int soort) {
    return soort == EDI_IBIS || soort == EDI_ONGELDIG ? "*.*" : std::string("*") + ediext(soort);
}

std::string ediroot() {
    const std::string gezet = edi_kaal("ZEBEDI");
    if (gezet.empty())
        return standaardroot();
    if (!IOISDIR(gezet.c_str()))
        zeg_weg(gezet);
    return gezet;
}

std::string edipath(int soort) {
    const std::string root = ediroot();
    if (root.empty())
        return "";
    const std::string naam = edidirname(soort);
    return naam.empty() ? root : edi_zonder_streep(root) + "/" + naam;
}

std::string edisavepath(int soort) {
    const std::string pad = soort_van(soort) && soort <= EDI_BEWAART ? edipath(soort) : "";
    return pad.empty() ? "" : pad + "/save";
}

std::string edilocatie(const std::string& root, int soort) {
    std::string regel = edi_zonder_streep(root) + "/" + edidirname(soort) + "/";
    regel.resize(LOCATIEBREEDTE, ' ');
    return regel + "\n";
}

int edimakeloc() {
    const std::string map = edi_kaal("EDIDIR"), root = ediroot();
    if (map.empty() || root.empty()) {
        if (map.empty())
            ALARMBOX(TXT(T_EDI_GEEN_DIR));
        return 0;
    }
    if (!IOISDIR(map.c_str()) && !edi_maakmap(map))
        return 0;
    int goed = 1;
    const IOBEURT beurt((edi_zonder_streep(map) + "/" + EDIBOUW).c_str());
    for (const Edilocatie& l : EDILOCATIES)
        goed &= schrijf_locatie(edi_zonder_streep(map) + "/" + l.bestand, edilocatie(root, l.soort));
    return goed;
}

int32_t edifilenr() {
    const std::string map = ediget("EDIDIR"), naam = edi_zonder_streep(map) + "/" + EDIFILENR;
    const int fd = map.empty() ? -1 : SYS.open(naam.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    if (fd < 0)
        return 0;
    char tekst[32] = "";
    const ssize_t n = SYSLEES(fd, tekst, sizeof tekst - 1, 0);
    SYS.close(fd);
    tekst[n < 0 ? 0 : n] = '\0';
    tekst[strcspn(tekst, "\r\n")] = '\0';
    const long long nummer = strtoll(tekst, nullptr, 10);
    return nummer < 0 || nummer > INT32_MAX ? 0 : static_cast<int32_t>(nummer);
}

std::string edi_bezet(int fd, int64_t start, int64_t lengte) {
    gebruikerslot slot{};
    houder_slot(fd, start, lengte, &slot);
    std::string uit = std::string(TXT(T_EDI_BEZET)) + " " + gebruiker_naam(slot);
    if (const std::string tty(VASTUIT(slot.usertty)); !tty.empty())
        uit += " (tty" + tty + ")";
    return uit;
}

namespace {
constexpr uint16_t EDI_AAN = 4;

bool aan() {
    return (firma.vlaggen & EDI_AAN) != 0;
}
} // namespace

bool isedi2(uint8_t code) {
    return aan() && code == 2;
}

bool isedi3(uint8_t code) {
    return aan() && code == 3;
}

bool isedi(uint8_t code) {
    return isedi2(code) || isedi3(code);
}

std::string edi_termregel(int32_t order, uint16_t leverancier, const char* naam, uint16_t eerste,
                          uint16_t laatste, int stuks) {
    char van[9], tot[9], regel[120];
    DATUMTEKST(van, eerste, false);
    DATUMTEKST(tot, laatste, false);
    snprintf(regel, sizeof regel, "%2ld %4hu %-20.20s %-6.6s-%-6.6s   %5d", static_cast<long>(order),
             leverancier, naam, van, tot, stuks);
    return regel;
}

} // namespace zg
