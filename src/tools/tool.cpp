#include "tools/tool.h"
#include "shared/files.h"
#include "shared/versie.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/tekst.h"
#include <CLI/CLI.hpp>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
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

std::map<const CLI::Option*, std::string> mag; // tool_mag

// What a word may be, for a shell: what was said of it, one of "{a,b}", or what its name says.
std::string soort(const CLI::Option& o) {
    if (const auto m = mag.find(&o); m != mag.end())
        return m->second;
    static const std::map<std::string, const char*> NAMEN = {
        {"DIR", "dir"},      {"TARGET", "dir"},      {"DIRECTORY", "dir"}, {"--from", "dir"},
        {"REPORTS", "dir"},  {"--directory", "dir"}, {"PAIR", "pair"},     {"FILE", "file"},
        {"JOURNAL", "file"}, {"--input", "file"},    {"--output", "file"}, {"--port", "file"}};
    const std::string type = o.get_type_name();
    if (const size_t haak = type.find('{'); haak != std::string::npos)
        return type.substr(haak, type.find('}') + 1 - haak);
    const std::string naam = o.get_lnames().empty() ? o.get_name(true) : "--" + o.get_lnames()[0];
    const auto n = NAMEN.find(naam);
    return n == NAMEN.end() ? "text" : n->second;
}

// The words that a command knows, a row each: command, its letter, its word, flag or value or arg, what it may be, what
// it is for. data/completion makes the shells' files of it.
void woordenlijst(const CLI::App& app, const std::string& opdracht) {
    for (const CLI::Option* o : app.get_options()) {
        const auto &kort = o->get_snames(), &lang = o->get_lnames();
        const bool arg = kort.empty() && lang.empty();
        printf("%s\t%s\t%s\t%s\t%s\t%s\n", opdracht.c_str(), kort.empty() ? "" : ("-" + kort[0]).c_str(),
               arg            ? o->get_name(true).c_str()
               : lang.empty() ? ""
                              : ("--" + lang[0]).c_str(),
               arg                                ? "arg"
               : o->get_items_expected_max() == 0 ? "flag"
                                                  : "value",
               soort(*o).c_str(), o->get_description().c_str());
    }
    for (const CLI::App* s : app.get_subcommands([](const CLI::App*) { return true; })) {
        printf("%s\t\t%s\tcommand\t\t%s\n", opdracht.c_str(), s->get_name().c_str(),
               s->get_description().c_str());
        woordenlijst(*s, s->get_name());
    }
}

} // namespace

void klacht(const std::string& naam, const std::string& tekst) {
    std::string regel = naam + (naam.empty() ? "" : ": ") + tekst;
    for (char& c : regel) // names and values as they were typed or found, in UTF-8
        if (c != '\n' && (static_cast<uint8_t>(c) < ' ' || c == 127))
            c = '?';
    fprintf(stderr, "%s: %s\n", toolnaam.c_str(), regel.c_str());
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
    CATOPEN();
    setlocale(LC_MESSAGES, "C"); // what the system says stays as English as the tool
    signal(SIGPIPE, SIG_DFL);
    signal(SIGXFSZ, SIG_IGN);
}

void tool_kop(CLI::App& app, const char* statussen) {
    app.set_version_flag("--version", VERSIE(toolnaam.c_str()));
    app.footer(std::string("Exit status: ") + statussen);
}

bool tool_woorden(CLI::App& app, int argc, char** argv, int* uit) {
    if (argc == 2 && strcmp(argv[1], "--words") == 0) {
        woordenlijst(app, "");
        *uit = tool_einde(GOED);
        return false;
    }
    try {
        app.parse(argc, argv);
        return true;
    } catch (const CLI::ParseError& e) {
        *uit = app.exit(e) == 0 ? tool_einde(GOED) : FOUT_GEBRUIKT;
        return false;
    }
}

void tool_mag(CLI::Option* optie, std::string wat) {
    mag[optie] = std::move(wat);
}

Uitkomst tool_map(const std::string& map) {
    return map.empty() || IOCHDIR(map.c_str()) ? GOED : meld(NIET_TE_OPENEN, map + ": " + strerror(errno));
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
