// A conversation for the tests of prompts, lists and menus: a function runs on a screen of its own, and what
// it answers stands on row 24 as "= answer" once it is done.
#pragma once
#include "support/proef.h"
#include "term/ingave.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <cstdarg>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace zg::test {

inline std::string vorm(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
inline std::string vorm(const char* fmt, ...) {
    char buf[512];
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(buf, sizeof buf, fmt, ap);
    va_end(ap);
    return buf;
}

inline int gesprek(const std::function<std::string()>& kind) {
    SCRINIT();
    {
        std::string uit = kind();
        SCRBASE(A_WAARDE, SCHERM.lines - 1, 1, "= %-78s", uit.c_str());
    }
    int lek = 0;
#if defined(__SANITIZE_ADDRESS__)
    lek = __lsan_do_recoverable_leak_check();
#endif
    TOETSRAW(WINNU());
    SCREXIT();
    return lek ? 99 : 0;
}

class Gesprek : public Terminal {
public:
    // Returns when the function waits for a key, or at once when it is one that doesn't.
    explicit Gesprek(const std::function<std::string()>& kind, const Opties& o = {},
                     bool wacht_op_toets = true)
        : Terminal([kind] { return gesprek(kind); }, o), lines_(o.rijen) {
        if (wacht_op_toets)
            kalm();
    }
    // The answer, once the function is done, behind these keys; then the program ends well.
    std::string antwoord(std::string_view reeks = "") {
        if (!reeks.empty())
            toetsen(reeks);
        EXPECT_TRUE(wacht("\n= "));
        std::string s = regel(lines_ - 1);
        stuur("\r");
        EXPECT_EQ(einde(), 0);
        return s.size() < 2 ? "" : s.substr(2);
    }

private:
    int lines_;
};

// A child that opens the screen, does its work, waits for a key and closes.
inline std::function<int()> op_scherm(const std::function<void()>& werk) {
    return [werk] {
        SCRINIT();
        werk();
        TOETS();
        SCREXIT();
        return 0;
    };
}

// One conversation for each row: what it is about, the keys, and the answer.
template <class W>
void gesprekken_over(const std::function<std::string(const W&)>& kind,
                     std::initializer_list<std::tuple<W, const char*, const char*>> rijen) {
    for (const auto& [wat, toetsen, uit] : rijen) {
        SCOPED_TRACE(toetsen);
        Gesprek t([&] { return kind(wat); });
        EXPECT_EQ(t.antwoord(toetsen), uit);
    }
}
inline void gesprekken(const std::function<std::string()>& kind,
                       std::initializer_list<std::pair<const char*, const char*>> rijen) {
    for (const auto& [toetsen, uit] : rijen)
        gesprekken_over<int>([&](int) { return kind(); }, {{0, toetsen, uit}});
}
// Keys one after the other and what must be seen behind each, and the answer.
inline void gesprek_met(const std::function<std::string()>& kind,
                        std::initializer_list<std::pair<const char*, const char*>> stappen, const char* uit) {
    Gesprek t(kind);
    for (const auto& [toetsen, ziet] : stappen)
        EXPECT_TRUE(t.toetsen(toetsen, ziet)) << toetsen;
    EXPECT_EQ(t.antwoord(), uit) << t.scherm();
}

// That child, seen from the moment that it waits.
class OpScherm : public Terminal {
public:
    explicit OpScherm(const std::function<void()>& werk, const Opties& o = {})
        : Terminal(op_scherm(werk), o) {
        kalm();
    }
};

// Keys, and then what must stand where.
struct Kijk {
    int rij, kolom;
    std::string tekst;
};
inline void stappen(Terminal& t, std::initializer_list<std::pair<const char*, std::vector<Kijk>>> lijst) {
    for (const auto& [toetsen, beeld] : lijst) {
        t.toetsen(toetsen);
        for (const Kijk& k : beeld)
            t.wacht_op(k.rij, k.kolom, k.tekst);
    }
}

struct Doos {
    int rij = 0, kolom = 0, hoogte = 0, breedte = 0;
    bool operator==(const Doos&) const = default;
};
inline std::ostream& operator<<(std::ostream& o, const Doos& d) {
    return o << "row " << d.rij << " col " << d.kolom << ", " << d.hoogte << " x " << d.breedte;
}

// The box whose upper left corner is the first on the screen, in reading order, from a row on.
inline Doos doos(Terminal& t, int vanaf = 1) {
    for (int r = vanaf; r <= 43; r++)
        for (int k = 1; k <= 80; k++) {
            if (t.cel(r, k).teken != "┌")
                continue;
            Doos d{r, k, 1, 1};
            while (k + d.breedte <= 80 && t.cel(r, k + d.breedte - 1).teken != "┐")
                d.breedte++;
            while (r + d.hoogte <= 43 && t.cel(r + d.hoogte - 1, k).teken != "└")
                d.hoogte++;
            return d;
        }
    return {};
}

} // namespace zg::test
