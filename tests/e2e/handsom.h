// What an order is worth, worked out from the records of a journal in whole numbers: the sums that a screen shows are
// held against it.
#pragma once
#include "e2e/datamap.h"
#include "order/ioord.h"
#include "term/gesprek.h"

namespace zg::test {

struct Som {
    int64_t stuks = 0, bruto = 0, netto = 0, inkoop = 0;
};
struct Handsom {
    Som order;
    std::vector<Som> regels;
};

// A body of a record, at its tag.
template <class R> R lichaam(const std::string& bytes, size_t tag) {
    R uit{};
    memcpy(&uit, &bytes[tag + 1], sizeof uit);
    return uit;
}
inline size_t volgend_record(const std::string& bytes, size_t p) {
    return p + 1 + static_cast<size_t>(ord_lengte(bytes[p]));
}

// Halves away from 0.
inline int64_t deel_rond(__int128 a, __int128 b) {
    return static_cast<int64_t>((a < 0 ? a - b / 2 : a + b / 2) / b);
}

// The order that begins at `p`. Amounts of its currency have `decimalen`, those at home two; `dagkoers` is the rate of
// the day times 10000, where the order has none.
inline Handsom handsom(const std::string& jrn, size_t p = 0, int decimalen = 2, int64_t dagkoers = 10000) {
    Handsom uit;
    const auto k = lichaam<ordkop>(jrn, p);
    const int64_t koers = k.koers ? k.koers : dagkoers, eenheid = k.koers ? k.koerseenheid : 1;
    std::map<int, Som> stuk; // of the line, by size: what one piece counts
    for (p = volgend_record(jrn, p); p < jrn.size() && jrn[p] != 'O'; p = volgend_record(jrn, p)) {
        if (jrn[p] == 'D') {
            uit.regels.emplace_back();
            stuk.clear();
        } else if (jrn[p] == 'S') {
            const auto s = lichaam<ordmaat>(jrn, p);
            const int64_t netto =
                std::max<int64_t>(deel_rond(__int128{s.netto} * (10000 + k.korting), 10000), 1);
            const int64_t inkoop = std::max<int64_t>(
                deel_rond(__int128{netto} * koers * (k.toeslag ? k.toeslag : 10000) * (decimalen ? 1 : 100),
                          __int128{eenheid} * 100'000'000),
                1);
            stuk[s.maat] = {1, std::max(s.bruto, 1), netto, inkoop};
        } else if (jrn[p] == 'F') {
            const auto f = lichaam<ordfil>(jrn, p);
            for (Som* som : {&uit.order, &uit.regels.back()}) {
                som->stuks += f.aantal;
                som->bruto += f.aantal * stuk[f.maat].bruto;
                som->netto += f.aantal * stuk[f.maat].netto;
                som->inkoop += f.aantal * stuk[f.maat].inkoop;
            }
        }
    }
    return uit;
}

// The sums in the header of the order screen, and what should stand there.
inline std::string kopsom(Terminal& t) {
    return t.stuk(3, 50, 9) + t.stuk(3, 69, 11) + t.stuk(4, 69, 11) + t.stuk(5, 69, 11);
}
inline std::string bedrag(int64_t b, int decimalen, int breedte) {
    const auto heel = static_cast<long>(decimalen ? b / 100 : b), deel = static_cast<long>(b % 100);
    return decimalen ? vorm("%*ld.%02ld", breedte - 3, heel, deel) : vorm("%*ld", breedte, heel);
}
inline std::string kopsom(const Som& s, int decimalen) {
    if (s.stuks == 0)
        return std::string(9 + 3 * 11, ' ');
    return vorm("%9ld", static_cast<long>(s.stuks)) + bedrag(s.bruto, decimalen, 11) +
           bedrag(s.netto, decimalen, 11) + bedrag(s.inkoop, 2, 11);
}

} // namespace zg::test
