// Pictures of the demo firm's series: grey cards in the directories of their brands, named by the series; every third is
// linked. Two more wait to be read in.
#include "shared/syscalls.h"
#include "sub/afb_hdl.h"
#include "sub/omserie.h"
#include "tools/demotekst.h"
#include <array>
#include <cerrno>
#include <cstring>

namespace zg {
namespace {

constexpr uint8_t ZIJDE = 16;
constexpr size_t KOP = 128, RIJBYTES = ZIJDE / 8;

// A PCX of one plane and one bit a point.
using Kaart = std::array<uint8_t, KOP + RIJBYTES * ZIJDE>;
Kaart kaart() {
    Kaart uit{};
    uit[0] = 10, uit[1] = 5, uit[2] = 1, uit[3] = 1; // maker, version, run lengths, bits a point
    uit[8] = uit[10] = ZIJDE - 1;                    // last column and row
    uit[12] = uit[14] = 72;                          // points an inch
    uit[65] = 1, uit[66] = RIJBYTES, uit[68] = 1;    // planes, bytes a row, colours
    for (size_t i = KOP; i < uit.size(); i++)
        uit[i] = i / RIJBYTES % 2 ? 0x55 : 0x2A; // below 0xC0: a byte stands for itself
    return uit;
}

void map(const std::string& pad) {
    const std::string kaal = pad.substr(0, pad.size() - 1);
    if (!SYSNIEUWEMAP(kaal.c_str()) && errno != EEXIST)
        demofout(kaal + ": " + strerror(errno));
}

} // namespace

void demo_afbeeldingen() {
    if (!afb_in_gebruik())
        return;
    const Kaart beeld = kaart();
    const std::string nieuw = afb_nieuw_map();
    map(nieuw.substr(0, nieuw.size() - strlen("nieuw/")));
    map(nieuw);
    for (const char* naam : {"ZOMER.PCX", "ACHTERKANT.PCX"})
        demobestand(nieuw + naam, beeld.data(), beeld.size());
    uint8_t rec[IXRECMAX] = {};
    int nr = 0;
    for (int er = IXFIRST(dtser, rec); er; er = IXNEXT(dtser, rec), nr++) {
        serrec serie;
        stam_uit(rec, dtser->h.reclen, &serie);
        const std::string van = afb_map(serie.merk), naam = serie_tekst(serie.serie) + ".PCX";
        map(van);
        demobestand(van + naam, beeld.data(), beeld.size());
        if (nr % 3 == 0 && !afb_schrijf(serie.serie, naam, serie.merk))
            demofout("a picture of the demo data can't be linked");
    }
}

} // namespace zg
