// zgstatus: may the package start work, who is in, and what waits for the tills; the state set and given free by the
// operator.
#include "control/batchvw.h"
#include "control/controle.h"
#include "edi/konl_mut.h"
#include "shared/iotab.h"
#include "shared/mutatie.h"
#include "shared/syscalls.h"
#include "term/datum.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/vast.h"
#include "tools/tool.h"
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace {

using namespace zg;
using json = nlohmann::ordered_json;

struct Wens {
    std::string map, tekst, verslag = "/tmp";
    bool json = false;
    int code = 0;
} wens;

struct Gebruiker {
    int32_t nr;
    std::string naam, programma;
    int stand;
    bool gestorven; // in a critical step
};

std::vector<Gebruiker> gebruikers() {
    const std::vector<int32_t> dood = kritiek_gestorven();
    std::vector<Gebruiker> uit;
    for (int32_t nr = 1; nr <= SYS_GEBRUIKER.slots; nr++) {
        gebruikerslot g;
        const bool er = iotab('R', &nr, &g, SYS_GEBRUIKER);
        const bool weg = std::find(dood.begin(), dood.end(), nr) != dood.end();
        if (er && (weg || !iotab('T', &nr, &g, SYS_GEBRUIKER)))
            uit.push_back(
                {nr, toon(gebruiker_naam(g)), toon(std::string(VASTUIT(g.userprog))), g.userstate, weg});
    }
    return uit;
}

// Lines that wait in KASMUT.TXT, -1 without the file.
int64_t wachtende_regels() {
    const int fd = SYS.open("KASMUT.TXT", O_RDONLY | O_NONBLOCK | O_CLOEXEC, 0);
    if (fd < 0)
        return -1;
    int64_t regels = 0, plaats = 0;
    char stuk[16384];
    for (ssize_t n; (n = SYSLEES(fd, stuk, sizeof stuk, plaats)) > 0; plaats += n)
        regels += std::count(stuk, stuk + n, '\n');
    SYS.close(fd);
    return regels;
}

std::string groep_tekst(int groep) {
    const std::vector<int32_t> wie = batch_gebruikers(groep);
    if (wie.empty())
        return "free";
    if (wie.size() == 99)
        return "a batch run";
    std::string uit = "user";
    for (const int32_t nr : wie)
        uit += " " + std::to_string(nr);
    return uit;
}

Uitkomst laat_zien() {
    const std::vector<Gebruiker> wie = gebruikers();
    const bool dood = std::any_of(wie.begin(), wie.end(), [](const Gebruiker& g) { return g.gestorven; });
    const bool vrij = status10.status == STATUS_VRIJ && !dood;
    const std::string woorden = toon(status_nu());
    int32_t nr = 19;
    sysbackup b;
    iotab('R', &nr, &b, SYS_RECORD);
    const std::string backup = b.datum ? DATUM10(b.datum) : "";
    tills_lees();
    const int64_t regels = wachtende_regels();
    if (wens.json) {
        json j;
        j["free"] = vrij;
        j["code"] = status10.status;
        j["text"] = woorden;
        j["backup_read"] = backup;
        j["orders"] = groep_tekst(BATCH_ORDERS);
        j["tills"] = groep_tekst(BATCH_KASSA);
        j["till_link"] = kassakoppeling();
        j["till_count"] = tills_count();
        j["mutations"] = std::max<int64_t>(regels, 0);
        j["users"] = json::array();
        for (const Gebruiker& g : wie)
            j["users"].push_back({{"user", g.nr},
                                  {"name", g.naam},
                                  {"program", g.programma},
                                  {"level", g.stand},
                                  {"died", g.gestorven}});
        puts(j.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
    } else {
        printf("state      %d %s%s%s\n", status10.status, vrij ? "free" : "shut", woorden.empty() ? "" : ": ",
               woorden.c_str());
        printf("backup     %s\n", backup.empty() ? "no report was read" : ("report read " + backup).c_str());
        printf("orders     %s\n", groep_tekst(BATCH_ORDERS).c_str());
        printf("tills      %s\n", groep_tekst(BATCH_KASSA).c_str());
        if (kassakoppeling())
            printf("till link  on, tills %d\n", tills_count());
        else
            printf("till link  off\n");
        printf("mutations  %s\n", regels < 0 ? "no file" : (std::to_string(regels) + " waiting").c_str());
        for (const Gebruiker& g : wie)
            printf("user %-5d %s, %s, level %d%s\n", g.nr, g.naam.c_str(), g.programma.c_str(), g.stand,
                   g.gestorven ? ": died in a critical step" : "");
    }
    return vrij ? GOED : FOUT_GEVONDEN;
}

Uitkomst zet() {
    return status_zet(static_cast<uint8_t>(wens.code)) ? GOED : FOUT_GEVONDEN;
}

Uitkomst geef_vrij() {
    return kritiek_wis() && status_zet(STATUS_VRIJ) ? GOED : FOUT_GEVONDEN;
}

Uitkomst sluit() {
    std::string tekst;
    if (!CP850NAAR(wens.tekst, &tekst))
        return klacht("", "code page 850 hasn't got all of that text"), FOUT_GEBRUIKT;
    return status_tekst_zet(tekst) ? GOED : FOUT_GEVONDEN;
}

Uitkomst lees_backup() {
    backup_lezen(wens.verslag.c_str());
    sys_lees();
    return laat_zien();
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgstatus");
    CLI::App app{"may the package start work: its state shown and set, who is in, what waits for the tills",
                 "zgstatus"};
    tool_kop(app, "0 free, or done; 1 shut, or refused; 2 used wrong; 3 cannot open, or another release.");
    app.require_subcommand(0, 1);
    app.add_option("-D,--directory", wens.map, "data directory, else the present one");
    app.add_flag("-j,--json", wens.json, "what is shown as JSON");
    std::function<Uitkomst()> daad = laat_zien;
    auto opdracht = [&](const char* naam, const char* uitleg, std::function<Uitkomst()> f) {
        return tool_opdracht(app, &daad, naam, uitleg, std::move(f));
    };
    opdracht("show", "state, users, tills: what is done without a command", laat_zien)
        ->add_flag("-j,--json", wens.json, "as JSON");
    opdracht("free", "give the package free, marks of users who died in a critical step too", geef_vrij);
    opdracht("set", "set a state", zet)
        ->add_option("CODE", wens.code,
                     "0 free, 1 and 2 wrong or missing files, 3 broken off in a critical step")
        ->required()
        ->check(CLI::Range(0, 3));
    opdracht("block", "shut the package with a text of 49 characters", sluit)
        ->add_option("TEXT", wens.tekst, "what the menu shows")
        ->required();
    opdracht("backup", "read the report of the backup program, then show", lees_backup)
        ->add_option("REPORTS", wens.verslag, "directory of result.bu, else /tmp");
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (const Uitkomst uit = tool_map(wens.map); uit != GOED)
        return uit;
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    sys_lees();
    if (memcmp(status10.release, RELEASE, sizeof status10.release) !=
        0) // nobody can start, and nothing here is what it seems
        return meld(NIET_TE_OPENEN,
                    "DTSYS.TXT is of release " + toon(VASTTEKST(status10.release)) + ", not " + RELEASE);
    return tool_einde(daad());
}
