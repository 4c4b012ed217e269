// zgcheck: is a data directory sound? The trees of its pairs first, then what stands in its files and the files against each
// other; who is at work, and what is left over. One line a file and a total. The check reads beside the programs at work; the
// repair wants nobody in.
#include "control/batchvw.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include "store/ix.h"
#include "term/scherm.h"
#include "tools/boomkeur.h"
#include "tools/journaalkeur.h"
#include "tools/mapherstel.h"
#include "tools/paar.h"
#include "tools/rechtkeur.h"
#include "tools/registerkeur.h"
#include "tools/restkeur.h"
#include "tools/stamkeur.h"
#include "tools/systeemkeur.h"
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
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

// What is told holds texts and names out of a damaged directory.
std::vector<std::string> toon_alle(const std::vector<std::string>& regels, bool namen = false) {
    std::vector<std::string> uit;
    for (const std::string& r : regels)
        uit.push_back(namen ? toon_naam(r) : toon(r));
    return uit;
}

void als_json(const keurbestand& b) {
    json j;
    j["file"] = toon_naam(b.naam);
    j["counts"] = toon(b.telling);
    j["lost"] = b.verloren;
    j["wrong"] = toon_alle(b.kwalen);
    j["notes"] = toon_alle(b.noten, b.namen);
    puts(j.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
}

int verslag(const keurbestanden& bestanden) {
    size_t kwalen = 0, noten = 0;
    for (const keurbestand& b : bestanden) {
        kwalen += b.kwalen.size();
        noten += b.noten.size();
        if (wens.json) {
            als_json(b);
            continue;
        }
        const std::string naam = toon_naam(b.naam);
        for (const std::string& k : toon_alle(b.kwalen))
            printf("%s: %s\n", naam.c_str(), k.c_str());
        for (const std::string& n : toon_alle(b.noten, b.namen))
            if (!wens.stil)
                printf("%s: note: %s\n", naam.c_str(), n.c_str());
        if (!wens.stil || !b.kwalen.empty())
            printf("%s: %s%s%s\n", naam.c_str(),
                   b.kwalen.empty() ? "good" : (std::to_string(b.kwalen.size()) + " wrong").c_str(),
                   b.telling.empty() ? "" : ", ", toon(b.telling).c_str());
    }
    if (!wens.json && (!wens.stil || kwalen))
        printf("%zu files, %zu wrong, %zu notes\n", bestanden.size(), kwalen, noten);
    return kwalen ? FOUT_GEVONDEN : GOED;
}

// Users of the orders, by name, while group 5 can't be had.
int wie_er_in_is() {
    for (const int32_t nr : batch_gebruikers(BATCH_ORDERS)) {
        int32_t slot = nr;
        gebruikerslot g;
        iotab('R', &slot, &g, SYS_GEBRUIKER);
        const std::string wie = keur_houder(nr);
        klacht("", "in use: user " + std::to_string(nr) + " " + toon(gebruiker_naam(g)) +
                       (wie.empty() ? ", on the way to the next program" : ", " + wie));
    }
    klacht("", "nothing was changed");
    return IN_GEBRUIK;
}

// ---- the parts

constexpr int POGINGEN = 5;
const char* const REGISTER[] = {"DTSER", "DTIPA", "DTEAN", "DTORDNR"};
const char* const NODIG[] = {"DTART",  "DTLEV",    "DTMAAT",  "DTMERK",
                             "DTMTOM", "DTOMZGRP", "DTVVTAB", "DTKOERS"}; // the order program opens them

std::vector<std::string> alle_paren() {
    std::vector<std::string> uit = keur_paren("");
    for (const auto& meer : {keur_paren("edistam/"), tabel_paren()})
        for (const std::string& naam : meer)
            if (std::ranges::find(uit, naam) == uit.end())
                uit.push_back(naam);
    return uit;
}

// Labels are of no use without their series, so they tell of a register that lost both files of its first pair.
bool er_is_register() {
    return IOEXISTS("DTSER.INX") || IOEXISTS("DTSER.TXT") || IOEXISTS("DTETI.TXT");
}

// The pairs as the store sees them, and those that have to be there.
keurbestanden bomen(std::set<std::string>* stuk) {
    const std::vector<std::string> namen = alle_paren();
    keurbestanden uit = bomen_keur(namen, wens.wacht, stuk);
    auto nodig = [&](const char* naam, const char* gevolg) {
        if (std::ranges::find(namen, naam) == namen.end()) {
            uit.push_back({naam, "", {std::string("isn't there: ") + gevolg}});
            stuk->insert(naam);
        }
    };
    for (const char* naam : NODIG)
        nodig(naam, "the order program doesn't start");
    if (er_is_register())
        for (const char* naam : REGISTER)
            nodig(naam, "there is no registration without it");
    return uit;
}

keurbestanden het_register(const std::set<std::string>& stuk, int pogingen) {
    if (!er_is_register())
        return {};
    keurbestanden uit;
    std::vector<std::string> weg;
    const registerdelen delen = register_delen(stuk, false, &uit, &weg);
    for (const std::string& w : weg)
        klacht("", w + " were not looked at");
    std::erase_if(uit, [&](const keurbestand& b) { return stuk.contains(b.naam); }); // told already
    keur_open(delen, false);
    for (keurbestand& b : register_keur(pogingen))
        uit.push_back(std::move(b));
    keur_sluit();
    return uit;
}

keurbestanden orders() {
    const stamboek boek = stamboek_lees();
    return journalen_lees(&boek).per_bestand;
}

std::vector<std::string> bijbomen() {
    std::vector<std::string> uit;
    for (const std::string& naam : keur_namen("."))
        if (is_bijboom(naam))
            uit.push_back(naam);
    return uit;
}

// Files that programs lock: the fixed tables, the pairs, journals.
std::vector<std::string> slotbestanden() {
    std::vector<std::string> uit{"DTSYS.TXT"};
    for (const std::string& paar : alle_paren())
        for (const char* ext : {".INX", ".TXT"})
            uit.push_back(paar + ext);
    for (const std::string& naam : keur_namen("."))
        if (naam == "DTRCMSYS.TXT" || naam == "KASMUT.TXT")
            uit.push_back(naam);
    return uit;
}

keurbestanden alles(int pogingen) {
    std::set<std::string> stuk;
    keurbestanden uit;
    auto bij = [&](keurbestanden deel) {
        for (keurbestand& b : deel)
            uit.push_back(std::move(b));
    };
    auto bij_herhaald = [&](const std::function<keurbestanden()>& deel) {
        bij(keur_herhaald(pogingen, deel));
    };
    bij_herhaald(systeem_keur);
    bij(bomen(&stuk));
    bij(bijbomen_keur(bijbomen()));
    bij_herhaald(
        [&] { return stam_keur(stamboek_lees(), [&](const char* naam) { return !stuk.contains(naam); }); });
    bij_herhaald([] { return velden_keur(alle_paren()); });
    bij_herhaald([] { return koppel_keur(stamboek_lees()); });
    bij_herhaald(tabel_keur);
    bij(het_register(stuk, pogingen));
    bij_herhaald(orders);
    bij_herhaald(rest_keur);
    bij_herhaald([] { return reserveringen_keur(alle_paren()); });
    bij(rechten_keur());
    bij(sloten_keur(slotbestanden()));
    bij(keur_ongelezen());
    return keur_samen(std::move(uit));
}

// Why nothing can be said of the directory: its names, or its fixed tables, by which all else is read. Empty: it can.
std::string niets_te_zien() {
    std::string reden;
    keur_namen(".", &reden);
    if (!reden.empty())
        return "can't be listed: " + reden;
    const keurlezer sys("DTSYS.TXT");
    char eerste;
    return sys.fd < 0                           ? "DTSYS.TXT: " + sys.fout
           : SYSLEES(sys.fd, &eerste, 1, 0) < 0 ? std::string("DTSYS.TXT: ") + openreden(errno)
                                                : "";
}

// The fixed tables, of which every chain and counter begins, are nothing but one byte over and over, or none.
bool tabellen_gewist() {
    std::array<char, 4096> eerste{};
    const keurlezer sys("DTSYS.TXT");
    const ssize_t n = SYSLEES(sys.fd, eerste.data(), eerste.size(), 0);
    return n <= 0 || std::all_of(eerste.data(), eerste.data() + n, [&](char c) { return c == eerste[0]; });
}

bool herstel_register(const std::set<std::string>& stuk, bool stil) {
    if (!er_is_register())
        return true;
    if (tabellen_gewist()) {
        if (!stil)
            printf("repair: nothing of the registration is put right: DTSYS.TXT is wiped\n");
        return true;
    }
    keurbestanden dicht;
    std::vector<std::string> regels;
    const registerdelen delen = register_delen(stuk, true, &dicht, &regels);
    for (std::string& r : regels)
        r += " stay as they are";
    bool gelukt = true;
    if (!delen.series) {
        regels.push_back("nothing of the registration is put right without DTSER, which keeps others out");
    } else {
        keur_open(delen, true);
        for (const std::string& r : register_herstel(&gelukt))
            regels.push_back(r);
        keur_sluit();
    }
    for (const std::string& r : regels)
        if (!stil)
            printf("repair: %s\n", toon(r).c_str());
    return gelukt;
}

int herstel() {
    sessie = BATCHGEBRUIKER; // one try, no question
    const bool alleen = batch_claim(BATCH_ORDERS);
    sessie = 0;
    if (!alleen)
        return wie_er_in_is();
    if (IOEXISTS("DTSER.INX") && IOEXISTS("DTSER.TXT")) {
        Paar dtser;
        if (paar_open("DTSER", &dtser) == GOED && !dtser.alleen_lezen &&
            paar_alleen(&dtser, wens.wacht) != GOED)
            return klacht("", "nothing was changed"), IN_GEBRUIK;
    }
    const bool stil = wens.stil || wens.json;
    std::set<std::string> stuk;
    bomen(&stuk);
    bool gelukt = indexen_herstel(stuk, wens.wacht, stil);
    stuk.clear();
    bomen(&stuk);
    gelukt &= reserveringen_herstel(alle_paren(), stil);
    gelukt &= herstel_register(stuk, stil);
    gelukt &= resten_herstel(stil);
    alleen_lezen(); // what can't be written can be looked at
    const int uitkomst = verslag(alles(1));
    return gelukt ? uitkomst : FOUT_GEVONDEN;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgcheck");
    CLI::App app{
        "check a data directory: fixed tables, pairs, orders, the full registration, rights, what is left\n"
        "over, who is at work. It reads beside programs at work; an index that looks wrong is held for a\n"
        "moment.",
        "zgcheck"};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    app.add_option("DIR", wens.map, "data directory")->required();
    app.add_flag(
        "-r,--repair", wens.herstel,
        "rebuild indexes, give back what nobody has, count again, sweep, when nobody is in; then check");
    app.add_flag("--alone", ALLEEN_GEZEGD,
                 "on a shared file system: no program on any host is at work in it");
    app.add_flag("-j,--json", wens.json, "JSON lines, one a file");
    app.add_flag("-q,--quiet", wens.stil, "say only what is wrong");
    app.add_option(
           "-w,--wait", wens.wacht,
           "seconds to wait for an index that looks wrong, and for DTSER before a repair; with 0 there "
           "is no rest before what looks wrong is read again")
        ->check(CLI::Range(0, 86400));
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (const int uit = tool_map(wens.map); uit != GOED)
        return uit;
    if (!wens.herstel)
        alleen_lezen();
    keur_bewaak();
    if (const std::string reden = niets_te_zien(); !reden.empty())
        return klacht(wens.map, reden + "; without that nothing can be checked"), NIET_TE_OPENEN;
    IXWAITHOOK = wacht;
    if (!wens.wacht)
        keur_rust = 0;
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    return tool_einde(wens.herstel ? herstel() : verslag(alles(POGINGEN)));
}
