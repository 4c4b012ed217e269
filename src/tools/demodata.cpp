// zgdemo: a demo data directory out of the texts that are installed with it (data/demo), or of another firm's. Without --fresh an existing one is kept as it is; with it a directory is emptied that this
// program made (its mark is there) and that nobody is at work in. Pairs are made by the dictionary's definitions.
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/stamrec.h"
#include "shared/syscalls.h"
#include "shared/woordenboek.h"
#include "store/ix.h"
#include "term/plaats.h"
#include "term/vast.h"
#include "tools/demomerk.h"
#include "tools/demotekst.h"
#include "tools/druktekst.h"
#include "tools/dump.h"
#include "tools/paar.h"
#include "tools/tool.h"
#include "tools/wie.h"
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <unistd.h>

namespace {

using namespace zg;
namespace fs = std::filesystem;

const char* const TABELLEN[] = {"DTLEV",    "DTLEVEXT", "DTMERK", "DTOMZGRP",
                                "DTDOELGR", "DTART",    "DTKOERS"}; // each a .csv
const char* const LEEG[] = {"DTMTOM"};
const char* const REGISTER[] = {"DTSER", "DTORDNR", "DTEAN", "DTSERPIC", "DTIPA"};

ICB* nieuw_paar(const char* naam) {
    if (!DDNEW(DDNUMMER(naam), naam))
        demofout(std::string(naam) + ": can't be made");
    return IXOPEN(naam, 1);
}

void schrijf(ICB* icb, const void* rec) {
    if (!IXWRITE(icb, rec))
        demofout(std::string(icb->path) + ": a record can't be written");
}

void vul_tabel(const std::string& map, const char* naam) {
    std::string pad = map + "/" + naam + ".csv";
    FILE* f = fopen(pad.c_str(), "re");
    if (!f)
        demofout(pad + ": " + strerror(errno));
    ICB* icb = nieuw_paar(naam);
    DumpLezer lezer(f);
    Dumpkop kop;
    bool gevonden;
    Dumprij rij;
    if (lezer.kop(&kop, &gevonden) && lezer.indeling(indeling(naam, icb->h), icb->h.reclen))
        while (lezer.rij(&rij))
            schrijf(icb, rij.rec);
    if (!lezer.fout().empty())
        demofout(pad + ": " + lezer.fout());
    IXCLOSE(icb);
    fclose(f);
}

Demomaten* maattype(std::vector<Demomaten>& alle, const Demobron& bron, const Demoregel& r) {
    const int soort = bron.getal(r.woorden[0], 1, 99);
    auto type = std::find_if(alle.begin(), alle.end(), [&](const Demomaten& m) { return m.soort == soort; });
    if (type == alle.end())
        bron.fout(r.sectie + ": no such size type");
    return &*type;
}

// A bar: sizes by name; a run: sizes with their pieces, "38=2".
void lees_maatregel(Demomaten* type, const Demobron& bron, const Demoregel& r) {
    std::vector<std::pair<std::string, int>> cellen;
    for (size_t i = 1; i < r.woorden.size(); i++) {
        const size_t is = r.woorden[i].find('=');
        const std::string maat = r.woorden[i].substr(0, is);
        if (!type->nummer(maat))
            bron.fout("no such size: " + maat);
        cellen.emplace_back(maat,
                            is == std::string::npos ? 1 : bron.getal(r.woorden[i].substr(is + 1), 1, 999));
    }
    if (r.sectie == "reeksen") {
        type->reeksen.push_back(cellen);
        return;
    }
    type->balken.emplace_back();
    for (const auto& [maat, n] : cellen)
        type->balken.back().push_back(maat);
}

std::vector<Demomaten> maten(const std::string& pad) {
    Demobron bron(pad);
    std::vector<Demomaten> alle;
    for (Demoregel r; bron.volgende(&r);) {
        if (!r.sectie.empty()) {
            if (r.sectie != "balken" && r.sectie != "reeksen")
                bron.fout("unknown section: " + r.sectie);
            lees_maatregel(maattype(alle, bron, r), bron, r);
            continue;
        }
        Demomaten m;
        m.soort = bron.getal(r.woorden[0], 1, 99);
        size_t punt = r.rest.find(':');
        if (punt == std::string::npos)
            bron.fout("number name: sizes");
        m.naam = bron.cp850(r.rest.substr(0, punt));
        std::istringstream in(r.rest.substr(punt + 1));
        for (std::string maat; in >> maat;)
            m.maten.push_back(maat);
        if (m.maten.empty() || m.maten.size() > MATEN)
            bron.fout("1 to 95 sizes");
        alle.push_back(m);
    }
    return alle;
}

// In the default system a size's number is its position; the record says so in its links.
void vul_maten(const std::vector<Demomaten>& alle) {
    ICB* icb = nieuw_paar("DTMAAT");
    for (const Demomaten& m : alle)
        for (uint8_t stelsel : {uint8_t{1}, uint8_t{2}}) {
            maatrij rij{};
            rij.stelsel = stelsel;
            rij.soort = static_cast<uint8_t>(m.soort);
            for (size_t i = 0; i < m.maten.size(); i++) {
                VASTIN(rij.entry[i + 1].naam, (m.maten[i] + "  ").substr(0, 3));
                rij.entry[i + 1].link = static_cast<uint8_t>(i + 1);
            }
            schrijf(icb, &rij);
        }
    IXCLOSE(icb);
}

// Pre-distributions: "type number branches: size=pieces", a record a line. A firm's texts may have none.
void vul_verdelingen(const std::string& pad, std::vector<Demomaten>& alle) {
    ICB* icb = nieuw_paar("DTVVTAB");
    std::error_code geen;
    if (!fs::exists(pad, geen))
        return IXCLOSE(icb);
    Demobron bron(pad);
    vvrec vorige{};
    for (Demoregel r; bron.volgende(&r);) {
        if (r.woorden.size() < 4)
            bron.fout("type number branches: size=pieces");
        const Demomaten* type = maattype(alle, bron, r);
        vvrec rec{};
        rec.maatsoort = static_cast<uint8_t>(type->soort);
        rec.nummer = static_cast<uint16_t>(bron.getal(r.woorden[1], 1, 99));
        const bool zelfde = rec.maatsoort == vorige.maatsoort && rec.nummer == vorige.nummer;
        rec.volgnummer = static_cast<uint16_t>(zelfde ? vorige.volgnummer + 1 : 1);
        std::istringstream filialen(r.woorden[2].substr(0, r.woorden[2].find(':')));
        for (std::string woord; std::getline(filialen, woord, ',');) {
            const auto plek =
                std::find(demo_filialen.begin(), demo_filialen.end(), bron.getal(woord, 0, 255));
            if (plek == demo_filialen.end())
                bron.fout("no such branch: " + woord);
            const auto f = static_cast<size_t>(plek - demo_filialen.begin());
            rec.filialen[f / 8] |= static_cast<uint8_t>(1 << (f % 8));
        }
        for (size_t i = 3; i < r.woorden.size(); i++) {
            const size_t is = r.woorden[i].find('=');
            const int maat = type->nummer(r.woorden[i].substr(0, is));
            if (!maat || is == std::string::npos)
                bron.fout("no such size: " + r.woorden[i]);
            rec.aantal[maat] = bron.getal(r.woorden[i].substr(is + 1), 1, 999);
            rec.aantal[0] += rec.aantal[maat];
        }
        uint8_t ruimte[IXRECMAX] = {};
        memcpy(ruimte, &rec, sizeof rec);
        schrijf(icb, ruimte);
        vorige = rec;
    }
    IXCLOSE(icb);
}

// The directory of the users' macros, the print directory, and the one that its printers put files in. A firm's texts may
// have no printers.
void vul_printers(const std::string& pad) {
    for (const char* map : {"macro", "print", "uit"})
        if (!SYSNIEUWEMAP(map))
            demofout(std::string(map) + ": " + strerror(errno));
    setenv("ZEBPRT", "print", 1);
    std::error_code geen;
    std::string fout;
    if (fs::exists(pad, geen) && druk_laad(pad, &fout) != GOED)
        demofout(fout);
}

// Who makes a directory has its mark locked until he ends: a half one with a mark that nobody has was broken off.
constexpr std::string_view MERKTEKST =
    "Made by zgdemo. zgdemo --fresh and ./run --fresh delete everything in this directory.\n";

// Is a directory's data there, and whole?
bool gemaakt(const std::string& doel) {
    std::error_code fout;
    return fs::exists(doel + "/DTSYS.TXT", fout) && !demo_half(doel);
}

int merk = -1; // locked; no other descriptor of it is opened and closed

void zet_merk(std::string_view tekst) {
    if (!SYSSCHRIJFOP(merk, tekst.data(), tekst.size(), 0) ||
        SYS.ftruncate(merk, static_cast<off_t>(tekst.size())) != 0)
        demofout(std::string(DEMOMERK) + ": " + strerror(errno));
}

void neem_merk(const std::string& doel, bool vers) {
    const std::string pad = doel + "/" + DEMOMERK;
    merk = SYSNIEUW(pad.c_str(), O_RDWR);
    if (merk < 0)
        demofout(pad + ": " + strerror(errno) + ", so the directory is left alone");
    if (!IOLOCK('E', merk, 0, 0))
        demofout(doel + ": another zgdemo is at work there (process " +
                 std::to_string(IOLOCKPID(merk, 0, 0)) + ")");
    if (!vers && gemaakt(doel)) // by another, who had it when we looked
        tool_weg(GOED);
}

// A user slot whose owner is between two programs, which have nothing open for that moment.
bool overgave(int fd) {
    gebruikerslot g;
    for (int nr = 0; nr < SYS_GEBRUIKER.slots; nr++)
        if (SYSLEES(fd, &g, sizeof g, SYS_GEBRUIKER.start + nr * SYS_GEBRUIKER.grootte) ==
                ssize_t{sizeof g} &&
            in_overgave(g))
            return true;
    return false;
}

// Who is at work in a directory of data: the file that is locked, with the process, or that is open; empty for none.
std::string wie_gebruikt(const std::string& map) {
    std::error_code fout;
    std::string open;
    constexpr auto OPTIES = fs::directory_options::skip_permission_denied;
    for (const auto& e : fs::recursive_directory_iterator(map, OPTIES, fout)) {
        if (!e.is_regular_file(fout) || e.path().filename() == DEMOMERK)
            continue;
        const int fd = SYS.open(e.path().c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
        if (fd < 0)
            continue;
        const std::string naam = e.path().filename().string();
        const int64_t pid = IOLOCKPID(fd, 0, 0);
        if (!pid && (elders_open(fd) || (naam == "DTSYS.TXT" && overgave(fd))))
            open = IOSOORTVAN(fd).gedeeld && !ALLEEN_GEZEGD ? ALLEEN_NODIG : naam;
        SYS.close(fd);
        if (pid)
            return naam + " by " +
                   wie_is(pid, SYS.open((map + "/DTSYS.TXT").c_str(), O_RDONLY | O_CLOEXEC, 0));
    }
    return open;
}

// An empty directory at this place but for the mark: a new one, or one that had nothing but what we made.
void maak_leeg(std::string doel, bool vers) {
    std::error_code fout;
    while (doel.size() > 1 && doel.back() == '/')
        doel.pop_back();
    if (!fs::exists(doel, fout)) {
        if (const fs::path boven = fs::path(doel).parent_path(); !boven.empty())
            fs::create_directories(boven, fout);
        if (!SYSNIEUWEMAP(doel.c_str()))
            demofout(doel + ": " + strerror(errno));
        return neem_merk(doel, vers);
    }
    if (fs::is_empty(doel, fout) && !fout)
        return neem_merk(doel, vers);
    if (!fs::exists(doel + "/" + DEMOMERK, fout))
        demofout(doel + ": holds something that zgdemo didn't make (no " + DEMOMERK +
                 " in it), so it is left alone; name another directory, or empty it yourself");
    neem_merk(doel, vers);
    ALLEEN_GEZEGD |= !gemaakt(doel); // it never was a firm to be at work in
    if (const std::string wie = wie_gebruikt(doel); !wie.empty())
        demofout(doel + ": is in use (" + wie + "), so it is left alone");
    zet_merk(DEMOHALFTEKST); // before the first file goes
    std::vector<fs::path> weg;
    for (const auto& e : fs::directory_iterator(doel, fout))
        if (e.path().filename() != DEMOMERK)
            weg.push_back(e.path());
    for (const fs::path& p : weg)
        if (fs::remove_all(p, fout); fout)
            demofout(p.string() + ": " + fout.message());
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgdemo");
    std::string doel, teksten = PAKKETMAP("demo");
    bool vers = false, met_register = false, leeg_register = false;
    CLI::App app{"make a data directory with a demo firm; one that stands is kept as it is", "zgdemo"};
    tool_kop(app, "0 made, or kept; 1 not made; 2 used wrong; 3 cannot open.");
    app.add_option("DIRECTORY", doel, "where to make it")->required();
    app.add_flag("--fresh", vers, "make it anew: empties a directory that zgdemo made");
    app.add_flag("--alone", ALLEEN_GEZEGD, "on a shared file system: no program on any host has it open");
    CLI::Option* vol =
        app.add_flag("--register", met_register, "with the full registration: series, prices, labels");
    app.add_flag("--empty-register", leeg_register, "with its files, and no series in them")->excludes(vol);
    app.add_option("--from", teksten, "the directory of the texts that it is made of");
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (teksten.empty())
        demofout("the texts of the demo firm are not installed with it; name their directory with --from");
    std::error_code fout;
    const std::string bron = fs::canonical(teksten, fout);
    if (fout)
        demofout(teksten + ": " + fout.message());
    if (!vers && gemaakt(doel))
        return 0;
    maak_leeg(doel, vers);
    if (!IOCHDIR(doel.c_str()))
        demofout(doel + ": " + strerror(errno));
    zet_merk(DEMOHALFTEKST);

    std::vector<Demomaten> m = maten(bron + "/maten.txt");
    demo_systeem(bron + "/systeem.txt", m, met_register || leeg_register);
    for (const char* naam : TABELLEN)
        vul_tabel(bron, naam);
    vul_maten(m);
    vul_verdelingen(bron + "/verdelingen.txt", m);
    for (const char* naam : LEEG)
        IXCLOSE(nieuw_paar(naam));
    if (met_register || leeg_register)
        for (const char* naam : REGISTER)
            IXCLOSE(nieuw_paar(naam));
    demo_orders(bron + "/orders.txt", m);
    if (met_register)
        demo_register();
    vul_printers(bron + "/printers.txt");
    zet_merk(MERKTEKST);
    return 0;
}
