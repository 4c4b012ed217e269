// A journal made without the program, for the benchmarks of opening and committing.
#pragma once
#include "order/programma.h"
#include "support/systeem.h"
#include <string>

namespace meting {

using namespace zg;

// A journal of about `bytes` with an order of `regels` lines in its middle.
inline void maak_journaal(const char* pad, size_t bytes, int regels) {
    std::string uit;
    auto schrijf = [&](char tag, const auto& rec) {
        uit += tag;
        uit.append(reinterpret_cast<const char*>(&rec), sizeof rec);
    };
    auto order = [&](int aantal) {
        ordkop k{};
        k.leverancier = 12, k.jaar = 2016, k.seizoen = 'Z', k.orderdatum = 42000, k.koers = 10000,
        k.koerseenheid = 1, k.toeslag = 10000;
        schrijf('O', k);
        ordmodel m{};
        m.merk = 103, m.maatsoort = 1, m.artikelgroep = 2100;
        schrijf('M', m);
        for (int r = 0; r < aantal; r++) {
            orddessin d{};
            d.kleur = 14, d.volgnummer = 1, d.maten[0] = 0x7E;
            schrijf('D', d);
            for (uint8_t s = 1; s <= 6; s++)
                schrijf('S', ordmaat{s, {}, 1000, 950});
            schrijf('L', ordlevt{42050, 42080});
            for (uint8_t f = 0; f < 5; f++)
                for (uint8_t s = 1; s <= 6; s++)
                    schrijf('F', ordfil{f, s, 0, 3});
        }
    };
    while (uit.size() < bytes / 2)
        order(20);
    order(regels);
    while (uit.size() < bytes)
        order(20);
    zg::test::schrijf_bestand(pad, uit);
}

} // namespace meting
