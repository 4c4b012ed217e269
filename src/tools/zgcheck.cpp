// zgcheck: is the full registration of a data directory sound? The trees of its pairs first, then their records against each
// other. One line a file and a total. The check reads beside the programs at work; the repair wants nobody in.
#include "control/batchvw.h"
#include "shared/houder.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include "store/ix.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "tools/boomkeur.h"
#include "tools/paar.h"
#include "tools/registerkeur.h"
#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace {

using namespace zg;
using json = nlohmann::ordered_json;

struct Wens {
    std::string map;
    bool herstel = false, json = false, stil = false;
    int wacht = 10;
};
Wens wens;

// The store's wait routine: who is in the way is told, and it ends.
void wacht(ICB* icb) {
    static int gewacht;
    if (++gewacht > wens.wacht * 5) {
        klacht(icb ? icb->path : "", "in use; nothing was changed");
        tool_weg(IN_GEBRUIK);
    }
    usleep(200'000);
}

void als_json(const keurbestand& b) {
    json j;
    j["file"] = b.naam;
    j["counts"] = b.telling;
    j["lost"] = b.verloren;
    j["wrong"] = b.kwalen;
    j["notes"] = b.noten;
    puts(j.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
}

int verslag(const std::vector<keurbestand>& bestanden) {
    size_t kwalen = 0, noten = 0;
    for (const keurbestand& b : bestanden) {
        kwalen += b.kwalen.size();
        noten += b.noten.size();
        if (wens.json) {
            als_json(b);
            continue;
        }
        for (const std::string& k : b.kwalen)
            printf("%s: %s\n", b.naam.c_str(), CP850UTF8(k).c_str());
        for (const std::string& n : b.noten)
            if (!wens.stil)
                printf("%s: note: %s\n", b.naam.c_str(), CP850UTF8(n).c_str());
        if (!wens.stil || !b.kwalen.empty())
            printf("%s: %s, %s\n", b.naam.c_str(),
                   b.kwalen.empty() ? "good" : (std::to_string(b.kwalen.size()) + " wrong").c_str(),
                   b.telling.c_str());
    }
    if (!wens.json && (!wens.stil || kwalen))
        printf("%zu wrong, %zu notes\n", kwalen, noten);
    return kwalen ? FOUT_GEVONDEN : GOED;
}

// Users of the orders, by name, while group 5 can't be had.
int wie_er_in_is() {
    for (const int32_t nr : batch_gebruikers(BATCH_ORDERS)) {
        int32_t slot = nr;
        gebruikerslot g;
        iotab('R', &slot, &g, SYS_GEBRUIKER);
        klacht("", "in use: user " + std::to_string(nr) + " " + toon(gebruiker_naam(g)));
    }
    klacht("", "nothing was changed");
    return IN_GEBRUIK;
}

// Pairs whose trees are broken: nothing is read by their keys before they are rebuilt.
bool bomen_stuk() {
    const std::vector<keurbestand> stuk = bomen_keur(wens.wacht);
    if (stuk.empty())
        return false;
    verslag(stuk);
    std::string namen;
    for (const keurbestand& b : stuk)
        namen += " " + b.naam;
    klacht("", "rebuild with ixremake first:" + namen + "; the rest was not looked at");
    return true;
}

int herstel() {
    sessie = BATCHGEBRUIKER; // one try, no question
    const bool alleen = batch_claim(BATCH_ORDERS);
    sessie = 0;
    if (!alleen)
        return wie_er_in_is();
    {
        Paar dtser;
        if (paar_open("DTSER", &dtser) != GOED)
            return NIET_TE_OPENEN;
        if (paar_alleen(&dtser, wens.wacht) != GOED)
            return klacht("", "nothing was changed"), IN_GEBRUIK;
    }
    if (bomen_stuk())
        return klacht("", "nothing was changed"), FOUT_GEVONDEN;
    if (const std::string mist = keur_open(true); !mist.empty())
        return klacht(mist, strerror(ENOENT)), NIET_TE_OPENEN;
    bool gelukt;
    for (const std::string& r : register_herstel(&gelukt))
        if (!wens.stil && !wens.json)
            printf("repair: %s\n", CP850UTF8(r).c_str());
    const int uitkomst = verslag(register_keur(1));
    keur_sluit();
    return gelukt ? uitkomst : FOUT_GEVONDEN;
}

int keur() {
    constexpr int POGINGEN = 5;
    if (bomen_stuk())
        return FOUT_GEVONDEN;
    if (const std::string mist = keur_open(false); !mist.empty())
        return klacht(mist, strerror(ENOENT)), NIET_TE_OPENEN;
    const int uitkomst = verslag(register_keur(POGINGEN));
    keur_sluit();
    return uitkomst;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgcheck");
    CLI::App app{"check the full registration of a data directory: series, prices, labels, codes, orders.\n"
                 "It reads beside programs at work; an index that looks wrong is held for a moment.",
                 "zgcheck"};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    app.add_option("DIR", wens.map, "data directory")->required();
    app.add_flag("-r,--repair", wens.herstel,
                 "give back what nobody has and count again, when nobody is in; then check");
    app.add_flag("-j,--json", wens.json, "JSON lines, one a file");
    app.add_flag("-q,--quiet", wens.stil, "say only what is wrong");
    app.add_option("-w,--wait", wens.wacht,
                   "seconds to wait for an index that looks wrong, and for DTSER before a repair")
        ->check(CLI::Range(0, 86400));
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (chdir(wens.map.c_str()) != 0 || access("DTSYS.TXT", F_OK) != 0)
        return klacht(wens.map + "/DTSYS.TXT", strerror(errno)), NIET_TE_OPENEN;
    if (!wens.herstel)
        alleen_lezen();
    IXWAITHOOK = wacht;
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    return tool_einde(wens.herstel ? herstel() : keur());
}
