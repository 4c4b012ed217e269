// orddump: order journals and work files as text or JSON lines, one record a line, and the check of their
// grammar. It opens for reading only and takes no lock, so it disturbs nobody; what a program at work may have
// half written is not called damage.
#include "order/ordloop.h"
#include "shared/files.h"
#include "tools/ordjson.h"
#include "tools/ordkeur.h"
#include "tools/ordplaats.h"
#include "tools/paar.h"
#include "tools/tool.h"
#include "tools/wie.h"
#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace zg;
struct Wens {
    std::vector<std::string> bestanden;
    bool json = false, check = false, met_naam = false;
    std::string soort;
    int filialen = 0;
};

// Indented by level; what is 0 or empty is left out, but not the numbers that say which one it is.
void als_tekst(const ordrauw& r) {
    int diepte = r.tag == 'O' ? 0 : r.tag == 'M' ? 1 : r.tag == 'D' ? 2 : r.tag == 'F' ? 4 : 3;
    printf("%10lld %*s%c", static_cast<long long>(r.offset), 2 * diepte, "", r.tag);
    for (const Veld& v : ord_velden(r.tag)) {
        std::string waarde = ord_leeg(v, r.data + 1) ? "" : veld_uit(v, r.data + 1);
        bool wie = v.naam == "filiaal" || v.naam == "maat" || v.naam == "kleur";
        if (waarde.empty() || (!wie && waarde.find_first_not_of('0') == std::string::npos))
            continue;
        if (v.soort == 'c')
            printf(" %s=\"%s\"", v.naam.c_str(), waarde.c_str());
        else
            printf(" %s=%s", v.naam.c_str(), waarde.c_str());
    }
    putchar('\n');
}

void toon(const Wens& w, const std::string& pad, int fd) {
    ordloop l;
    ordrauw r;
    ordloop_begin(&l, fd, 0, INT64_MAX);
    while (ordloop_volgende(&l, &r) == LOOP_RECORD) {
        if (w.json)
            puts(ord_json(r, w.met_naam ? pad : "").c_str());
        else
            als_tekst(r);
    }
}

ordsoort soort_van(const Wens& w, const std::string& pad) {
    if (!w.soort.empty())
        return w.soort == "work" ? ORD_WERK : ORD_JOURNAAL;
    return pad.size() > 4 && strcasecmp(pad.c_str() + pad.size() - 4, ".WRK") == 0 ? ORD_WERK : ORD_JOURNAAL;
}

// Written while we read, or held by a program that writes in it?
bool aan_het_werk(int fd, const struct stat& voor) {
    struct stat na;
    return fstat(fd, &na) != 0 || na.st_size != voor.st_size || na.st_mtim.tv_sec != voor.st_mtim.tv_sec ||
           na.st_mtim.tv_nsec != voor.st_mtim.tv_nsec || !IOLOCK('T', fd, 0, 1);
}

// The files that are meant: of a directory all its journals and work files. False when there is none, told.
bool bestanden_van(Wens* w) {
    std::vector<std::string> uit;
    bool goed = true;
    for (const std::string& naam : w->bestanden) {
        if (!IOISDIR(naam.c_str())) {
            uit.push_back(naam);
            continue;
        }
        const std::vector<std::string> hier = ord_bestanden(naam);
        uit.insert(uit.end(), hier.begin(), hier.end());
        if (hier.empty())
            goed = false, klacht(naam, "no journals in this directory");
        w->met_naam = true;
    }
    w->met_naam |= uit.size() > 1;
    w->bestanden = std::move(uit);
    return goed;
}

struct {
    int64_t bestanden = 0, orders = 0, regels = 0;
    size_t kwalen = 0;
} som;

int een(const Wens& w, const std::string& pad) {
    const int fd = open_gewoon(pad, O_RDONLY);
    struct stat voor = {};
    if (fd < 0)
        return klacht(pad, openreden(errno)), NIET_TE_OPENEN;
    fstat(fd, &voor);
    ordsoort soort = soort_van(w, pad);
    ordtelling telling;
    if (!w.check) {
        if (w.met_naam && !w.json)
            tool_zeg("%s:\n", pad.c_str());
        toon(w, pad, fd);
    }
    Ordplaats plaats;
    ordomgeving omgeving = ord_plaats(pad, &plaats) ? ord_omgeving(plaats) : ordomgeving{};
    if (w.filialen)
        omgeving.filialen = w.filialen;
    std::vector<ordkwaal> kwalen = ord_keur(fd, soort, omgeving, &telling);
    som.bestanden++, som.orders += telling.orders, som.regels += telling.regels, som.kwalen += kwalen.size();
    int uitkomst = GOED;
    if (!kwalen.empty())
        uitkomst = aan_het_werk(fd, voor) ? IN_GEBRUIK : FOUT_GEVONDEN;
    const std::string wie = uitkomst == IN_GEBRUIK ? door_wie(pad, fd, 0, 1) : "";
    close(fd);
    fflush(stdout);
    for (const ordkwaal& k : kwalen)
        klacht(pad, "at " + std::to_string(k.pos) + ": " + k.wat);
    if (uitkomst == IN_GEBRUIK)
        klacht(pad, "in use" + wie + ": this may be half written, look again later");
    if (w.check)
        tool_zeg("%s: %s, %lld orders, %lld models, %lld lines, %lld records%s\n", pad.c_str(),
                 soort == ORD_WERK ? "work file" : "journal", static_cast<long long>(telling.orders),
                 static_cast<long long>(telling.modellen), static_cast<long long>(telling.regels),
                 static_cast<long long>(telling.records), kwalen.empty() ? ", good" : "");
    return uitkomst;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("orddump");
    Wens w;
    CLI::App app{
        "print order journals and work files, and check them.\n"
        "No lock is taken; a file in use can be read. In a data directory orders are held against its\n"
        "firm: supplier, season, branches.",
        "orddump"};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    app.add_option("FILE", w.bestanden,
                   "journals (.JRN) and work files (.WRK), or directories for all in them")
        ->required();
    app.add_flag("-j,--json", w.json, "JSON lines");
    app.add_flag("-c,--check", w.check, "only check, one line a file");
    app.add_option("-k,--kind", w.soort, "journal or work, else by the extension")
        ->check(CLI::IsMember({"journal", "work"}));
    app.add_option("-b,--branches", w.filialen,
                   "number of branches of the firm, when its directory doesn't tell")
        ->check(CLI::Range(1, 250));
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    // The gravest answer counts: a file that can't be opened above one that is wrong above one in use.
    int uitkomst = bestanden_van(&w) ? GOED : NIET_TE_OPENEN;
    const std::array<int, 5> gewicht = {0, 2, 0, 3, 1};
    for (const std::string& pad : w.bestanden) {
        int deze = een(w, pad);
        if (gewicht[static_cast<size_t>(deze)] > gewicht[static_cast<size_t>(uitkomst)])
            uitkomst = deze;
    }
    if (w.check && w.met_naam)
        printf("%lld files, %lld orders, %lld lines, %zu wrong\n", static_cast<long long>(som.bestanden),
               static_cast<long long>(som.orders), static_cast<long long>(som.regels), som.kwalen);
    return tool_einde(uitkomst);
}
