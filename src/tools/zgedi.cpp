// zgedi: the electronic transfer of a data directory, at the shell: its settings, the mailboxes made, moved and counted,
// what a message's date, number, code or brand is here.
#include "edi/edifys.h"
#include "edi/edihdl.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/tekst.h"
#include "tools/tool.h"
#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace {

using namespace zg;
using json = nlohmann::ordered_json;

struct Wens {
    std::string map, naam, waarde;
    int nummer = 0, breedte = 20;
    bool json = false, tweede = false, blijft = false, zet = false;
} wens;

constexpr const char* NAMEN[] = {"ZEBEDI", "EDIDIR", "EDIRPC", "RPCHOST", "EDICMD"};
constexpr const char* METHODEN[] = {"none", "modem", "internet"};
constexpr char IS_ER[] = "there is a DTRCMSYS.TXT already";
constexpr char GEEN_BESTAND[] = "no DTRCMSYS.TXT here: zgedi init makes it";

std::string methode_naam() {
    const uint8_t m = edi_methode();
    return m < 3 ? METHODEN[m] : std::to_string(m);
}

Uitkomst toon_alles() {
    if (!edi_aanwezig())
        return meld(NIET_TE_OPENEN, GEEN_BESTAND);
    json j;
    j["method"] = methode_naam();
    for (const char* naam : NAMEN)
        j[naam] = toon(edi_kaal(naam));
    j["FILENR"] = edifilenr();
    std::vector<int> vlaggen;
    for (int n = 0; n < EDIVLAGGEN; n++)
        if (ediflagget(n))
            vlaggen.push_back(n);
    j["flags"] = vlaggen;
    if (wens.json) {
        puts(j.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
        return GOED;
    }
    for (const auto& [naam, waarde] : j.items())
        printf("%s=%s\n", naam.c_str(),
               waarde.is_string() ? waarde.get<std::string>().c_str() : waarde.dump().c_str());
    return GOED;
}

bool bekend() {
    return std::any_of(std::begin(NAMEN), std::end(NAMEN), [](const char* n) { return wens.naam == n; });
}

Uitkomst haal() {
    if (!bekend())
        return meld(FOUT_GEBRUIKT, "no such setting: " + wens.naam);
    if (!edi_aanwezig())
        return meld(NIET_TE_OPENEN, GEEN_BESTAND);
    puts(toon(edi_kaal(wens.naam.c_str(), wens.tweede)).c_str());
    return GOED;
}

Uitkomst zet() {
    std::string waarde;
    if (!bekend())
        return meld(FOUT_GEBRUIKT, "no such setting: " + wens.naam);
    if (!CP850NAAR(wens.waarde, &waarde) || !edi_mag(wens.naam.c_str(), waarde.c_str()))
        return meld(FOUT_GEBRUIKT,
                    "the value doesn't fit: 59 bytes (RPCHOST 20) of code page 850, no control bytes; "
                    "ZEBEDI and EDIDIR ASCII");
    if (!edi_aanwezig())
        return meld(NIET_TE_OPENEN, GEEN_BESTAND);
    if (wens.naam == "ZEBEDI" && waarde.empty() && !wens.blijft && !wens.tweede)
        return meld(FOUT_GEBRUIKT, "the mailboxes can't move to nowhere; --stay sets it all the same");
    int uit;
    if (wens.tweede)
        uit = edisetpc(wens.naam.c_str(), waarde.c_str());
    else if (wens.naam == "ZEBEDI" && !wens.blijft)
        uit = edi_verplaats(waarde.c_str());
    else
        uit = ediset(wens.naam.c_str(), waarde.c_str());
    return meld(uit ? GOED : FOUT_GEVONDEN, "not set");
}

Uitkomst methode(bool maak) {
    if (wens.waarde.empty()) {
        puts(methode_naam().c_str());
        return GOED;
    }
    const auto m = static_cast<uint8_t>(wens.waarde == METHODEN[1] ? 1 : 2);
    if (maak && edi_aanwezig() && edi_methode())
        return meld(FOUT_GEVONDEN, IS_ER);
    if (!maak && !edi_aanwezig())
        return meld(NIET_TE_OPENEN, GEEN_BESTAND);
    if (maak && !edi_maak(m))
        return meld(FOUT_GEVONDEN, "not made");
    const uint8_t nu = edi_methode();
    if (maak && nu && nu != m) // another was first
        return meld(FOUT_GEVONDEN, IS_ER);
    return meld(nu == m || edi_methode_zet(m) ? GOED : FOUT_GEVONDEN, "not set");
}

Uitkomst vlag() {
    if (wens.zet)
        return meld(ediflagset(wens.nummer) ? GOED : FOUT_GEVONDEN,
                    edi_aanwezig() ? "not set" : GEEN_BESTAND);
    const int aan = ediflagget(wens.nummer);
    puts(aan ? "1" : "0");
    return aan ? GOED : FOUT_GEVONDEN;
}

Uitkomst maak() {
    if (!edi_aanwezig())
        return meld(NIET_TE_OPENEN, GEEN_BESTAND);
    const bool goed = edimaketree() && (edi_kaal("EDIDIR").empty() || edimakeloc());
    return meld(goed ? GOED : FOUT_GEVONDEN, "not all could be made");
}

Uitkomst bussen() {
    if (!edi_aanwezig())
        return meld(NIET_TE_OPENEN, GEEN_BESTAND);
    const std::string root = edi_kaal("ZEBEDI");
    if (root.empty() || !IOISDIR(root.c_str()))
        return meld(FOUT_GEVONDEN,
                    root.empty() ? "no mailboxes are set: zgedi make" : toon(root) + " isn't there");
    Uitkomst uit = GOED;
    for (int soort = 0; soort < EDI_SOORTEN; soort++) {
        const std::string pad = edipath(soort), bewaar = edisavepath(soort);
        const bool er = IOISDIR(pad.c_str());
        const int nieuw = FILES_PRESENT((pad + "/" + edipattern(soort)).c_str()),
                  oud = bewaar.empty() ? 0 : FILES_PRESENT((bewaar + "/*").c_str());
        if (!er)
            uit = FOUT_GEVONDEN;
        if (wens.json) {
            json j;
            j["box"] = edidirname(soort);
            j["path"] = toon(pad);
            j["there"] = er;
            j["files"] = nieuw;
            j["saved"] = oud;
            puts(j.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
        } else {
            printf("%-8s %6d %6d  %s%s\n", edidirname(soort), nieuw, oud, toon(pad).c_str(),
                   er ? "" : "  isn't there");
        }
    }
    return uit;
}

// The firm's settings decide which codes are internal; without a DTSYS.TXT those that always are.
void lees_firma() {
    int32_t nr = 0;
    if (!IOEXISTS("DTSYS.TXT"))
        return;
    iotab('O', &nr, nullptr, SYS_RECORD);
    sys_lees();
}

Uitkomst bericht() {
    std::string tekst;
    if (!CP850NAAR(wens.waarde, &tekst))
        return meld(FOUT_GEBRUIKT, "not in code page 850");
    int goed = 1;
    if (wens.naam == "date") {
        char uit[9];
        goed = edidatum(tekst.c_str(), uit);
        tekst = uit;
    } else if (wens.naam == "number") {
        edigetal(tekst.data());
    } else if (wens.naam == "ean") {
        lees_firma();
        tekst.resize(tekst.size() + 2);
        goed = ediean(tekst.data());
    } else {
        const Stampaar paar("DTMERK", 0);
        if (!paar.icb)
            return meld(NIET_TE_OPENEN, "no DTMERK here");
        const int merk = edimerk(paar.icb, tekst.c_str(), wens.breedte);
        goed = merk != 0;
        tekst = std::to_string(merk);
    }
    if (!goed)
        return meld(FOUT_GEVONDEN, "not a " + wens.naam + " that counts here: " + wens.waarde);
    puts(toon(tekst.c_str()).c_str());
    return GOED;
}

Uitkomst scherm() {
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO))
        return meld(FOUT_GEBRUIKT, "setup needs a terminal");
    SCRFATALHAAK = nullptr; // a report has its box
    SCRINIT();
    edi_scherm();
    SCREXIT();
    return GOED;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgedi");
    CLI::App app{"the electronic transfer: its settings, the mailboxes, what messages say", "zgedi"};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open.");
    app.require_subcommand(1);
    app.add_option("-D,--directory", wens.map, "data directory, else the present one");
    std::function<Uitkomst()> daad;
    auto opdracht = [&](const char* naam, const char* uitleg, std::function<Uitkomst()> f) {
        return tool_opdracht(app, &daad, naam, uitleg, std::move(f));
    };
    const CLI::IsMember wijzen({"modem", "internet"});
    opdracht("init", "make the settings, or convert those of the older form", [] { return methode(true); })
        ->add_option("METHOD", wens.waarde, "modem or internet")
        ->required()
        ->check(wijzen);
    opdracht("show", "all settings and flags", toon_alles)->add_flag("-j,--json", wens.json, "as JSON");
    CLI::App* get = opdracht("get", "one of them", haal);
    CLI::App* set = opdracht("set", "change one; a new ZEBEDI moves the mailboxes there", zet);
    for (CLI::App* s : {get, set}) {
        tool_mag(s->add_option("NAME", wens.naam, "ZEBEDI, EDIDIR, EDIRPC, RPCHOST or EDICMD")->required(),
                 "{ZEBEDI,EDIDIR,EDIRPC,RPCHOST,EDICMD}");
        s->add_flag("-2,--second", wens.tweede, "of the second set, DTIPCSYS.TXT");
    }
    set->add_option("VALUE", wens.waarde, "its value")->required();
    set->add_flag("-s,--stay", wens.blijft, "only set ZEBEDI, nothing is moved");
    opdracht("method", "how messages go, shown or changed", [] { return methode(false); })
        ->add_option("METHOD", wens.waarde, "modem or internet")
        ->check(wijzen);
    CLI::App* flag = opdracht("flag", "is a flag set? 1 with status 0, or 0 with status 1", vlag);
    flag->add_option("N", wens.nummer, "its number")->required()->check(CLI::Range(0, EDIVLAGGEN - 1));
    flag->add_flag("-s,--set", wens.zet, "set it");
    opdracht("make", "all mailboxes, and the location files where EDIDIR is set", maak);
    opdracht("boxes", "how many files each has, new and saved", bussen)
        ->add_flag("-j,--json", wens.json, "JSON lines");
    CLI::App* check = opdracht("check", "what a text of a message is here", bericht);
    check->add_option("KIND", wens.naam, "date, number, ean or brand")
        ->required()
        ->check(CLI::IsMember({"date", "number", "ean", "brand"}));
    check->add_option("TEXT", wens.waarde, "the text")->required();
    check->add_option("-w,--width", wens.breedte, "cut a brand's name at so many bytes (20)")
        ->check(CLI::Range(1, 20));
    opdracht("setup", "the settings on the screen", scherm);
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (const Uitkomst uit = tool_map(wens.map); uit != GOED)
        return uit;
    return tool_einde(daad());
}
