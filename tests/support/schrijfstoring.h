// A write that is refused by a full disk, or is the last thing that the process does: SYS.pwrite = stoor after `echt` is
// set, and `over` the writes that go well before it.
#pragma once
#include "shared/syscalls.h"
#include "store/rebuild.h"
#include "support/proces.h"
#include "support/terminal.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <map>

namespace zg::test {

inline decltype(SYS.pwrite) echt;
inline int over;
inline bool doodgaan; // killed, else refused

inline ssize_t stoor(int fd, const void* buf, size_t n, off_t plaats) {
    if (over-- != 0)
        return echt(fd, buf, n, plaats);
    if (doodgaan)
        raise(SIGKILL);
    errno = ENOSPC;
    return -1;
}

// Files as they are now, and back to that.
struct Toestand {
    std::map<std::string, std::string> bestanden;
    explicit Toestand(const std::vector<std::string>& namen) {
        for (const std::string& n : namen)
            bestanden[n] = lees_bestand(n);
    }
    void herstel() const {
        for (const auto& [naam, inhoud] : bestanden)
            schrijf_bestand(naam, inhoud);
    }
};

// A piece of work in a child, with each of its writes (or each `stap`-th) refused in turn, and then killed at each. Every
// round begins with the files as they are now, and they are so in the end; behind each `kijk`, the last time behind one that
// nothing disturbed (`klaar`).
struct Storing {
    bool dood, klaar;
    int status; // what `doe` answered, 0 when it was killed
    std::string uitvoer;
};
inline void bij_elke_schrijf(const std::vector<std::string>& bestanden, int stap,
                             const std::function<int()>& doe,
                             const std::function<void(const Storing&)>& kijk) {
    constexpr int ONGESTOORD = 64;
    const Toestand begin(bestanden);
    for (bool dood : {false, true})
        for (int n = 0, klaar = 0; !klaar; n += stap) {
            SCOPED_TRACE((dood ? "killed at write " : "refused write ") + std::to_string(n));
            ASSERT_LT(n, 1000);
            const Afloop uit = in_proces([&] {
                echt = SYS.pwrite, over = n, doodgaan = dood;
                SYS.pwrite = stoor;
                const int status = doe();
                SYS.pwrite = echt;
                return (over >= 0 ? ONGESTOORD : 0) + status;
            });
            const bool gedood = dood && uit.status == 128 + SIGKILL;
            klaar = !gedood && uit.status >= ONGESTOORD;
            ASSERT_TRUE(klaar || (dood ? gedood : uit.status >= 0)) << uit.status << uit.uitvoer;
            kijk({dood, klaar != 0, gedood ? 0 : uit.status % ONGESTOORD, uit.uitvoer});
            begin.herstel();
        }
}

// A screen with its keys typed ahead (ENTER '\n', ESC '\033', F8 '\001'), killed at each of its writes in turn and refused each:
// what `stand` tells of the files is one of `goed` then, the last of them when nothing was disturbed. A pair is sound behind
// a refused write, and is rebuilt; every round begins with the files as they are now.
inline void bij_elke_schrijfactie(const std::function<void()>& scherm, const std::string& toetsen,
                                  const std::vector<std::string>& paren,
                                  const std::function<std::string()>& stand,
                                  const std::vector<std::string>& goed) {
    std::vector<std::string> bestanden{"DTSYS.TXT"};
    for (const std::string& p : paren)
        bestanden.insert(bestanden.end(), {p + ".INX", p + ".TXT"});
    const Toestand begin(bestanden);
    ASSERT_EQ(stand(), goed.front());
    int gestoord = 0;
    for (bool dood : {true, false})
        for (int n = 0, status = 1; status != 0; n++) {
            SCOPED_TRACE((dood ? "killed at write " : "refused write ") + std::to_string(n));
            ASSERT_LT(n, 60);
            Terminal t([&] {
                SCRINIT();
                for (size_t i = toetsen.size(); i-- > 0;)
                    TOETSTERUG(toetsen[i] == '\001' ? int32_t{K_F8} : toetsen[i]);
                echt = SYS.pwrite, over = n, doodgaan = dood;
                SYS.pwrite = stoor;
                scherm();
                SCREXIT();
                return over < 0 ? 7 : 0;
            });
            EXPECT_TRUE(t.kalm() || !t.leeft()) << "neither told nor done";
            if (t.leeft())
                t.sein(SIGKILL);
            status = t.einde();
            gestoord += status != 0;
            for (const std::string& p : paren) {
                std::vector<std::string> gewist; // what was reserved
                EXPECT_TRUE(dood || IXCHECK(p.c_str()) >= 0) << p;
                EXPECT_EQ(IXBLDIX(p.c_str(), &gewist), 1) << p;
            }
            const std::string nu = stand();
            EXPECT_TRUE(status == 0 ? nu == goed.back()
                                    : std::find(goed.begin(), goed.end(), nu) != goed.end())
                << status << " " << nu;
            begin.herstel();
        }
    EXPECT_GE(gestoord, 2);
}

} // namespace zg::test
