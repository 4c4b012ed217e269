// zgdruk: the printers of a data directory, at the shell: the print destinations listed and changed, a test page, what
// couldn't be sent, and the users' standard printers. The destinations are those of the print directory, as the order
// program finds it (ZEBPRT); the rest is of the present directory.
#include "print/bestemlijst.h"
#include "print/spooljob.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/vast.h"
#include "tools/druktekst.h"
#include "tools/teksten.h"
#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>
#include <unistd.h>

namespace {

using namespace zg;
using json = nlohmann::ordered_json;

constexpr int GEBRUIKERS = 98;
constexpr std::chrono::milliseconds STAP{50};

struct Wens {
    std::string map;
    std::vector<std::string> woorden;
    bool json = false, alles = false, voorbeeld = false;
    int code = 0, verbinding = 0, config = 0, kopieen = 1, wacht = 10, masker = 0;
    std::string gebruiker;
} wens;

void rapport() {
    klacht("", CP850UTF8(SCRFATALTEKST()));
    fflush(nullptr);
    _exit(NIET_TE_OPENEN);
}

// Bytes out of a file as what a terminal can show.
std::string toon(std::string bytes) {
    prt_blank(bytes.data(), bytes.size());
    return CP850UTF8(bytes);
}

Uitkomst meld(Uitkomst uit, const std::string& wat) {
    if (uit != GOED)
        klacht("", wat);
    return uit;
}

Uitkomst lijst() {
    printtabellen t;
    if (!prt_lees(&t))
        return meld(NIET_TE_OPENEN, "no print tables, and none can be made");
    const std::string tekst = druk_tekst(t, wens.code);
    if (tekst.empty())
        return meld(FOUT_GEVONDEN, "there is no printer " + std::to_string(wens.code));
    fputs(tekst.c_str(), stdout);
    return GOED;
}

Uitkomst doe(Drukdaad daad) {
    std::string fout;
    return meld(druk_doe(daad, wens.woorden, false, &fout), fout);
}

Uitkomst laad() {
    Uitkomst uit = GOED;
    for (const std::string& pad : wens.woorden)
        if (std::string fout; uit == GOED)
            uit = meld(druk_laad(pad, &fout), fout);
    return uit;
}

// Everything that a printer may get wrong: the width, all characters, every row of the page.
void proefblad(const Bestemming& b) {
    const int kolommen = XPRT_KOLOMMEN();
    XPRT_KOP("zgdruk", "%s", TXT(T_DRUK_PROEF));
    XPRT_PRINT("%s %d %s, %s\n", TXT(T_DRUK_PRINTER), int{b.printer.code}, VASTTEKST(b.printer.naam).c_str(),
               VASTTEKST(b.verbinding.naam).c_str());
    XPRT_PRINT("%s\n", VASTTEKST(b.verbinding.apparaat).c_str());
    XPRT_PRINT("%s, %d x %d, %s\n\n", VASTTEKST(b.config.omschrijving).c_str(), kolommen, XPRT_RIJEN(),
               printopdracht.tekens.c_str());
    std::string liniaal;
    for (int k = 1; k <= kolommen; k++)
        liniaal += k % 10 == 0 ? static_cast<char>('0' + k / 10 % 10) : k % 5 == 0 ? '+' : '.';
    XPRT_PRINT("%s\n\n", liniaal.c_str());
    for (int rij = 2; rij < 16; rij++) {
        std::string tekens;
        for (int k = 0; k < 16; k++)
            tekens += {static_cast<char>(rij * 16 + k), ' '};
        XPRT_PRINT("%02X  %s\n", static_cast<unsigned>(rij) * 16, tekens.c_str());
    }
    XPRT_PRINT("\n");
    while (printopdracht.regel < XPRT_RIJEN())
        XPRT_PRINT("%-3d%*s\n", printopdracht.regel, std::max(kolommen - 3, 1), "|");
}

// A job that has been handed over: until it is out, or known not to be.
Uitkomst wacht_op(const std::string& beschrijving) {
    spooljob job;
    const auto grens = std::chrono::steady_clock::now() + std::chrono::seconds(wens.wacht);
    for (;;) {
        const Spoolpad hoe = spool_kijk(beschrijving, &job);
        if (hoe == Spoolpad::weg)
            return GOED;
        if (hoe == Spoolpad::blijft)
            return meld(FOUT_GEVONDEN, "not printed: " + toon(job.reden) + "; kept as " + toon(job.spool));
        if (std::chrono::steady_clock::now() > grens)
            return meld(IN_GEBRUIK, "still being sent: " + toon(spool_bestand(beschrijving)));
        std::this_thread::sleep_for(STAP);
    }
}

Uitkomst proef() {
    printtabellen t;
    if (!prt_lees(&t))
        return meld(NIET_TE_OPENEN, "no print tables");
    for (const Bestemming& b : prt_bestemmingen(t, PRT_ALLES)) {
        if (b.printer.code != wens.code || (wens.verbinding && b.verbinding.nummer != wens.verbinding) ||
            (wens.config && b.config.nummer != wens.config))
            continue;
        if (b.printer.code == PRT_SCHERM)
            return meld(FOUT_GEBRUIKT, "printer 1 is the screen");
        if (!prt_open_op(b, t, wens.kopieen, TXT(T_DRUK_PROEF)))
            return NIET_TE_OPENEN; // which was told
        proefblad(b);
        if (!XPRT_CLOSE())
            return FOUT_GEVONDEN; // as was this
        return printopdracht.weg == Printweg::geen ? meld(FOUT_GEVONDEN, "this connection has no device")
                                                   : wacht_op(spool_beschrijving(printopdracht.spool));
    }
    return meld(FOUT_GEVONDEN, "no such printer, connection and configuration");
}

const char* weg_naam(Printweg weg) {
    constexpr const char* NAMEN[] = {"nothing", "queue", "device", "directory", "AUX", "TERMINAL", "file"};
    return NAMEN[static_cast<int>(weg)];
}

std::vector<spooljob> achtergebleven() {
    std::vector<spooljob> uit = spool_achtergebleven("");
    if (IOISDIR("uit"))
        for (const spooljob& job : spool_achtergebleven("uit/"))
            uit.push_back(job);
    return uit;
}

Uitkomst opdrachten() {
    for (const spooljob& job : achtergebleven()) {
        char tijd[32] = "";
        const time_t om = job.tijd;
        if (const tm* lokaal = localtime(&om))
            strftime(tijd, sizeof tijd, "%Y-%m-%d %H:%M", lokaal);
        if (wens.json) {
            json j;
            j["job"] = toon(job.spool);
            j["time"] = tijd;
            j["user"] = job.sessie;
            j["title"] = toon(job.titel);
            j["to"] = weg_naam(job.weg);
            j["device"] = toon(job.apparaat);
            j["copies"] = job.kopieen;
            j["done"] = job.gedaan;
            j["reason"] = toon(job.reden);
            puts(j.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
        } else
            printf("%s  %s  user %d  %d/%d  %s %s  \"%s\"  %s\n", toon(job.spool).c_str(), tijd, job.sessie,
                   job.gedaan, job.kopieen, weg_naam(job.weg), toon(job.apparaat).c_str(),
                   toon(job.titel).c_str(), toon(job.reden).c_str());
    }
    return GOED;
}

// Each job named, or all of them; the gravest answer counts.
Uitkomst elk(const std::function<Uitkomst(int, spooljob*)>& daad) {
    std::vector<std::string> namen = wens.woorden;
    if (wens.alles)
        for (const spooljob& job : achtergebleven())
            namen.push_back(job.spool);
    if (namen.empty() && !wens.alles)
        return meld(FOUT_GEBRUIKT, "name jobs, or --all");
    Uitkomst slechtste = GOED;
    for (const std::string& naam : namen) {
        spooljob job;
        const int fd = spool_neem(spool_bestand(naam).empty() ? spool_beschrijving(naam) : naam, &job);
        Uitkomst uit;
        if (fd < 0)
            uit = errno == EAGAIN ? meld(IN_GEBRUIK, naam + ": is being sent")
                                  : meld(NIET_TE_OPENEN, naam + ": no such job");
        else {
            uit = daad(fd, &job);
            SYS.close(fd);
        }
        slechtste = std::max(slechtste, uit);
    }
    return slechtste;
}

Uitkomst zend(int fd, spooljob* job) {
    if (spool_start(fd, *job, true))
        return GOED;
    const std::string naam = toon(job->spool);
    if (errno)
        return meld(NIET_TE_OPENEN, std::string("zgspoel can't be run: ") + strerror(errno));
    spool_lees(fd, spool_beschrijving(job->spool), job);
    return meld(FOUT_GEVONDEN, naam + ": " + toon(job->reden));
}

std::string gebruikersnaam(const gebruikerslot& g) {
    return toon(gebruiker_naam(g));
}

void toon_gebruiker(int32_t nr, const gebruikerslot& g) {
    printwens w;
    memcpy(&w, g.vrij18, sizeof w);
    printf("%d %s", nr, gebruikersnaam(g).c_str());
    if (w.code)
        printf(" printer=%d", int{w.code});
    if (w.verbinding)
        printf(" verbinding=%d", int{w.verbinding});
    if (w.vlaggen & PRT_VOORBEELD)
        printf(" voorbeeld");
    if (g.opties)
        printf(" masker=%d", int{g.opties});
    putchar('\n');
}

// The slot of a number or a name, 0 for none.
int32_t zoek_gebruiker(const std::string& wie) {
    gebruikerslot g;
    for (int32_t nr = 1; nr <= GEBRUIKERS; nr++) {
        int32_t slot = nr;
        if (iotab('R', &slot, &g, SYS_GEBRUIKER) && g.username[0] &&
            (wie == std::to_string(nr) || wie == gebruikersnaam(g)))
            return nr;
    }
    return 0;
}

// Show the standard printers, or give one to a user who isn't at work.
Uitkomst gebruikers(bool zetten) {
    if (!IOEXISTS("DTSYS.TXT"))
        return meld(NIET_TE_OPENEN, std::string("DTSYS.TXT: ") + strerror(ENOENT));
    int32_t eerste = 0, nr = 0;
    gebruikerslot g;
    iotab('O', &eerste, nullptr, SYS_RECORD);
    if (!wens.gebruiker.empty() && (nr = zoek_gebruiker(wens.gebruiker)) == 0)
        return meld(FOUT_GEVONDEN, "no such user: " + wens.gebruiker);
    if (!zetten) {
        for (int32_t i = 1; i <= GEBRUIKERS; i++)
            if (int32_t slot = i;
                (nr == 0 || nr == i) && iotab('R', &slot, &g, SYS_GEBRUIKER) && g.username[0])
                toon_gebruiker(i, g);
        return GOED;
    }
    printtabellen t;
    if (wens.code && (!prt_lees(&t) || std::none_of(t.printers.begin(), t.printers.end(),
                                                    [](const prtrec& p) { return p.code == wens.code; })))
        return meld(FOUT_GEVONDEN, "there is no printer " + std::to_string(wens.code));
    if (wens.verbinding &&
        std::none_of(t.verbindingen.begin(), t.verbindingen.end(), [](const prtverbinding& v) {
            return v.code == wens.code && v.nummer == wens.verbinding;
        }))
        return meld(FOUT_GEVONDEN, "the printer has no connection " + std::to_string(wens.verbinding));
    if (!iotab_probeer(&nr, &g, SYS_GEBRUIKER))
        return meld(IN_GEBRUIK, wens.gebruiker + " is at work");
    if (in_overgave(g)) {
        iotab('U', &nr, &g, SYS_GEBRUIKER);
        return meld(IN_GEBRUIK, wens.gebruiker + " is at work");
    }
    const printwens w{static_cast<uint16_t>(wens.code),
                      static_cast<uint8_t>(wens.voorbeeld ? PRT_VOORBEELD : 0),
                      static_cast<uint8_t>(wens.verbinding)};
    memcpy(g.vrij18, &w, sizeof w);
    g.opties = static_cast<uint16_t>(wens.masker);
    if (!iotab('W', &nr, &g, SYS_GEBRUIKER))
        return meld(FOUT_GEVONDEN, "not written");
    toon_gebruiker(nr, g);
    return GOED;
}

} // namespace

int main(int argc, char** argv) {
    toolnaam = "zgdruk";
    signal(SIGPIPE, SIG_DFL);
    signal(SIGXFSZ, SIG_IGN);
    CLI::App app{
        "printers: the print destinations, a test page, jobs that are left, users' printers.\n"
        "The destinations are in the directory that ZEBPRT names; man zgdruk has the words of a record.",
        "zgdruk"};
    app.set_version_flag("--version", "zgdruk 8.70");
    app.footer("Exit status: 0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    app.require_subcommand(1);
    app.add_option("-D,--directory", wens.map, "data directory, else the present one");
    std::function<Uitkomst()> daad;
    auto opdracht = [&](const char* naam, const char* uitleg, std::function<Uitkomst()> f) {
        CLI::App* s = app.add_subcommand(naam, uitleg);
        s->callback([&daad, f] { daad = f; });
        return s;
    };
    auto woorden = [](CLI::App* s, const char* naam, const char* uitleg) {
        return s->add_option(naam, wens.woorden, uitleg);
    };
    opdracht("list", "the destinations, as lines for load", lijst)
        ->add_option("CODE", wens.code, "this printer only")
        ->check(CLI::Range(1, 32767));
    woorden(opdracht("add", "a new record", [] { return doe(Drukdaad::toevoegen); }), "WORDS",
            "kind, numbers, name=value")
        ->required();
    woorden(opdracht("change", "some of its values", [] { return doe(Drukdaad::wijzigen); }), "WORDS",
            "kind, numbers, name=value")
        ->required();
    woorden(opdracht("remove", "a record; a printer with all that is its", [] { return doe(Drukdaad::weg); }),
            "WORDS", "kind and numbers")
        ->required();
    woorden(opdracht("load", "add or change what a file says, all of it or nothing", laad), "FILE",
            "lines as list gives them")
        ->required();
    CLI::App* test = opdracht("test", "print a test page", proef);
    test->add_option("CODE", wens.code, "the printer")->required()->check(CLI::Range(1, 32767));
    test->add_option("-c,--connection", wens.verbinding, "its connection, else the first");
    test->add_option("-f,--configuration", wens.config, "its configuration, else the first");
    test->add_option("-n,--copies", wens.kopieen, "copies")->check(CLI::Range(1, 20));
    test->add_option("-w,--wait", wens.wacht, "seconds to wait until it is out (10)")
        ->check(CLI::Range(0, 3600));
    opdracht("jobs", "what couldn't be sent", opdrachten)->add_flag("-j,--json", wens.json, "JSON lines");
    CLI::App* weer = opdracht("send", "send it again", [] { return elk(zend); });
    CLI::App* laat = opdracht("drop", "throw it away", [] {
        return elk([](int, spooljob* job) {
            spool_weg(*job);
            return IOEXISTS(job->spool.c_str()) ? meld(FOUT_GEVONDEN, job->spool + ": not removed") : GOED;
        });
    });
    for (CLI::App* s : {weer, laat}) {
        woorden(s, "JOB", "as jobs names them");
        s->add_flag("-a,--all", wens.alles, "all of them");
    }
    CLI::Option* printer = nullptr;
    CLI::App* wie =
        opdracht("user", "the users' standard printers", [&] { return gebruikers(printer->count() > 0); });
    wie->add_option("USER", wens.gebruiker, "a user's name or number");
    printer =
        wie->add_option("CODE", wens.code, "give him this printer; 0 for none")->check(CLI::Range(0, 32767));
    wie->add_option("-c,--connection", wens.verbinding, "by this connection")->check(CLI::Range(0, 255));
    wie->add_flag("-p,--preview", wens.voorbeeld, "look first");
    wie->add_option(
           "-m,--mask", wens.masker,
           "widths: 1, 2, 4 for 40, 80, 132 columns; 16, 32 for pages of more than 66 rows, up to 66; added")
        ->check(CLI::Range(0, 65535));
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? GOED : FOUT_GEBRUIKT;
    }
    if (!wens.map.empty() && chdir(wens.map.c_str()) != 0)
        return meld(NIET_TE_OPENEN, wens.map + ": " + strerror(errno));
    SCRFATALHAAK = rapport;
    const Uitkomst uit = daad();
    if (fflush(stdout) != 0 || ferror(stdout))
        return meld(FOUT_GEVONDEN, "standard output: write failed");
    return uit;
}
