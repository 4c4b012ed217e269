// Reading and writing a translator's file.
#include "tools/pobestand.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace zg {
namespace {

// What stands between the quotes, its escapes undone. False for what isn't one quoted text.
bool citaat(const std::string& regel, size_t van, std::string* uit) {
    while (van < regel.size() && regel[van] == ' ')
        van++;
    if (van >= regel.size() || regel[van] != '"')
        return false;
    for (size_t i = van + 1; i < regel.size(); i++) {
        if (regel[i] == '"')
            return regel.find_first_not_of(" \t", i + 1) == std::string::npos;
        if (regel[i] == '\\') {
            const char c = ++i < regel.size() ? regel[i] : '\0';
            if (!strchr("nt\"\\", c) || !c)
                return false;
            *uit += c == 'n' ? '\n' : c == 't' ? '\t' : c;
        } else {
            *uit += regel[i];
        }
    }
    return false;
}

std::string met_escapes(const std::string& tekst) {
    std::string uit = "\"";
    for (const char c : tekst) {
        if (c == '\n' || c == '"' || c == '\\')
            uit += '\\';
        uit += c == '\n' ? 'n' : c;
    }
    return uit + "\"";
}

} // namespace

bool po_lees(const std::string& pad, Pobestand* po, std::string* fout) {
    std::ifstream in(pad);
    *po = {};
    Porij rij;
    std::string* veld = nullptr; // what a line of quotes alone goes on with
    bool begonnen = false;
    int nr = 0;
    auto zet_weg = [&] {
        if (begonnen && rij.sleutel.empty() && rij.bron.empty())
            po->kop = rij.vertaald;
        else if (begonnen)
            po->rijen.push_back(rij);
        rij = {}, veld = nullptr, begonnen = false;
    };
    for (std::string regel; getline(in, regel);) {
        nr++;
        if (regel.empty() || regel[0] == '#') {
            if (begonnen && veld == &rij.vertaald)
                zet_weg();
            if (regel.starts_with("#,") && regel.find("fuzzy") != std::string::npos)
                rij.wazig = true;
            continue;
        }
        size_t van = 0;
        for (auto [woord, doel] : {std::pair{"msgctxt ", &rij.sleutel}, std::pair{"msgid ", &rij.bron},
                                   std::pair{"msgstr ", &rij.vertaald}})
            if (regel.starts_with(woord)) {
                if (veld == &rij.vertaald)
                    zet_weg();
                veld = doel, van = strlen(woord), begonnen = true;
                rij.regel = rij.regel ? rij.regel : nr;
            }
        if (!veld || !citaat(regel, van, veld)) {
            *fout = pad + ":" + std::to_string(nr) + ": not understood";
            return false;
        }
    }
    zet_weg();
    if (!in.eof() || po->rijen.empty()) {
        *fout = pad + ": no texts";
        return false;
    }
    return true;
}

void po_schrijf(const Pobestand& po) {
    printf("msgid \"\"\nmsgstr \"\"\n");
    for (size_t p = 0, eind; p < po.kop.size(); p = eind + 1) {
        eind = std::min(po.kop.find('\n', p), po.kop.size() - 1);
        printf("%s\n", met_escapes(po.kop.substr(p, eind + 1 - p)).c_str());
    }
    for (const Porij& r : po.rijen) {
        printf("\n");
        for (const std::string& noot : r.noten)
            printf("#. %s\n", noot.c_str());
        printf("#: %s\n", r.plaats.c_str());
        if (r.formaat || r.wazig)
            printf("#%s%s\n", r.wazig ? ", fuzzy" : "", r.formaat ? ", c-format" : "");
        printf("msgctxt %s\nmsgid %s\nmsgstr %s\n", met_escapes(r.sleutel).c_str(),
               met_escapes(r.bron).c_str(), met_escapes(r.vertaald).c_str());
    }
}

} // namespace zg
