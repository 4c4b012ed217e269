// zgmacro: the users' keyboard macros at the shell: listed as text, loaded from it, removed. The table is that of the
// directory that MACRO names, as the order program finds it.
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "tools/druktekst.h"
#include "tools/macrotekst.h"
#include "tools/paar.h"
#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>

namespace {

using namespace zg;
using json = nlohmann::ordered_json;

struct Wens {
    std::string map, gebruiker;
    std::vector<std::string> woorden;
    bool json = false;
} wens;

constexpr int WACHT = 10; // seconds for a table that another has for himself

Uitkomst geen_tabel() {
    const int fout = errno;
    return meld(NIET_TE_OPENEN,
                fout == ENAMETOOLONG
                    ? std::string("MACRO: 63 characters at most")
                    : MACROPAD() + ": " + (fout == EINVAL ? "no macros, or damaged" : strerror(fout)));
}

// The user's number; 0, told, for a word that is none.
uint16_t gebruiker() {
    const uint16_t nr = macro_gebruiker(wens.gebruiker);
    if (!nr)
        klacht("", wens.gebruiker + ": a user is a number from 1 to 65535");
    return nr;
}

std::string naam_van(uint16_t nr) {
    gebruikerslot g;
    int32_t slot = nr;
    if (iotab_fd() < 0 || !iotab('R', &slot, &g, SYS_GEBRUIKER))
        return "";
    std::string naam = gebruiker_naam(g);
    for (char& c : naam)
        if (static_cast<uint8_t>(c) < ' ' || c == 127)
            c = ' ';
    return CP850UTF8(naam);
}

Uitkomst lijst() {
    const uint16_t wie = wens.gebruiker.empty() ? 0 : gebruiker();
    if (!wie && !wens.gebruiker.empty())
        return FOUT_GEBRUIKT;
    std::vector<mac_rec> alle;
    if (MACROLEES(wie, &alle) < 0)
        return geen_tabel();
    if (int32_t nr = 0; IOEXISTS("DTSYS.TXT"))
        iotab('O', &nr, nullptr, SYS_RECORD);
    std::stable_sort(alle.begin(), alle.end(),
                     [](const mac_rec& a, const mac_rec& b) { return a.gebruiker < b.gebruiker; });
    Uitkomst uit = GOED;
    uint16_t vorige = 0;
    for (const mac_rec& r : alle) {
        const bool gaaf = MACROGAAF(r);
        if (wens.json) {
            json j;
            j["user"] = uint16_t{r.gebruiker};
            j["name"] = naam_van(r.gebruiker);
            j["key"] = macro_toetsnaam(r.toets);
            j["description"] = CP850UTF8(MACROOMSCHRIJVING(r));
            j["keys"] = macro_toetsen(r);
            j["good"] = gaaf;
            puts(j.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
        } else {
            if (const std::string naam = naam_van(r.gebruiker); r.gebruiker != vorige && !naam.empty())
                printf("# %u %s\n", unsigned{r.gebruiker}, naam.c_str());
            vorige = r.gebruiker;
            printf("%s%s\n", gaaf ? "" : "# can't be played: ", macro_regel(r).c_str());
        }
        if (!gaaf)
            uit = FOUT_GEVONDEN;
    }
    return uit;
}

// All lines of all files, or none when one is wrong.
Uitkomst laad() {
    std::vector<mac_rec> alle;
    for (const std::string& pad : wens.woorden) {
        errno = 0;
        std::ifstream in(pad);
        std::string regel;
        for (int nr = 1; std::getline(in, regel); nr++) {
            const auto woorden = druk_woorden(regel);
            if (woorden.empty())
                continue;
            mac_rec rec;
            if (const std::string fout = macro_ontleed(woorden, &rec); !fout.empty())
                return meld(FOUT_GEBRUIKT, pad + ":" + std::to_string(nr) + ": " + fout);
            alle.push_back(rec);
        }
        if (!in.is_open() || in.bad())
            return meld(NIET_TE_OPENEN, pad + ": " + strerror(errno ? errno : EIO));
    }
    for (const mac_rec& rec : alle)
        if (const int goed = MACROSCHRIJF(rec); goed <= 0)
            return goed < 0 ? geen_tabel() : meld(FOUT_GEVONDEN, "not written: " + macro_regel(rec));
    return GOED;
}

// The macros of these keys, or without keys all of the user's.
Uitkomst weg() {
    const uint16_t wie = gebruiker();
    if (!wie)
        return FOUT_GEBRUIKT;
    std::vector<uint16_t> toetsen;
    for (const std::string& woord : wens.woorden) {
        toetsen.push_back(macro_toets(woord));
        if (!toetsen.back())
            return meld(FOUT_GEBRUIKT, woord + ": a letter or digit");
    }
    if (std::vector<mac_rec> alle; toetsen.empty()) {
        if (MACROLEES(wie, &alle) < 0)
            return geen_tabel();
        for (const mac_rec& r : alle)
            toetsen.push_back(r.toets);
    }
    Uitkomst uit = GOED;
    for (const uint16_t toets : toetsen) {
        const int er = MACROWEG(toets, wie);
        if (er < 0)
            return geen_tabel();
        if (!er)
            uit = meld(FOUT_GEVONDEN,
                       "no macro " + std::to_string(wie) + " " + macro_toetsnaam(toets) + ", or not removed");
    }
    return uit;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgmacro");
    wacht_hooguit(WACHT);
    CLI::App app{
        "the users' keyboard macros, in the directory that MACRO names; man zgmacro has the words of a line.",
        "zgmacro"};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    app.require_subcommand(1);
    app.add_option("-D,--directory", wens.map, "data directory, else the present one");
    std::function<Uitkomst()> daad;
    auto opdracht = [&](const char* naam, const char* uitleg, std::function<Uitkomst()> f) {
        return tool_opdracht(app, &daad, naam, uitleg, std::move(f));
    };
    CLI::App* list = opdracht("list", "the macros, as lines for load", lijst);
    list->add_option("USER", wens.gebruiker, "this user's only");
    list->add_flag("-j,--json", wens.json, "JSON lines");
    opdracht("load", "add or change what files say, all of it or nothing", laad)
        ->add_option("FILE", wens.woorden, "lines as list gives them")
        ->required();
    CLI::App* remove = opdracht("remove", "macros of a user", weg);
    remove->add_option("USER", wens.gebruiker, "his number")->required();
    remove->add_option("KEY", wens.woorden, "their keys, else all of them");
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (const Uitkomst uit = tool_map(wens.map); uit != GOED)
        return uit;
    return tool_einde(daad());
}
