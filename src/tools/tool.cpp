#include "tools/tool.h"
#include "shared/files.h"
#include "shared/versie.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/strings.h"
#include "term/tekenset.h"
#include "term/tekst.h"
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
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

// Can be shown as it is: no control, nor a sign that turns a line around or takes no room in it.
bool toonbaar(char32_t u) {
    return (u >= ' ' && u < 127) ||
           (u >= 0xA0 && u != 0xAD && u != 0x61C && !(u >= 0x200B && u <= 0x200F) &&
            !(u >= 0x2028 && u <= 0x202E) && !(u >= 0x2060 && u <= 0x206F) && u != 0xFEFF &&
            !(u >= 0xFFF9 && u <= 0xFFFB) && !(u >= 0xE0000 && u <= 0xE007F));
}

// `tekst` with "?" for what isn't shown, but for the characters in `ook`.
std::string zonder_sturing(std::string_view tekst, std::string_view ook) {
    std::string uit;
    while (!tekst.empty()) {
        char32_t u = 0;
        const int er = UTF8TEKEN(reinterpret_cast<const uint8_t*>(tekst.data()),
                                 static_cast<int>(std::min<size_t>(tekst.size(), 4)), &u);
        const size_t n = er > 0 ? static_cast<size_t>(er) : 1;
        if (ook.find(tekst[0]) != std::string_view::npos ||
            (er > 0 && toonbaar(u) && (er == 1 || UTF8SCHERM())))
            uit += tekst.substr(0, n);
        else
            uit += '?';
        tekst.remove_prefix(n);
    }
    return uit;
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

// The help in lines of at most 80 columns: what goes on in a next one stands below the explanations.
std::string op_breedte(const std::string& hulp) {
    constexpr size_t BREED = 80, UITLEG = 30;
    std::istringstream in(hulp);
    std::string uit;
    for (std::string regel; std::getline(in, regel); uit += regel + "\n") {
        const std::string begin(regel.starts_with("  ") ? UITLEG : 0, ' ');
        while (regel.size() > BREED) {
            const size_t knip = regel.rfind(' ', BREED);
            if (knip == std::string::npos || knip <= begin.size() || regel.find_first_not_of(' ') > knip)
                break;
            uit += regel.substr(0, regel.find_last_not_of(' ', knip) + 1) + "\n";
            regel = begin + regel.substr(knip + 1);
        }
    }
    return uit;
}

} // namespace

std::string schoon(std::string_view tekst) {
    return zonder_sturing(tekst, "");
}

std::string citaat(std::string_view tekst) {
    constexpr size_t GENOEG = 60;
    std::string uit = schoon(tekst.substr(0, GENOEG));
    return tekst.size() > GENOEG ? uit + "..." : uit;
}

void tool_zeg(const char* vorm, ...) {
    va_list a;
    va_start(a, vorm);
    char* regel = nullptr;
    const int n = vasprintf(&regel, vorm, a);
    va_end(a);
    if (n < 0)
        return;
    const std::string uit = zonder_sturing({regel, static_cast<size_t>(n)}, "\n");
    free(regel);
    fwrite(uit.data(), 1, uit.size(), stdout);
}

void klacht(const std::string& naam, const std::string& tekst) {
    const std::string regel = zonder_sturing(naam + (naam.empty() ? "" : ": ") + tekst, "\n");
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

std::string toon_naam(const std::string& naam) {
    std::string uit;
    for (size_t i = 0; i < naam.size();) {
        char32_t u = 0;
        const int n = UTF8TEKEN(reinterpret_cast<const uint8_t*>(&naam[i]),
                                static_cast<int>(std::min<size_t>(4, naam.size() - i)), &u);
        const bool goed = n > 0 && toonbaar(u) && (n == 1 || UTF8SCHERM());
        const size_t lengte = goed ? static_cast<size_t>(n) : 1;
        uit += goed ? naam.substr(i, lengte) : VORM("\\x%02x", unsigned{static_cast<uint8_t>(naam[i])});
        i += lengte;
    }
    return uit;
}

std::string toon_json(const std::string& regel) {
    std::string uit;
    for (size_t i = 0; i < regel.size();) {
        char32_t u = 0;
        const int n = UTF8TEKEN(reinterpret_cast<const uint8_t*>(&regel[i]),
                                static_cast<int>(std::min<size_t>(4, regel.size() - i)), &u);
        const size_t lengte = n > 0 ? static_cast<size_t>(n) : 1;
        if (n < 1 || toonbaar(u))
            uit += regel.substr(i, lengte);
        else if (u < 0x10000)
            uit += VORM("\\u%04x", static_cast<unsigned>(u));
        else // as two halves
            uit += VORM("\\u%04x\\u%04x", static_cast<unsigned>(0xD7C0 + (u >> 10)),
                        static_cast<unsigned>(0xDC00 + (u & 0x3FF)));
        i += lengte;
    }
    return uit;
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
    TEKENSET();
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
        std::ostringstream hulp, niets;
        if (app.exit(e, hulp, niets) == 0) {
            fputs(op_breedte(hulp.str()).c_str(), stdout);
            *uit = tool_einde(GOED);
        } else {
            *uit = meld(FOUT_GEBRUIKT, std::string(e.what()) + "\nRun with --help for more information.");
        }
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
