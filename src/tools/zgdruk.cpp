// zgdruk: the printers of a data directory, at the shell: the print destinations listed and changed, a test page, what
// couldn't be sent, and the users' standard printers. The destinations are those of the print directory, as the order
// program finds it (ZEBPRT); the rest is of the present directory.
#include "shared/report.h"
#include "tools/druktekst.h"
#include "tools/drukwerk.h"
#include "tools/paar.h"
#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>

namespace {

using namespace zg;
Uitkomst lijst() {
    printtabellen t;
    if (!prt_lees(&t))
        return meld(NIET_TE_OPENEN, "no print tables, and none can be made");
    const std::string tekst = druk_tekst(t, druk_wens.code);
    if (tekst.empty())
        return meld(FOUT_GEVONDEN, "there is no printer " + std::to_string(druk_wens.code));
    fputs(tekst.c_str(), stdout);
    return GOED;
}

Uitkomst doe(Drukdaad daad) {
    std::string fout;
    return meld(druk_doe(daad, druk_wens.woorden, &fout), fout);
}

constexpr int WACHT = 10; // seconds for a table that another has for himself

Uitkomst laad() {
    Uitkomst uit = GOED;
    for (const std::string& pad : druk_wens.woorden)
        if (std::string fout; uit == GOED)
            uit = meld(druk_laad(pad, &fout), fout);
    return uit;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgdruk");
    wacht_hooguit(WACHT);
    CLI::App app{
        "printers: the print destinations, a test page, jobs that are left, users' printers.\n"
        "The destinations are in the directory that ZEBPRT names; man zgdruk has the words of a record.",
        "zgdruk"};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    app.require_subcommand(1);
    app.add_option("-D,--directory", druk_wens.map, "data directory, else the present one");
    std::function<Uitkomst()> daad;
    auto opdracht = [&](const char* naam, const char* uitleg, std::function<Uitkomst()> f) {
        return tool_opdracht(app, &daad, naam, uitleg, std::move(f));
    };
    auto woorden = [](CLI::App* s, const char* naam, const char* uitleg) {
        return s->add_option(naam, druk_wens.woorden, uitleg);
    };
    opdracht("list", "the destinations, as lines for load", lijst)
        ->add_option("CODE", druk_wens.code, "this printer only")
        ->check(CLI::Range(1, 32767));
    const struct {
        const char *naam, *uitleg;
        Drukdaad daad;
    } VAN_EEN[] = {{"add", "a new record", Drukdaad::toevoegen},
                   {"change", "some of its values", Drukdaad::wijzigen},
                   {"remove", "a record; a printer with all that is its", Drukdaad::weg}};
    for (const auto& v : VAN_EEN) {
        const bool met_namen = v.daad != Drukdaad::weg;
        tool_mag(woorden(opdracht(v.naam, v.uitleg, [d = v.daad] { return doe(d); }), "WORDS",
                         met_namen ? "kind, numbers, name=value" : "kind and numbers")
                     ->required(),
                 druk_soorten(met_namen));
    }
    woorden(opdracht("load", "add or change what a file says, all of it or nothing", laad), "FILE",
            "lines as list gives them")
        ->required();
    CLI::App* test = opdracht("test", "print a test page", druk_proef);
    test->add_option("CODE", druk_wens.code, "the printer")->required()->check(CLI::Range(1, 32767));
    test->add_option("-c,--connection", druk_wens.verbinding, "its connection, else the first");
    test->add_option("-f,--configuration", druk_wens.config, "its configuration, else the first");
    test->add_option("-n,--copies", druk_wens.kopieen, "copies")->check(CLI::Range(1, 20));
    test->add_option("-w,--wait", druk_wens.wacht, "seconds to wait until it is out (10)")
        ->check(CLI::Range(0, 3600));
    opdracht("jobs", "what couldn't be sent", druk_opdrachten)
        ->add_flag("-j,--json", druk_wens.json, "JSON lines");
    CLI::App* weer = opdracht("send", "send it again", druk_weer);
    CLI::App* laat = opdracht("drop", "throw it away", druk_laat);
    for (CLI::App* s : {weer, laat}) {
        woorden(s, "JOB", "as jobs names them");
        s->add_flag("-a,--all", druk_wens.alles, "all of them");
    }
    weer->add_flag("--no-wait", druk_wens.vlot, "begin, and leave the rest to zgspoel");
    CLI::Option* printer = nullptr;
    CLI::App* wie = opdracht("user", "the users' standard printers",
                             [&] { return druk_gebruikers(printer->count() > 0); });
    wie->add_option("USER", druk_wens.gebruiker, "a user's name or number");
    printer = wie->add_option("CODE", druk_wens.code, "give him this printer; 0 for none")
                  ->check(CLI::Range(0, 32767));
    wie->add_option("-c,--connection", druk_wens.verbinding, "by this connection")
        ->check(CLI::Range(0, 255))
        ->needs(printer);
    wie->add_flag("-p,--preview", druk_wens.voorbeeld, "look first")->needs(printer);
    wie->add_option(
           "-m,--mask", druk_wens.masker,
           "widths: 1, 2, 4 for 40, 80, 132 columns; 16, 32 for pages of more than 66 rows, up to 66; added")
        ->check(CLI::Range(0, 65535))
        ->needs(printer);
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (const Uitkomst uit = tool_map(druk_wens.map); uit != GOED)
        return uit;
    return tool_einde(daad());
}
