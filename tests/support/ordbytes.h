// The bytes of order records, built apart from the code under test.
#pragma once
#include "order/ordrec.h"
#include <cstring>
#include <string>

namespace zg::test {

template <class R> std::string record(char tag, const R& lichaam) {
    return tag + std::string(reinterpret_cast<const char*>(&lichaam), sizeof lichaam);
}

// One text: its pieces, or all five of them as in a work file.
inline std::string tekst(uint8_t soort, const std::string& t, bool alle = false) {
    std::string uit;
    for (size_t i = 0; i < 5; i++) {
        ordtekst r{};
        r.soort = soort;
        const std::string stuk = i * 60 < t.size() ? t.substr(i * 60, 60) : "";
        memcpy(r.tekst, stuk.data(), stuk.size());
        if (alle || !stuk.empty())
            uit += record('T', r);
    }
    return uit;
}

// A header of supplier 12, summer 2016, in the firm's own currency.
inline ordkop kop_op(int datum) {
    ordkop k{};
    k.leverancier = 12;
    k.jaar = 2016;
    k.orderdatum = static_cast<uint16_t>(datum);
    k.seizoen = 'Z';
    k.koers = 10000;
    k.koerseenheid = 1;
    return k;
}

} // namespace zg::test
