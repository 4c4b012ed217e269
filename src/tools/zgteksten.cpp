// zgteksten: the texts of the program for translators, and what gencat makes catalogues of.
//   zgteksten ZEBCAT|DETAIL [FILE]  a catalogue's source for gencat: the defaults, or the translations of FILE
//   zgteksten --po [FILE]           all texts as a translator's file, with what FILE has translated already
//   zgteksten --check [FILE]        no number given out twice with different texts; does FILE fit?
#include "term/natl.h"
#include "tools/pobestand.h"
#include "tools/taaltabel.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>

namespace {

using namespace zg;

// One catalogue's texts by number.
std::vector<Tekstrij> tabel(Catalogus catalogus) {
    std::vector<Tekstrij> rijen;
    for (const Tekstrij& r : TEKSTRIJEN)
        if (r.tekst.catalogus == catalogus)
            rijen.push_back(r);
    std::stable_sort(rijen.begin(), rijen.end(), [](const Tekstrij& a, const Tekstrij& b) {
        return std::pair(a.tekst.set, a.tekst.nummer) < std::pair(b.tekst.set, b.tekst.nummer);
    });
    return rijen;
}

int controleer(const Pobestand* po) {
    int fout = 0;
    for (Catalogus c : {ZEBCAT, DETAIL}) {
        std::vector<Tekstrij> rijen = tabel(c);
        for (size_t i = 1; i < rijen.size(); i++) {
            const Tekstrij &a = rijen[i - 1], &b = rijen[i];
            if (a.tekst.set == b.tekst.set && a.tekst.nummer == b.tekst.nummer &&
                strcmp(a.tekst.standaard, b.tekst.standaard) != 0) {
                fprintf(stderr, "%d.%d: %s \"%s\" and %s \"%s\"\n", a.tekst.set, a.tekst.nummer, a.naam,
                        a.tekst.standaard, b.naam, b.tekst.standaard);
                fout = 1;
            }
        }
    }
    return (po && taal_keur(*po) > 0) || fout;
}

// By msgctxt; what is fuzzy or of an older text is left out, and the default stands there.
std::map<std::string, const Porij*> vertalingen(const Pobestand* po) {
    std::map<std::string, const Porij*> uit;
    if (po)
        for (const Porij& r : po->rijen)
            uit.emplace(r.sleutel, &r);
    return uit;
}

void schrijf(Catalogus catalogus, const Pobestand* po) {
    const auto vertaald = vertalingen(po);
    printf("$ codeset=IBM850\n$quote \"\n");
    int set = 0, nummer = 0;
    for (const Tekstrij& r : tabel(catalogus)) {
        if (r.tekst.set == set && r.tekst.nummer == nummer)
            continue;
        if (r.tekst.set != set)
            printf("$set %d\n", r.tekst.set);
        set = r.tekst.set, nummer = r.tekst.nummer;
        std::string tekst = r.tekst.standaard;
        if (const auto v = vertaald.find(tekst_sleutel(r.tekst)); v != vertaald.end() && !v->second->wazig &&
                                                                  v->second->bron == CP850UTF8(tekst) &&
                                                                  !v->second->vertaald.empty())
            CP850NAAR(v->second->vertaald, &tekst);
        printf("%d \"", nummer);
        for (const char c : tekst)
            c == '\n' ? printf("\\n") : printf(c == '"' || c == '\\' ? "\\%c" : "%c", c);
        printf("\"\n");
    }
}

// Every text once, with its names, where it stands and the room it has there.
void vertaalbestand(const Pobestand* oud) {
    const auto vertaald = vertalingen(oud);
    Pobestand uit;
    uit.kop = oud ? oud->kop
                  : "Project-Id-Version: zgbestel\nLanguage: \nMIME-Version: 1.0\n"
                    "Content-Type: text/plain; charset=UTF-8\nContent-Transfer-Encoding: 8bit\n";
    std::map<std::string, size_t> plek;
    for (const Tekstrij& r : TEKSTRIJEN) {
        const auto [al, nieuw] = plek.emplace(tekst_sleutel(r.tekst), uit.rijen.size());
        const Tekstplaats* p = tekst_plaats(r);
        std::string noot = std::string(r.naam) + ": " + (p ? std::string(p->waar) + ", " : "") +
                           std::to_string(tekst_ruimte(r)) + " columns";
        if (!nieuw) {
            uit.rijen[al->second].noten.push_back(noot);
            continue;
        }
        Porij rij;
        rij.sleutel = tekst_sleutel(r.tekst);
        rij.bron = CP850UTF8(r.tekst.standaard);
        rij.plaats = r.map;
        rij.noten = {noot};
        rij.formaat = strchr(r.tekst.standaard, '%');
        if (const auto v = vertaald.find(rij.sleutel); v != vertaald.end()) {
            rij.vertaald = v->second->vertaald;
            rij.wazig = v->second->wazig || v->second->bron != rij.bron;
        }
        uit.rijen.push_back(rij);
    }
    po_schrijf(uit);
}

} // namespace

int main(int argc, char** argv) {
    const std::string wat = argc >= 2 ? argv[1] : "";
    Pobestand po;
    std::string fout;
    if (argc == 3 && !po_lees(argv[2], &po, &fout)) {
        fprintf(stderr, "zgteksten: %s\n", fout.c_str());
        return 1;
    }
    const Pobestand* vertaling = argc == 3 ? &po : nullptr;
    if (argc <= 3 && wat == "--check")
        return controleer(vertaling);
    if (argc <= 3 && wat == "--po") {
        vertaalbestand(vertaling);
    } else if (argc <= 3 && (wat == "ZEBCAT" || wat == "DETAIL")) {
        schrijf(wat == "ZEBCAT" ? ZEBCAT : DETAIL, vertaling);
    } else {
        fprintf(stderr, "usage: zgteksten ZEBCAT|DETAIL|--po|--check [FILE]\n");
        return 2;
    }
    if (fflush(stdout) != 0 || ferror(stdout)) {
        fprintf(stderr, "zgteksten: standard output: write failed\n");
        return 1;
    }
    return 0;
}
