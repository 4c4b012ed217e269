// The sums of a series' labels, kept for the rows and totals of the order on the screen: a repaint behind each action would
// read all labels of fourteen lines again. They hold while the record of the series, which every program writes behind a
// change of its labels, and the label that tells the rate, which a change of prices reaches, stand as they did. What this
// program changes goes through etiketwijziging, which forgets them.
#include "order/etiketloop.h"
#include "order/register.h"
#include <array>
#include <cstring>
#include <map>

namespace zg {

namespace {

struct Gekend {
    serrec serie; // as it stood
    labelsom som;
    int32_t koers; // number of som.koers

    bool geldt(const serrec& nu) const {
        int32_t nummer = koers;
        etiket label{};
        return !memcmp(&serie, &nu, sizeof serie) &&
               (!som.koers.status ||
                (ioeti('R', &nummer, &label) && !memcmp(&label, &som.koers, sizeof label)));
    }
};
using Plaats = std::array<uint8_t, sizeof(seriesleutel)>;
std::map<Plaats, Gekend> gekend;

// The order that they are of.
struct {
    uint16_t leverancier, orderdatum;
    int32_t ordernummer;
} van;

Plaats plaats(const seriesleutel& serie) {
    Plaats uit;
    memcpy(uit.data(), &serie, sizeof serie);
    return uit;
}

void alleen_van_deze_order() {
    if (van.leverancier == kop.leverancier && van.orderdatum == kop.orderdatum &&
        van.ordernummer == kop.ordernummer)
        return;
    gekend.clear();
    van = {kop.leverancier, kop.orderdatum, kop.ordernummer};
}

} // namespace

bool labels_som(const serrec& serie, labelsom* som) {
    alleen_van_deze_order();
    const Plaats waar = plaats(serie.serie);
    if (const auto er = gekend.find(waar); er != gekend.end() && er->second.geldt(serie)) {
        *som = er->second.som;
        return true;
    }
    gekend.erase(waar);
    *som = {};
    genummerd koers;
    if (!etiketten_order(serie, &koers, [som](const etiket& l) { som->besteld[l.maat]++; }))
        return false;
    som->koers = koers.label;
    gekend[waar] = {serie, *som, koers.nummer};
    return true;
}

void labels_som_vergeet(const seriesleutel& serie) {
    gekend.erase(plaats(serie));
}

} // namespace zg
