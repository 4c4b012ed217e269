// The operators' tools for pairs, one program under the names of its tools: options, help, exit status.
#include "shared/versie.h"
#include "store/wachtrij.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "tools/opdracht.h"
#include "tools/werkmap.h"
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace {

using namespace zg;

struct Tool {
    const char *naam, *wat, *uitleg;
    int (*doe)(const Opdracht&);
    const char* opties; // letters of the options below
};

const Tool TOOLS[] = {
    {"ixcheck", "check pairs: every tree, every record, free chain and queue",
     "One line a pair and a total. Works while others work.", ixcheck, "nqw"},
    {"ixremake", "rebuild the index of pairs from their data files",
     "Every live record keeps its number. With --dictionary a lost index is made anew. Reserved keys are "
     "cleared, but "
     "not while users are at work.",
     ixremake, "ndltfaqw"},
    {"ixstat", "show definitions, counts, tree depths and fill of pairs", "", ixstat, "njw"},
    {"ixdump", "write a pair as CSV or JSON lines, in UTF-8",
     "Free slots are written too: ixload gives the same data file back, byte for byte.", ixdump,
     "1djDNAWoRHw"},
    {"ixload", "make a pair from a dump",
     "Without a head line in the dump the definition comes from the dictionary (--dictionary), by the pair's "
     "name.",
     ixload, "1dFDirCaw"},
    {"ixcopy", "copy a pair, also while it is in use", "The copy is whole: writers wait meanwhile.", ixcopy,
     "2rCaw"},
    {"ixsh", "work on a pair by one operation a line",
     "Reads operations from standard input; 'help' lists them.", ixsh, "0w"},
};

// The tool meant by the program's own name, or else by its first argument, which is then taken off; null for none.
const Tool* kies(int* argc, char*** argv) {
    auto met_naam = [](std::string_view naam) {
        const Tool* t =
            std::find_if(std::begin(TOOLS), std::end(TOOLS), [&](const Tool& x) { return naam == x.naam; });
        return t == std::end(TOOLS) ? nullptr : t;
    };
    const std::string_view zelf = (*argv)[0];
    if (const Tool* t = met_naam(zelf.substr(zelf.rfind('/') + 1)))
        return t;
    if (*argc < 2)
        return nullptr;
    --*argc;
    return met_naam(*++*argv);
}

const CLI::Validator SCHEIDING(
    [](const std::string& s) -> std::string {
        const bool een = s.size() == 1 &&
                         (s == "\t" || (ispunct(static_cast<unsigned char>(s[0])) && !strchr("\"#-", s[0])));
        return een || s == "tab" || s == "\\t" ? "" : "one punctuation mark, not one of \"#-, or 'tab'";
    },
    "CHAR");
const CLI::Validator TABEL(
    [](const std::string& s) -> std::string {
        std::string bekend;
        for (const std::string& naam : bekende_tabellen()) {
            if (naam == s)
                return "";
            bekend += " " + naam;
        }
        return "no such table: " + s + "; there are" + bekend;
    },
    "TABLE");

// Their names, for completion.
std::string tabellen() {
    std::string uit;
    for (const std::string& naam : bekende_tabellen())
        uit += (uit.empty() ? "{" : ",") + naam;
    return uit + "}";
}

// One option or argument by its letter in the table of tools; `een`: a single PAIR.
void optie(CLI::App& app, char letter, Opdracht& o, std::string& een) {
    switch (letter) {
    case 'n':
        app.add_option("PAIR", o.namen, "names of pairs, or directories for all their pairs")->required();
        break;
    case '1':
        app.add_option("PAIR", een, "name of the pair")->required();
        break;
    case '0':
        app.add_option("PAIR", een, "name of a pair to open at once");
        break;
    case '2':
        app.add_option("PAIR", een, "name of the pair")->required();
        app.add_option("TARGET", o.doel, "name of the copy, or a directory")->required();
        break;
    case 'd':
        app.add_flag("-d,--dictionary", o.woordenboek,
                     "take the definition from the dictionary, not from the header");
        break;
    case 'l':
        app.add_option("-l,--record-length", o.reclen,
                       "bytes a record, of an index made anew where the dictionary has more than one length");
        break;
    case 'j':
        app.add_flag("-j,--json", o.json, "JSON lines");
        break;
    case 'D':
        app.add_option_function<std::string>(
               "-D,--delimiter",
               [&o](const std::string& s) { o.scheiding = s == "tab" || s == "\\t" ? '\t' : s[0]; },
               "character between the values of CSV, or 'tab'")
            ->check(SCHEIDING);
        break;
    case 'N':
        app.add_flag("-N,--no-head", o.kaal, "without the definition, free slots and their links");
        break;
    case 'A':
        tool_mag(app.add_option("-a,--as", o.tabel, "show the records with the fields of this table")
                     ->check(TABEL),
                 tabellen());
        break;
    case 'F':
        tool_mag(app.add_option("-f,--fields", o.tabel,
                                "the fields, and without a head line the definition, are those of this table")
                     ->check(TABEL),
                 tabellen());
        break;
    case 'W':
        app.add_option("-W,--where", o.waarden,
                       "FIELD=VALUE: only records with this value; all when repeated")
            ->allow_extra_args(false);
        break;
    case 't':
        app.add_flag("-t,--truncate", o.kap,
                     "save half a record at the end of a data file as PAIR.CUT, and cut it off");
        break;
    case 'f':
        app.add_flag("-f,--force", o.dwing,
                     "rebuild although users at work may have reserved keys, or records that the index leads "
                     "to are gone");
        break;
    case 'q':
        app.add_flag("-q,--quiet", o.stil, "say only what is wrong");
        break;
    case 'o':
        app.add_option("-o,--output", o.bestand, "file to write, else standard output");
        break;
    case 'R':
        app.add_flag("-r,--replace", o.vervang, "a file of that name may go, but none of a data directory");
        break;
    case 'i':
        app.add_option("-i,--input", o.bestand, "file to read, else standard input");
        break;
    case 'a':
        app.add_flag("--alone", ALLEEN_GEZEGD,
                     "on a shared file system: no program on any host has the pair open");
        break;
    case 'r':
        app.add_flag("-r,--replace", o.vervang, "an existing pair of that name may go");
        break;
    case 'H':
        app.add_flag("-H,--hold", o.heel,
                     "hold the header lock throughout: one moment in time, writers wait");
        break;
    case 'C':
        app.add_flag("-C,--no-check", o.zonder_check, "leave out the check of the result");
        break;
    case 'w':
        app.add_option("-w,--wait", o.wacht, "seconds to wait for a lock")->check(CLI::Range(0, 86400));
        break;
    }
}

// Out from wherever the store stands: what was made goes, and what was reserved. A second call is about the giving back.
[[noreturn]] void ga_weg(int uitkomst) {
    static bool bezig;
    fflush(nullptr);
    if (!std::exchange(bezig, true)) {
        Werkmap::ruim_op();
        ixsh_geef_terug();
        ixremake_ruim_op();
    }
    if (ixsh_sein) {
        signal(ixsh_sein, SIG_DFL);
        raise(ixsh_sein);
    }
    _exit(uitkomst);
}

// A report of the store ends a tool in one line instead of the box of the screens.
void rapport() {
    const char* reden = SCRFATALREDEN();
    klacht("", CP850UTF8(SCRFATALTEKST()) + (*reden ? std::string(" (") + reden + ")" : ""));
    ga_weg(FOUT_GEVONDEN);
}

int wachtseconden = 10;

// The store's wait routine: give up as a tool instead of waiting for ever.
void wacht(ICB* icb) {
    static int gewacht;
    if (++gewacht > wachtseconden * 5 || ixsh_sein) {
        if (!ixsh_sein)
            klacht(icb ? icb->path : "", in_de_weg(icb));
        ga_weg(IN_GEBRUIK);
    }
    usleep(200'000);
}

} // namespace

int main(int argc, char** argv) {
    const int woorden = argc;
    char** const alle = argv;
    const Tool* tool = kies(&argc, &argv);
    if (!tool) {
        std::string hulp = "usage: ixtool TOOL ...; the tools are\n";
        for (const Tool& t : TOOLS)
            hulp += "  " + (t.naam + std::string(10, ' ')).substr(0, 10) + t.wat + "\n";
        VERSIE_OF_HULP("ixtool", hulp.c_str(), woorden, alle);
        fputs(hulp.c_str(), stderr);
        return FOUT_GEBRUIKT;
    }
    tool_begin(tool->naam);

    Opdracht o;
    std::string een;
    CLI::App app{std::string(tool->wat) + ".\n" + tool->uitleg, tool->naam};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    for (const char* p = tool->opties; *p; p++)
        optie(app, *p, o, een);
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (!een.empty())
        o.namen.push_back(een);
    wachtseconden = o.wacht;
    SCRFATALHAAK = rapport;
    IXWAITHOOK = wacht;
    int uitkomst = tool->doe(o);
    if (ixsh_sein)
        ga_weg(uitkomst);
    return tool_einde(uitkomst);
}
