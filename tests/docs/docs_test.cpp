// What the documents claim, held against the sources: folders, layers, hooks, files, lengths of records, links, options,
// keys, and the worked examples of CONTRIBUTING.
#include "edi/edifys.h"
#include "order/ordrec.h"
#include "print/printtabel.h"
#include "shared/ioeti.h"
#include "shared/iofil.h"
#include "shared/iomaat.h"
#include "shared/registerrec.h"
#include "shared/stamrec.h"
#include "shared/sysrec.h"
#include "store/node.h"
#include "support/proef.h"
#include "term/macro/macrobestand.h"
#include "tools/shell.h"
#include <regex>

using namespace zg;
using namespace zg::test;
namespace fs = std::filesystem;

namespace {

const std::string HIER = ZG_SOURCE_DIR "/";

std::string lees(const std::string& pad) {
    return lees_bestand(HIER + pad);
}

// What stands in the first bracket of each match.
std::vector<std::string> alle(const std::string& tekst, const char* patroon) {
    const std::regex r(patroon);
    std::vector<std::string> uit;
    for (std::sregex_iterator i(tekst.begin(), tekst.end(), r), eind; i != eind; ++i)
        uit.push_back((*i)[1]);
    return uit;
}

// The cells of a table's rows below the first line that has `kop`.
std::vector<std::vector<std::string>> tabel(const std::string& tekst, const std::string& kop) {
    std::vector<std::vector<std::string>> uit;
    size_t p = tekst.find(kop);
    EXPECT_NE(p, std::string::npos) << kop;
    for (p = tekst.find('\n', p) + 1; p != 0 && tekst[p] == '|'; p = tekst.find('\n', p) + 1) {
        const std::string regel = tekst.substr(p, tekst.find('\n', p) - p);
        if (!regel.starts_with("|--"))
            uit.push_back(alle(regel, "\\| ([^|]*) (?=\\|)"));
    }
    return uit;
}

// The documents, by their path from the root.
std::map<std::string, std::string> documenten() {
    std::map<std::string, std::string> uit;
    for (const char* map : {"", "docs"})
        for (const auto& e : fs::directory_iterator(HIER + map))
            if (e.path().extension() == ".md")
                uit[fs::relative(e.path(), HIER)] = lees_bestand(e.path());
    return uit;
}

std::vector<std::string> knip(const std::string& tekst, const std::string& waar) {
    std::vector<std::string> uit;
    for (size_t p = 0, q; p != std::string::npos; p = q == std::string::npos ? q : q + waar.size())
        q = tekst.find(waar, p), uit.push_back(tekst.substr(p, q - p));
    return uit;
}

// All sources below `map`, one behind another.
std::string bronnen(const std::string& map, const std::set<std::string>& soorten = {".h", ".cpp"}) {
    std::string uit;
    for (const auto& e : fs::recursive_directory_iterator(HIER + map))
        if (soorten.contains(e.path().extension()))
            uit += lees_bestand(e.path());
    return uit;
}

bool heeft(const std::string& tekst, const std::string& woord) {
    return tekst.find(woord) != std::string::npos;
}

// A path as the documents write it: its last part may have a star.
bool is_er(const std::string& pad) {
    const size_t ster = pad.find('*');
    if (ster == std::string::npos)
        return fs::exists(HIER + pad);
    const fs::path map = fs::path(HIER + pad).parent_path();
    const std::string begin = fs::path(pad.substr(0, ster)).filename(), eind = pad.substr(pad.rfind('*') + 1);
    if (heeft(map, "*") || !fs::is_directory(map))
        return heeft(map, "*");
    return std::any_of(fs::directory_iterator(map), fs::directory_iterator(), [&](const auto& e) {
        const std::string naam = e.path().filename();
        return naam.starts_with(begin) && naam.ends_with(eind);
    });
}

std::string anker(const std::string& kop) {
    std::string uit;
    for (const char c : kop)
        if (isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || c < 0)
            uit += static_cast<char>(tolower(c));
        else if (c == ' ')
            uit += '-';
    return uit;
}

} // namespace

TEST(Docs, LinksAndPathsLeadSomewhere) {
    for (const auto& [naam, tekst] : documenten()) {
        SCOPED_TRACE(naam);
        for (const std::string& doel : alle(tekst, R"(\]\(([^)]*)\))")) {
            if (doel.starts_with("http"))
                continue;
            const std::string plek = doel.substr(0, doel.find('#'));
            const fs::path pad = plek.empty() ? fs::path(naam) : fs::path(naam).parent_path() / plek;
            EXPECT_TRUE(fs::exists(HIER / pad)) << doel;
            if (!heeft(doel, "#"))
                continue;
            std::set<std::string> ankers;
            for (const std::string& kop : alle(lees(pad), "\n#+ ([^\n]*)"))
                ankers.insert(anker(kop));
            EXPECT_TRUE(ankers.contains(doel.substr(doel.find('#') + 1))) << doel;
        }
        for (const std::string& pad :
             alle(tekst, R"(`((?:src|tests|docs|data|cmake|bench|debian)/[-\w./*]*\w)[` ])"))
            EXPECT_TRUE(is_er(pad)) << pad;
    }
}

TEST(Docs, ArchitectureNamesTheFoldersLayersAndFiles) {
    const std::string doc = lees("docs/architecture.md"), niet = lees(".gitignore");
    // Every folder, and the layers in the order that tests/layers holds.
    for (const char* map : {"", "src", "src/term"})
        for (const auto& e : fs::directory_iterator(HIER + map)) {
            const std::string pad = fs::relative(e.path(), HIER), naam = e.path().filename();
            if (e.is_directory() && naam[0] != '.' && pad != "src" && !heeft(niet, "/" + pad + "/") &&
                !pad.starts_with("obj-")) {
                EXPECT_TRUE(heeft(doc, "`" + pad + "`")) << pad << " isn't named";
            }
        }
    std::string lagen;
    for (const auto& rij : tabel(doc, "| Layer | Folder |"))
        lagen = std::regex_replace(rij[0], std::regex(", "), ",") + (lagen.empty() ? "" : " ") + lagen;
    auto sorteer = [](const std::string& s) { // names of one layer in any order
        std::string uit;
        for (std::string laag : alle(s, "([^ ]+)")) {
            std::vector<std::string> namen = alle(laag, "([^,]+)");
            std::sort(namen.begin(), namen.end());
            for (const std::string& n : namen)
                uit += n + ",";
            uit += " ";
        }
        return uit;
    };
    EXPECT_EQ(sorteer(lagen), sorteer(alle(lees("tests/layers"), "split\\(\"([^\"]*)\", rows")[0]));
    // The files of each chapter's table, in its folder or in the folder of src that they name; and every file has its place.
    std::set<std::string> genoemd;
    for (const std::string& hoofdstuk : knip(doc, "\n## ")) {
        const std::vector<std::string> mappen =
            alle(hoofdstuk.substr(0, hoofdstuk.find('\n')), "`(src/[^`]*)`");
        if (!heeft(hoofdstuk, "| File | What it does |"))
            continue;
        for (const auto& rij : tabel(hoofdstuk, "| File | What it does |"))
            for (const std::string& naam : alle(rij[0], "`([^`]*)`")) {
                bool er = is_er("src/" + naam) && heeft(naam, "/");
                for (const std::string& map : mappen)
                    er = er || is_er(map + "/" + naam) || is_er(map + "/" + naam + "*");
                genoemd.insert(naam.substr(naam.rfind('/') + 1));
                EXPECT_TRUE(er) << naam << " isn't in " << mappen[0];
            }
        for (const std::string& naam : alle(hoofdstuk, "`(?:src/)?(?:\\w+/)*(\\w+\\.cpp)`"))
            genoemd.insert(naam);
    }
    for (const auto& e : fs::recursive_directory_iterator(HIER + "src")) {
        const std::string naam = e.path().filename();
        EXPECT_TRUE(e.path().extension() != ".cpp" || genoemd.contains(naam) ||
                    std::ranges::any_of(genoemd,
                                        [&](const std::string& g) {
                                            return heeft(g, "*") && IOPAST(g.c_str(), naam.c_str());
                                        }))
            << naam << " isn't named";
    }
}

TEST(Docs, HooksAndEnvironmentAreThoseOfTheSources) {
    const std::string doc = lees("docs/architecture.md"), src = bronnen("src"),
                      koppen = bronnen("src", {".h"});
    std::set<std::string> genoemd;
    for (const auto& rij : tabel(doc, "| Hook | Owner |"))
        for (const std::string& naam : alle(rij[0], "`([^`]*)`")) {
            genoemd.insert(naam);
            EXPECT_TRUE(std::regex_search(koppen, std::regex("extern [^;]*\\b" + naam + "\\b"))) << naam;
        }
    for (const std::string& naam : alle(koppen, R"(\nextern [^;(]*\(\*([A-Z]+)\)\()"))
        EXPECT_TRUE(genoemd.contains(naam)) << naam << " isn't in the table of hooks";
    std::string ooit; // all that the documents say
    for (const auto& [naam, tekst] : documenten())
        ooit += tekst;
    const std::set<std::string> systeem{"PATH", "TMPDIR"};
    for (const bool proef : {false, true}) // of the tests' own only those that a person sets
        for (const std::string& stuk : knip("\"" + (proef ? bronnen("tests") : src), "getenv(\"")) {
            const std::string naam = stuk.substr(0, stuk.find('"'));
            EXPECT_TRUE(naam.empty() || systeem.contains(naam) || (proef && !naam.starts_with("ZG_")) ||
                        heeft(ooit, "`" + naam))
                << naam << " is in no document";
        }
    for (const auto& rij : tabel(doc, "| Environment | Read as |"))
        for (const std::string& naam : alle(rij[0], "`([A-Z_]+)`"))
            EXPECT_TRUE(heeft(src, naam) || naam == "NLSPATH") << naam << " is read nowhere";
}

TEST(Docs, RecordsAreAsLongAsTheFormatsSay) {
    const std::string doc = lees("docs/formats.md");
    // vorm: with the length; a table's row begins with its name
    for (const auto& [vorm, lengte] : Rijen<const char*, size_t>{
             {"| `DTART` article groups | %zu |", sizeof(artrec)},
             {"| `DTMERK` brands | %zu |", sizeof(merkrec)},
             {"| `DTLEV` relations | %zu |", sizeof(levrec)},
             {"| `DTLEVEXT` | %zu |", sizeof(levextrec)},
             {"| `DTOMZGRP` | %zu |", sizeof(omzgrprec)},
             {"| `DTDOELGR` | %zu |", sizeof(doelgrrec)},
             {"| `DTVVTAB` pre-distributions | %zu |", sizeof(vvrec)},
             {"| `DTKOERS` rates | %zu |", sizeof(koersrec)},
             {"| `DTEAN` | %zu |", sizeof(eanrec)},
             {"| `DTMAAT` sizes | %zu |", sizeof(maatrij)},
             {"`DTSERPIC` is made with %zu bytes", sizeof(serpicrec)},
             {"record r at r × %zu. Key 1", sizeof(prijsgroeprec)},
             {"Blocks of %zu bytes, block b", sizeof(etiblok)},
             {"Records of %zu bytes: record 0 the head office", sizeof(filiaalrec)},
             {"## Data dictionary row\n\n%zu bytes in memory", sizeof(zg::DDRIJ)},
             {"| O | %zu | header", sizeof(ordkop)},
             {"| M | %zu | model", sizeof(ordmodel)},
             {"| D | %zu | line", sizeof(orddessin)},
             {"| T | %zu | fifth", sizeof(ordtekst)},
             {"| S | %zu | prices", sizeof(ordmaat)},
             {"| E, B | %zu | extension", sizeof(ordextra)},
             {"| L | %zu | delivery", sizeof(ordlevt)},
             {"| F | %zu | quantity", sizeof(ordfil)},
             {"one entry of %zu bytes a line of the work file", sizeof(ors_ingang)},
             {"`ORDnnnn.ACT`: %zu bytes", sizeof(act_record)},
             {"## ORDPARM.SYS\n\n%zu bytes", sizeof(ordparm)},
             {"the transfer\n\n%zu bytes each", sizeof(edirec)},
             {"Header, %zu bytes that mean something", sizeof(IXHEADER)},
             {"Key, %zu bytes", sizeof(IXKEYDEF)},
             {"| `TR_PTRG` printers | %zu |", sizeof(prtrec)},
             {"| `TR_PTRC` connections | %zu |", sizeof(prtverbinding)},
             {"| `TR_PTRP` configurations | %zu |", sizeof(prtconfig)},
             {"| `TR_PTRCA` control texts | %zu |", sizeof(prtcode)},
             {"title \"mac_rec\", %zu bytes", sizeof(mac_rec)},
         }) {
        char zin[200];
        snprintf(zin, sizeof zin, vorm, lengte);
        EXPECT_TRUE(heeft(doc, zin)) << zin;
    }
    for (const Systabel& t :
         {SYS_RECORD, SYS_PRIJSKLASSE, SYS_GEBRUIKER, SYS_VALUTA, SYS_KLEUR, SYS_MAATBALK, SYS_LAND,
          SYS_ETIKETSOORT, SYS_SETCODE, SYS_SETCODE2, SYS_MAATREEKS, SYS_ARTREGACTIE, SYS_FILIAALREEKS}) {
        const std::string rij = "| " + std::to_string(t.start) + " | " + std::to_string(t.slots) + " | " +
                                std::to_string(t.grootte) + " |";
        EXPECT_TRUE(heeft(doc, rij)) << rij;
    }
}

// Each tool has a page and a place in the README; its options are those of its page.
TEST(Docs, ToolsHaveTheOptionsOfTheirPages) {
    const std::string readme = lees("README.md"), woorden = lees_bestand(ZG_BINARY_DIR "/completion/words");
    std::map<std::string, std::string> bladen;
    std::map<std::string, std::set<std::string>> opties; // by page
    std::set<std::string> elke{"--help", "--version"};
    for (const std::string& regel : alle(woorden, "([^\n]+)")) {
        const std::string tool = regel.substr(0, regel.find('\t'));
        std::string blad = tool + ".1";
        std::string tekst = lees("docs/man/" + blad);
        if (tekst.starts_with(".so man1/"))
            blad = alle(tekst, "man1/([^\n]*)")[0], tekst = lees("docs/man/" + blad);
        EXPECT_FALSE(tekst.empty()) << tool << " has no page";
        EXPECT_TRUE(heeft(readme, "`" + tool) || heeft(readme, "    " + tool))
            << tool << " isn't in the README";
        bladen[blad] = std::regex_replace(tekst, std::regex("\\\\-"), "-");
        for (const std::string& optie : alle(regel, "\t(--[a-z][-a-z]*)(?=\t)")) {
            elke.insert(optie);
            opties[blad].insert(optie);
        }
    }
    ASSERT_GE(bladen.size(), 10u);
    for (const auto& [blad, tekst] : bladen) {
        const std::vector<std::string> genoemd = alle(tekst, "(--[a-z][-a-z]*)");
        for (const std::string& optie : opties[blad])
            EXPECT_TRUE(std::find(genoemd.begin(), genoemd.end(), optie) != genoemd.end() ||
                        optie == "--help")
                << blad << " doesn't tell of " << optie;
        for (const std::string& optie : genoemd)
            EXPECT_TRUE(elke.contains(optie)) << blad << ": " << optie << " isn't any tool's";
    }
    for (const auto& e : fs::directory_iterator(HIER + "docs/man"))
        EXPECT_TRUE(fs::exists(ZG_BINARY_DIR "/" + e.path().stem().string()))
            << e.path().filename() << ": no such program";
}

TEST(Docs, KeysAreKeys) {
    std::set<std::string> toetsen{"F2", "Backspace", "Shift-Tab", "Ctrl-X", "Ctrl-L", "Ctrl-\\"};
    for (const std::string& naam : alle(lees("src/tools/macrotekst.cpp"), R"rx(\{"(\w\w+)", K_)rx"))
        toetsen.insert(naam);
    for (const std::string& rij : alle(lees("docs/keys.md"), "\n\\| ([^|]*) \\|"))
        for (const std::string& naam :
             alle(rij, R"(\b((?:Shift-|Ctrl-)?[A-Z\\][a-zA-Z0-9]+|Ctrl-.)(?=,| |$))"))
            EXPECT_TRUE(toetsen.contains(naam) || naam == "Key") << naam;
}

// Each applies, and CONTRIBUTING shows lines that are in it.
TEST(Docs, ExamplesOfContributingApply) {
    const std::string doc = lees("CONTRIBUTING.md");
    const std::string daar =
        "cd '" + HIER + "' && export GIT_CEILING_DIRECTORIES=\"$(dirname \"$PWD\")\" && ";
    int voorbeelden = 0;
    for (const auto& e : fs::directory_iterator(HIER + "docs/examples")) {
        const std::string naam = e.path().filename(), diff = lees_bestand(e.path());
        SCOPED_TRACE(naam);
        voorbeelden++;
        // Or it is the one in hand: then the tree has it.
        const Uit u = sh(daar + "git apply -R --check docs/examples/" + naam +
                         " || git apply --check docs/examples/" + naam);
        EXPECT_EQ(u.status, 0) << u.tekst;
        for (const std::string& nieuw : alle(diff, "--- /dev/null\n[^\n]* b/src/[^\n]*/(\\w+\\.cpp)\n"))
            EXPECT_TRUE(heeft(diff, "`" + nieuw + "`")) << nieuw << " gets no place in architecture.md";
        std::vector<std::string> stukken =
            knip(doc.substr(std::min(doc.find("](docs/examples/" + naam), doc.size())), "```");
        ASSERT_TRUE(stukken.size() > 1 && stukken[1].starts_with("diff\n")) << "CONTRIBUTING doesn't show it";
        stukken[1].erase(0, 5);
        for (const std::string& regel : knip(stukken[1], "\n"))
            EXPECT_TRUE(regel.empty() || heeft(diff, "\n" + regel + "\n")) << regel;
    }
    EXPECT_EQ(voorbeelden, 4);
    const Uit u =
        sh(daar + "for d in text field table screen; do d=docs/examples/$d.diff;"
                  " git apply -R --check $d 2>/dev/null || cat $d; done | git apply --check --allow-empty");
    EXPECT_EQ(u.status, 0) << "one behind another: " << u.tekst;
    for (const std::string& preset : alle(lees("CMakePresets.json"), R"rx("name": "(\w+)", "inherits")rx"))
        EXPECT_TRUE(heeft(doc, "`" + preset + "`")) << preset;
    const std::string alles =
        bronnen("tests", {".h", ".cpp", ".txt"}) + bronnen("src") + bronnen("bench") + lees("CMakeLists.txt");
    for (const std::string& naam : alle(doc, "`(ZG_?[A-Z]+)[`=]"))
        EXPECT_TRUE(heeft(alles, naam)) << naam << " is read nowhere";
}
