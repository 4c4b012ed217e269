// The table of macros: its place, what a record may hold, and the few things that are done with it. See the header.
#include "term/macro/macrobestand.h"
#include "store/tabel.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace zg {
namespace {

constexpr size_t MAPMAX = 63;
constexpr int32_t CODEMAX = 511; // of the screen's keys

void definieer(ICB* icb) {
    IXUPDFCB(icb, 0, "mac_rec,236");
    IXUPDFCB(icb, 1, "key_1,I,1,2,I,3,4");
}

// Is key 1 what it is in our own? A pair of another kind would give wrong records.
bool onze_sleutel(const ICB* icb) {
    const IXKEYDEF& k = icb->h.keydef[0];
    return icb->h.nkeys >= 1 && memcmp(k.ptype, "II", 3) == 0 && k.pstart[0] == 1 && k.pend[0] == 2 &&
           k.pstart[1] == 3 && k.pend[1] == 4;
}

ICB* open_macro() {
    const std::string pad = MACROPAD();
    ICB* icb = pad.empty() ? nullptr : IXEIGENOF(pad.c_str(), 2, int{sizeof(mac_rec)}, definieer, nullptr);
    if (!icb || onze_sleutel(icb))
        return icb;
    IXCLOSE(icb);
    errno = EINVAL;
    return nullptr;
}

// A record as the store reads and writes it.
struct Buffer {
    uint8_t bytes[IXRECMAX] = {};
    explicit Buffer(const mac_rec& rec) { memcpy(bytes, &rec, sizeof rec); }
    mac_rec rec() const {
        mac_rec uit;
        memcpy(&uit, bytes, sizeof uit);
        return uit;
    }
};

Buffer met_sleutel(uint16_t toets, uint16_t gebruiker) {
    mac_rec rec{};
    rec.toets = toets;
    rec.gebruiker = gebruiker;
    return Buffer(rec);
}

} // namespace

uint16_t MACROTOETS(int32_t toets) {
    if (toets < 0 || toets > 255)
        return 0;
    const auto c = static_cast<uint8_t>(toets);
    if (!(NKLASSE[c] & (N_GROOT | N_KLEIN | N_CIJFER)))
        return 0;
    return c < 128 ? NKLEIN(c) : c;
}

bool MACROCODE(int32_t code) {
    return code >= 1 && code <= CODEMAX && code != 256 && code != K_F2 && code != K_CANCEL &&
           code != K_EXIT && code != K_RESIZE;
}

bool MACROGAAF(const mac_rec& rec) {
    if (rec.toets == 0 || MACROTOETS(rec.toets) != rec.toets || rec.aantal < 1 || rec.aantal > MACROTOETSEN)
        return false;
    for (int i = 0; i < rec.aantal; i++)
        if (!MACROCODE(rec.toetsen[i]))
            return false;
    return true;
}

std::string MACROOMSCHRIJVING(const mac_rec& rec) {
    return std::string(VASTUIT(rec.omschrijving));
}

std::string MACROPAD() {
    const char* map = getenv("MACRO");
    if (!map || !*map)
        return "MACRO";
    std::string pad = map;
    if (pad.size() > MAPMAX) {
        errno = ENAMETOOLONG;
        return "";
    }
    return pad + (pad.back() == '/' ? "" : "/") + "MACRO";
}

int MACROLEES(uint16_t gebruiker, std::vector<mac_rec>* uit) {
    uit->clear();
    ICB* icb = open_macro();
    if (!icb)
        return -1;
    Buffer b{mac_rec{}};
    for (int er = IXFIRST(icb, b.bytes); er; er = IXNEXT(icb, b.bytes))
        if (const mac_rec rec = b.rec(); gebruiker == 0 || rec.gebruiker == gebruiker)
            uit->push_back(rec);
    IXCLOSE(icb);
    return 1;
}

int MACROZOEK(uint16_t toets, uint16_t gebruiker, mac_rec* uit) {
    ICB* icb = open_macro();
    if (!icb)
        return -1;
    Buffer b = met_sleutel(toets, gebruiker);
    const int er = IXREAD(icb, b.bytes);
    if (er)
        *uit = b.rec();
    IXCLOSE(icb);
    return er;
}

// Without a reservation first: one that a kill left behind would keep the key from its user for good.
int MACROSCHRIJF(const mac_rec& rec) {
    ICB* icb = open_macro();
    if (!icb)
        return -1;
    const int goed = IXWRITE(icb, Buffer(rec).bytes);
    IXCLOSE(icb);
    return goed;
}

int MACROWEG(uint16_t toets, uint16_t gebruiker) {
    ICB* icb = open_macro();
    if (!icb)
        return -1;
    Buffer b = met_sleutel(toets, gebruiker);
    const int weg = IXREAD(icb, b.bytes) && IXDELETE(icb, b.bytes) == 0;
    IXCLOSE(icb);
    return weg;
}

} // namespace zg
