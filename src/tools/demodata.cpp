// zgdemo DIRECTORY [--fresh] [--register] [--from TEXTS]: a demo data directory out of the text under data/demo,
// or of another firm's. Without --fresh an existing one is kept as it is. Pairs are made by the dictionary's
// definitions.
#include "shared/files.h"
#include "shared/iomaat.h"
#include "shared/woordenboek.h"
#include "store/ix.h"
#include "term/vast.h"
#include "tools/demotekst.h"
#include "tools/dump.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <unistd.h>

#ifndef ZG_DEMO_DIR
#error "where the demo sources are"
#endif

namespace {

using namespace zg;

const char* const TABELLEN[] = {"DTLEV",    "DTLEVEXT", "DTMERK", "DTOMZGRP",
                                "DTDOELGR", "DTART",    "DTKOERS"}; // each a .csv
const char* const LEEG[] = {"DTMTOM", "DTVVTAB"};
const char* const REGISTER[] = {"DTSER", "DTORDNR", "DTEAN", "DTSERPIC", "DTIPA"};

ICB* nieuw_paar(const char* naam) {
    if (!DDNEW(DDNUMMER(naam), naam))
        demofout(std::string(naam) + ": can't be made");
    return IXOPEN(naam, 1);
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
            IXWRITE(icb, rij.rec);
    if (!lezer.fout().empty())
        demofout(pad + ": " + lezer.fout());
    IXCLOSE(icb);
    fclose(f);
}

std::vector<Demomaten> maten(const std::string& pad) {
    Demobron bron(pad);
    std::vector<Demomaten> alle;
    for (Demoregel r; bron.volgende(&r);) {
        if (r.sectie == "balken") {
            int soort = bron.getal(r.woorden[0], 1, 99);
            auto type =
                std::find_if(alle.begin(), alle.end(), [&](const Demomaten& m) { return m.soort == soort; });
            if (type == alle.end())
                bron.fout("a bar of a size type that isn't there");
            type->balken.emplace_back(r.woorden.begin() + 1, r.woorden.end());
            for (const std::string& maat : type->balken.back())
                if (std::find(type->maten.begin(), type->maten.end(), maat) == type->maten.end())
                    bron.fout("no such size: " + maat);
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
                VASTIN(rij.entry[i + 1].naam, m.maten[i]);
                rij.entry[i + 1].link = static_cast<uint8_t>(i + 1);
            }
            IXWRITE(icb, &rij);
        }
    IXCLOSE(icb);
}

int gebruik() {
    fprintf(stderr, "usage: zgdemo DIRECTORY [--fresh] [--register] [--from TEXTS]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    std::string doel, teksten = ZG_DEMO_DIR;
    bool vers = false, registermodus = false;
    for (int i = 1; i < argc; i++) {
        std::string a = argv[i];
        if (a == "--fresh")
            vers = true;
        else if (a == "--register")
            registermodus = true;
        else if (a == "--from" && i + 1 < argc)
            teksten = argv[++i];
        else if (doel.empty() && a[0] != '-')
            doel = a;
        else
            return gebruik();
    }
    if (doel.empty())
        return gebruik();
    std::error_code fout;
    const std::string bron = fs::canonical(teksten, fout);
    if (fout)
        demofout(teksten + ": " + fout.message());
    bool daar = fs::exists(doel + "/DTSYS.TXT", fout);
    if (daar && !vers)
        return 0;
    if (!daar && fs::exists(doel, fout) && !fs::is_empty(doel, fout))
        demofout(doel + ": is there and holds something else");
    fs::remove_all(doel, fout);
    fs::create_directories(doel, fout);
    if (chdir(doel.c_str()) != 0)
        demofout(doel + ": " + strerror(errno));

    std::vector<Demomaten> m = maten(bron + "/maten.txt");
    demo_systeem(bron + "/systeem.txt", m, registermodus);
    for (const char* naam : TABELLEN)
        vul_tabel(bron, naam);
    vul_maten(m);
    for (const char* naam : LEEG)
        IXCLOSE(nieuw_paar(naam));
    if (registermodus)
        for (const char* naam : REGISTER)
            IXCLOSE(nieuw_paar(naam));
    demo_orders(bron + "/orders.txt", m);
    return 0;
}
