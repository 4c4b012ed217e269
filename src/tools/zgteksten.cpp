// zgteksten: the texts of the program as a translator's source file for gencat, and a check of the tables: no
// number given out twice with different texts. usage: zgteksten ZEBCAT|DETAIL, zgteksten --check
#include "term/tekst.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace zg;

struct Rij {
    Tekst tekst;
    const char* naam;
};

const Rij RIJEN[] = {
#define TEKST(catalogus, set, nummer, naam, standaard) {{catalogus, set, nummer, standaard}, #naam},
#include "tables/teksten_alle.def"
#undef TEKST
};

std::vector<Rij> tabel(Catalogus catalogus) {
    std::vector<Rij> rijen;
    for (const Rij& r : RIJEN)
        if (r.tekst.catalogus == catalogus && r.tekst.nummer != 0)
            rijen.push_back(r);
    std::stable_sort(rijen.begin(), rijen.end(), [](const Rij& a, const Rij& b) {
        return std::pair(a.tekst.set, a.tekst.nummer) < std::pair(b.tekst.set, b.tekst.nummer);
    });
    return rijen;
}

int controleer() {
    int fout = 0;
    for (Catalogus c : {ZEBCAT, DETAIL}) {
        std::vector<Rij> rijen = tabel(c);
        for (size_t i = 1; i < rijen.size(); i++) {
            const Rij &a = rijen[i - 1], &b = rijen[i];
            if (a.tekst.set == b.tekst.set && a.tekst.nummer == b.tekst.nummer &&
                strcmp(a.tekst.standaard, b.tekst.standaard) != 0) {
                fprintf(stderr, "%d.%d: %s \"%s\" and %s \"%s\"\n", a.tekst.set, a.tekst.nummer, a.naam,
                        a.tekst.standaard, b.naam, b.tekst.standaard);
                fout = 1;
            }
        }
    }
    return fout;
}

void schrijf(Catalogus catalogus) {
    printf("$ codeset=IBM850\n$quote \"\n");
    int set = 0, nummer = 0;
    for (const Rij& r : tabel(catalogus)) {
        if (r.tekst.set == set && r.tekst.nummer == nummer)
            continue;
        if (r.tekst.set != set)
            printf("$set %d\n", r.tekst.set);
        set = r.tekst.set, nummer = r.tekst.nummer;
        std::string tekst;
        for (const char* p = r.tekst.standaard; *p; p++) {
            if (*p == '\n')
                tekst += "\\n";
            else if (*p == '"' || *p == '\\')
                tekst += std::string("\\") + *p;
            else
                tekst += *p;
        }
        printf("%d \"%s\"\n", nummer, tekst.c_str());
    }
}

} // namespace

int main(int argc, char** argv) {
    std::string wat = argc == 2 ? argv[1] : "";
    if (wat == "--check")
        return controleer();
    if (wat != "ZEBCAT" && wat != "DETAIL") {
        fprintf(stderr, "usage: zgteksten ZEBCAT|DETAIL, or zgteksten --check\n");
        return 2;
    }
    schrijf(wat == "ZEBCAT" ? ZEBCAT : DETAIL);
    if (fflush(stdout) != 0 || ferror(stdout)) {
        fprintf(stderr, "zgteksten: standard output: write failed\n");
        return 1;
    }
    return 0;
}
