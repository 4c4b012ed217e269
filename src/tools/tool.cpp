#include "tools/tool.h"
#include "shared/versie.h"
#include "term/natl.h"
#include "term/scherm.h"
#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace zg {

std::string toolnaam = "ixtool";

namespace {

void (*eerst_doen)();

void rapport() {
    const char* reden = SCRFATALREDEN();
    klacht("", CP850UTF8(SCRFATALTEKST()) + (*reden ? std::string(" (") + reden + ")" : ""));
    if (eerst_doen)
        eerst_doen();
    tool_weg(NIET_TE_OPENEN);
}

} // namespace

void klacht(const std::string& naam, const std::string& tekst) {
    fprintf(stderr, "%s: %s%s%s\n", toolnaam.c_str(), naam.c_str(), naam.empty() ? "" : ": ", tekst.c_str());
}

Uitkomst meld(Uitkomst uit, const std::string& wat) {
    if (uit != GOED)
        klacht("", wat);
    return uit;
}

std::string toon(std::string bytes) {
    for (char& c : bytes)
        if (NKLASSE[static_cast<uint8_t>(c)] & N_CONTROL)
            c = ' ';
    return CP850UTF8(bytes);
}

void tool_weg(int uit) {
    fflush(nullptr);
    _exit(uit);
}

void tool_begin(const char* naam, void (*eerst)()) {
    toolnaam = naam;
    eerst_doen = eerst;
    SCRFATALHAAK = rapport;
    signal(SIGPIPE, SIG_DFL);
    signal(SIGXFSZ, SIG_IGN);
}

void tool_kop(CLI::App& app, const char* statussen) {
    app.set_version_flag("--version", VERSIE(toolnaam.c_str()));
    app.footer(std::string("Exit status: ") + statussen);
}

bool tool_woorden(CLI::App& app, int argc, char** argv, int* uit) {
    try {
        app.parse(argc, argv);
        return true;
    } catch (const CLI::ParseError& e) {
        *uit = app.exit(e) == 0 ? tool_einde(GOED) : FOUT_GEBRUIKT;
        return false;
    }
}

Uitkomst tool_map(const std::string& map) {
    return map.empty() || chdir(map.c_str()) == 0 ? GOED : meld(NIET_TE_OPENEN, map + ": " + strerror(errno));
}

int tool_einde(int uit) {
    return fflush(stdout) == 0 && !ferror(stdout) ? uit
                                                  : meld(FOUT_GEVONDEN, "standard output: write failed");
}

CLI::App* tool_opdracht(CLI::App& app, std::function<Uitkomst()>* daad, const char* naam, const char* uitleg,
                        std::function<Uitkomst()> f) {
    CLI::App* s = app.add_subcommand(naam, uitleg);
    s->callback([daad, f] { *daad = f; });
    return s;
}

} // namespace zg
