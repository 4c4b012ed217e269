// Module koppel: records and files of the link tables taken away.
#include "shared/koppel.h"
#include "shared/files.h"
#include "shared/leesstam.h"
#include "shared/report.h"
#include "store/ix.h"
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

namespace zg {
namespace {

constexpr char MAP[] = "edistam/";

using Record = std::array<uint8_t, IXRECMAX>;

// The files of a pattern, with the directory as we name it: handles keep no long names.
std::vector<std::string> bestanden(const char* patroon) {
    std::vector<std::string> uit;
    char naam[DIRNAAM];
    snprintf(naam, sizeof naam, "%s%s", MAP, patroon);
    if (!DIRECTORY('O', naam, 0))
        return uit;
    while (DIRECTORY('N', naam, 0))
        uit.push_back(std::string(MAP) + IOBASENAME(naam));
    DIRECTORY('C', naam, 0);
    return uit;
}

bool heeft(const Koppeling& k, const Record& rec, int32_t nummer) {
    const auto n = static_cast<size_t>(k.breedte);
    return memcmp(rec.data() + k.plaats, &nummer, n) == 0; // little-endian: the low bytes
}

bool doe(ICB* icb, const Koppeling& k, int32_t nummer, Record& rec) {
    const Record gezocht = rec;
    const int gelezen = IXREADL(icb, rec.data());
    if (gelezen == 0)
        IXUNLOCK(icb, gezocht.data());
    if (gelezen != 1)
        return gelezen == 0;
    if (!heeft(k, rec, nummer)) {
        IXUNLOCK(icb, rec.data());
        return true;
    }
    const int geweigerd = IXWEIGERINGEN;
    if (k.actie == Koppeling::WIS) {
        IXDELETE(icb, rec.data());
        return IXWEIGERINGEN == geweigerd;
    }
    memset(rec.data() + k.plaats, 0, static_cast<size_t>(k.breedte));
    return IXWRITE(icb, rec.data()) == 1;
}

bool wis_in(const std::string& tabel, const Koppeling& k, int32_t nummer, const char* module) {
    if (!stam_aanwezig(tabel.c_str())) {
        errno = ENOENT;
        OPENFAIL(module, tabel.c_str());
    }
    ICB* icb = IXOPEN(tabel.c_str(), 2);
    std::vector<Record> gevonden;
    Record rec{};
    int antwoord;
    // As many as there are bytes for, whatever the header says.
    const int64_t bytes = k.plaats + k.breedte <= icb->h.reclen ? IOSIZE((tabel + ".TXT").c_str()) : 0;
    for (int32_t nr = 0; int64_t{nr} * icb->h.reclen < bytes; nr++) {
        if ((antwoord = IXGET(icb, rec.data(), nr)) < 0)
            break;
        if (antwoord == 1 && heeft(k, rec, nummer))
            gevonden.push_back(rec);
    }
    bool goed = true;
    for (size_t i = 0; goed && i < gevonden.size(); i++)
        goed = doe(icb, k, nummer, gevonden[i]);
    IXCLOSE(icb);
    return goed;
}

} // namespace

bool koppel_wis(std::span<const Koppeling> soorten, int32_t nummer, const char* module) {
    for (const Koppeling& k : soorten)
        for (const std::string& bestand : bestanden(k.bestanden))
            if (!wis_in(bestand.substr(0, bestand.rfind('.')), k, nummer, module))
                return false;
    return true;
}

bool koppel_bestanden_weg(const char* patroon) {
    for (const std::string& bestand : bestanden(patroon))
        if (!IOUNLINK(bestand.c_str())) {
            SCHRIJFFOUT(bestand.c_str(), errno);
            return false;
        }
    return true;
}

} // namespace zg
