// A program with macros, for a user: its own screen, and what it does with keys.
#pragma once
#include "store/diepcheck.h"
#include "store/rebuild.h"
#include "term/macro/macro.h"
#include "term/toetslog.h"

namespace zg::test {

inline constexpr char F2[] = "\033OQ";

inline std::function<int()> speler(uint16_t gebruiker, std::function<void()> wat = toon_toetsen) {
    return [=] {
        MACROBEGIN();
        SCRINIT();
        MACROGEBRUIKER(gebruiker);
        MACROAAN();
        wat();
        SCREXIT();
        return 0;
    };
}

// What the keys gave, on the first row of a program that shows their codes until q.
inline std::string codes_na(Terminal& t, const std::string& getypt) {
    t.kalm();
    t.stuur(getypt);
    t.kalm();
    const std::string uit = t.regel(1);
    t.stuur("q");
    EXPECT_EQ(t.einde(), 0) << t.scherm();
    return uit;
}

inline mac_rec macro(char toets, uint16_t gebruiker, std::initializer_list<int> codes,
                     const char* tekst = "") {
    mac_rec r{};
    r.toets = static_cast<uint8_t>(toets);
    r.gebruiker = gebruiker;
    for (int c : codes)
        r.toetsen[r.aantal++] = static_cast<uint16_t>(c);
    VASTIN(r.omschrijving, tekst);
    return r;
}

inline mac_rec vol_macro(char toets) {
    mac_rec r = macro(toets, 7, {});
    for (; r.aantal < MACROTOETSEN; r.aantal++)
        r.toetsen[r.aantal] = 'x';
    return r;
}

inline std::string bytes(const mac_rec& r) {
    return std::string(reinterpret_cast<const char*>(&r), sizeof r);
}

} // namespace zg::test
