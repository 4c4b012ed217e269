// New pictures, from the directory where they are put into that of a brand. See sub/afb_hdl.h.
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include "sub/afb_hdl.h"
#include "sub/teksten.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <filesystem>

namespace zg {
namespace {

constexpr int HOOGSTE = 99; // suffix
constexpr int BREEDTE = 80;

struct Nieuw {
    std::string naam, wordt; // its name there; empty: none is free, or none short enough
    int suffix;              // 0: none
};

std::vector<Nieuw> rijen;
LIJST* lijst;

// "ROOD.JPG" with 1 is "ROOD.01.JPG": behind the extension it would be no picture any more.
std::string met_suffix(const std::string& naam, int nr) {
    const size_t punt = naam.rfind('.');
    char tussen[16];
    snprintf(tussen, sizeof tussen, ".%02d", nr);
    return naam.substr(0, punt) + tussen + naam.substr(punt);
}

// Both names of one file, as a kill between the two leaves it.
bool al_daar(const std::string& van, const std::string& doel) {
    std::error_code geen;
    return std::filesystem::equivalent(van, doel, geen) && std::filesystem::hard_link_count(van, geen) == 2;
}

Nieuw naam_in(const std::string& van, const std::string& map, const std::string& naam) {
    for (int nr = 0; nr <= HOOGSTE; nr++) {
        const std::string wordt = nr ? met_suffix(naam, nr) : naam;
        if (wordt.size() > AFB_NAAM)
            break;
        if (!IOEXISTS((map + wordt).c_str()) || al_daar(van + naam, map + wordt))
            return {naam, wordt, nr};
    }
    return {naam, "", 0};
}

int32_t haal(int32_t stap) {
    const int64_t n = std::ssize(rijen);
    const int64_t naar = std::clamp<int64_t>(int64_t{lijst->positie} + stap, 0, n - 1);
    if (stap != 0 && naar == lijst->positie)
        return 0;
    lijst->positie = static_cast<uint32_t>(naar);
    return 1;
}

void kop() {
    SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_AFB_K_AFBEELDING));
}

void toets() {
    SCRPUT(A_LABEL, LIJSTVELDRIJ(), 2, "%s", TXT(T_AFB_MERKEN));
    TOETSKIES(&SCHERM.toets[key_f3], "\n");
}

const char* regel() {
    static char uit[80];
    const Nieuw& r = rijen[lijst->positie];
    char achter[8] = "";
    if (r.wordt.empty())
        snprintf(achter, sizeof achter, " *");
    else if (r.suffix)
        snprintf(achter, sizeof achter, " *%d", r.suffix);
    snprintf(uit, sizeof uit, "%-45.45s%s", r.naam.c_str(), achter);
    return uit;
}

// Copies that an import was killed in: a picture's name with the number of a process that is gone behind it.
void ruim_op(const std::string& map) {
    std::error_code fout;
    for (std::filesystem::directory_iterator it(map, fout), einde; !fout && it != einde; it.increment(fout)) {
        const std::string naam = it->path().filename().string();
        const size_t punt = naam.rfind('.') + 1;
        pid_t pid = 0;
        const auto [tot, geen] = std::from_chars(naam.data() + punt, naam.data() + naam.size(), pid);
        if (punt > 0 && geen == std::errc() && tot == naam.data() + naam.size() && pid > 0 &&
            kill(pid, 0) != 0 && errno == ESRCH && afb_keur(naam.substr(0, punt - 1)) == Afbnaam::goed &&
            afb_aanwezig(map + naam))
            IOUNLINK((map + naam).c_str());
    }
}

// Never over a file: one that came meanwhile has the name, and the next suffix is tried.
bool verplaats(const std::string& van, const std::string& map, const std::string& naam) {
    for (Nieuw n = naam_in(van, map, naam); !n.wordt.empty(); n = naam_in(van, map, naam)) {
        const std::string doel = map + n.wordt;
        if (al_daar(van + naam, doel))
            return IOUNLINK((van + naam).c_str());
        if (IOMOVE((van + naam).c_str(), doel.c_str(), 0))
            return true;
        if (!IOEXISTS(doel.c_str()))
            break;
    }
    return false;
}

} // namespace

int afb_import(uint16_t merk) {
    const std::string van = afb_nieuw_map(), map = afb_map(merk);
    int lang = 0;
    rijen.clear();
    for (const std::string& naam : afb_bestanden(van, &lang))
        rijen.push_back(naam_in(van, map, naam));
    afb_meld_lang(lang);
    if (rijen.empty()) {
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
        return 0;
    }
    const std::string kaal = map.substr(0, map.size() - 1);
    if (!IOISDIR(map.c_str()) && !SYSNIEUWEMAP(kaal.c_str())) {
        if (errno == EEXIST)
            ALARMBOX(kaal.c_str(), TXT(T_IS_GEEN_MAP));
        else
            SCHRIJFFOUT(kaal.c_str(), errno);
        return 0;
    }
    ruim_op(map);
    lijst = LIJSTNEW(haal, toets, kop, regel);
    if (!lijst)
        NOMEM("afb_hdl", 2);
    lijst->vast = 1;
    lijst->aantal = [] { return int64_t{std::ssize(rijen)}; };
    lijst->merken = 1;
    lijst->breedte = BREEDTE;
    snprintf(lijst->titel, sizeof lijst->titel, " %s ", TXT(T_AFB_NIEUWE));
    lijst->positie = 0;
    int gekomen = 0;
    while (LIJSTRUN(lijst, 0)) {
        const std::string naam = rijen[lijst->positie].naam;
        if (verplaats(van, map, naam))
            gekomen++;
        else
            ALARMBOX(TXT(T_AFB_NIET_INGELEZEN), naam.c_str());
    }
    LIJSTDEL(lijst);
    lijst = nullptr;
    return gekomen;
}

} // namespace zg
