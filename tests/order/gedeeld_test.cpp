// The journal on a shared file system, where a lock can go without its holder's doing: at each name that is about to be
// made, replaced or taken away the session finds that it has lost the journal, to another or to the connection, and leaves
// all names alone from there. And reads that fail: they are no reason to drop anybody's changes.
#include "bouw.h"
#include <climits>

namespace zg::test {
namespace {

using Gedeeld = InOrderMap;

const std::vector<Order> TWEE = {maak_order(1, {2, 1}), maak_order(2, {1, 2})};

// Set in a child, in front of the work. A look is the question for the journal's lock.
struct Wacht {
    int kijken = 0, bij = INT_MAX;    // looks so far; the one at which it happens
    int namen = 0, in_naam = INT_MAX; // names so far; the one in which it happens instead
    int fout = 0; // what the lock answers from then on; 0: another session has taken the names over
    bool gebeurd = false;
    int sinds = -1, blind = 0,
        erna = 0; // look of the last name; names without one; names behind what happened
} wacht;

bool van_de_order(const char* naam) {
    const char* punt = strrchr(naam, '.');
    return punt && strstr(".JRN .WRK .TMP .ORS .ACT", punt);
}

// False with errno where the call fails.
bool naam(const char* pad) {
    if (!van_de_order(pad))
        return true;
    wacht.blind += wacht.sinds == wacht.kijken;
    wacht.erna += wacht.gebeurd;
    wacht.sinds = wacht.kijken;
    if (wacht.namen++ != wacht.in_naam)
        return true;
    wacht.gebeurd = true;
    errno = wacht.fout;
    return false;
}

// As another host leaves them that repaired the order and went to work on it.
void van_een_ander() {
    for (const char* ext : {"JRN", "WRK", "TMP", "ORS", "ACT"}) {
        ::unlink(pad(ext).c_str());
        zet(ext, strcmp(ext, "JRN") == 0 ? bytes(TWEE).substr(0, bytes(TWEE[0]).size())
                                         : std::string("its ") + ext);
    }
}

void let_op(int bij, int fout, int in_naam = INT_MAX) {
    wacht = {};
    wacht.bij = bij, wacht.fout = fout, wacht.in_naam = in_naam;
    setenv("ZGGEDEELD", "1", 1);
    SYS.slot = [](int fd, int opdracht, struct flock* s) {
        if (opdracht == F_SETLK && s->l_type == F_WRLCK && journaal && fd == journaal->fd) {
            if (wacht.kijken++ == wacht.bij)
                wacht.gebeurd = true, wacht.fout ? void() : van_een_ander();
            if (wacht.gebeurd && wacht.fout)
                return errno = wacht.fout, -1;
        }
        return fcntl(fd, opdracht, s);
    };
    SYS.open = [](const char* p, int vlaggen, mode_t mode) {
        return (vlaggen & O_TRUNC) && !(vlaggen & O_EXCL) && !naam(p) ? -1 : ::open(p, vlaggen, mode);
    };
    SYS.unlink = [](const char* p) { return naam(p) ? ::unlink(p) : -1; };
    SYS.rename = [](const char* van, const char* naar) { return naam(van) ? ::rename(van, naar) : -1; };
}

// Exit status of a child: 0 done, 8 the journal was found to be lost; 32 added when a name was touched without a look or
// behind what happened, 64 when nothing happened.
int uitslag(bool verloren) {
    return (verloren ? 8 : 0) + (wacht.blind || wacht.erna ? 32 : 0) + (wacht.gebeurd ? 0 : 64);
}

int bewerk() {
    bool verloren = false;
    const auto nog = [&] { return !(verloren = wrk_verloren()); };
    if (kies(1)) {
        char blok[BLOKLEN] = "gewijzigd", leeg[BLOKLEN] = "";
        kop.korting = -250;
        ord_kop_schrijf(werk, blok, leeg);
        ors_ingang cursor = regel_op(1);
        neem_regel(Model{9, "m", {}}, maak_regel(70));
        if (nog() && wrk_regel_in(&cursor, true, &regel_nu) && nog())
            wrk_regel_vervang(&cursor, &regel_nu);
        if (nog())
            wrk_regel_uit(&cursor);
        nog();
        wrk_sluit();
    }
    verloren = verloren || wrk_verloren();
    ord_sluit_jrn(journaal);
    journaal = nullptr;
    return uitslag(verloren);
}

int maak_leeg() {
    bool verloren = !kies(0);
    for (ors_ingang cursor = regel_op(1); !verloren && cursor.regel; verloren = wrk_verloren())
        wrk_regel_uit(&cursor);
    if (werk)
        wrk_sluit();
    verloren = verloren || wrk_verloren() || SYSOMVANG(journaal->fd) == 0; // found when it is closed
    ord_sluit_jrn(journaal);
    journaal = nullptr;
    return uitslag(verloren);
}

int herstel() {
    const int uit = herstart();
    return uitslag(uit != 1);
}

const struct {
    const char* wat;
    int (*werk)();
    bool een_order, wrk; // the journal has one; a work file was left behind
} WERKEN[] = {{"opened, changed, committed", bewerk, false, false},
              {"emptied", maak_leeg, true, false},
              {"repaired", herstel, false, true}};

// A program killed in front of its commit.
void laat_wrk() {
    in_kind([] {
        kies(1);
        char blok[BLOKLEN] = "hersteld", leeg[BLOKLEN] = "";
        ord_kop_schrijf(werk, blok, leeg);
        _exit(0);
        return 0;
    });
}

TEST_F(Gedeeld, slot_kwijt_bij_elke_naam) {
    for (const auto& w : WERKEN) {
        const auto begin = [&] {
            for (const char* ext : {"WRK", "TMP", "ORS", "ACT"})
                ::unlink(pad(ext).c_str());
            const std::vector<Order> orders(TWEE.begin(), TWEE.end() - (w.een_order ? 1 : 0));
            zet("JRN", bytes(orders));
            if (w.wrk)
                laat_wrk();
        };
        begin();
        const std::string voor = inhoud("JRN");
        std::string na;
        ASSERT_EQ(in_kind([&] { return let_op(INT_MAX, 0), w.werk(); }) & ~8, 64) << w.wat;
        na = inhoud("JRN");
        int gezien = 0;
        for (int fout : {0, EAGAIN, ENOLCK, ESTALE, ENOTCONN, EBADFD})
            for (int n = 0;; n++) {
                SCOPED_TRACE(std::string(w.wat) + ", look " + std::to_string(n) + ", errno " +
                             std::to_string(fout));
                ASSERT_LT(n, 100);
                begin();
                std::string gezegd;
                const int status = in_kind([&] { return let_op(n, fout), w.werk(); }, &gezegd);
                if (status >= 64 && status < 128) // it came to its end first
                    break;
                gezien++;
                // A report, or back to the season; a repair that had the journal whole says that too.
                EXPECT_TRUE(status == 1 || status == 8 || (w.wrk && status == 0)) << status << gezegd;
                const bool bij_sluiten = w.een_order && n > 0 && gezegd.empty();
                EXPECT_TRUE(bij_sluiten ||
                            gezegd.find(fout == 0 || fout == EAGAIN ? "slot verloren"
                                        : fout == ENOLCK            ? "sloten"
                                                         : "verbinding verbroken") != std::string::npos ||
                            gezegd.find("vergrendeld") != std::string::npos)
                    << gezegd;
                if (fout == 0) {
                    for (const char* ext : {"WRK", "TMP", "ORS", "ACT"})
                        EXPECT_EQ(inhoud(ext), std::string("its ") + ext);
                    EXPECT_EQ(inhoud("JRN"), bytes(TWEE[0]));
                } else {
                    const std::string nu = inhoud("JRN");
                    EXPECT_TRUE(nu == voor || nu == na || kwalen("JRN", ORD_JOURNAAL).empty());
                    EXPECT_TRUE(nu == voor || nu == na || w.werk == bewerk);
                }
            }
        EXPECT_GE(gezien, w.wrk ? 30 : 60) << w.wat;
        // The connection breaks in the call by name itself: told too, down to the last, and the journal is whole.
        for (int n = 0;; n++) {
            SCOPED_TRACE(std::string(w.wat) + ", name " + std::to_string(n));
            ASSERT_LT(n, 100);
            begin();
            std::string gezegd;
            const int status = in_kind([&] { return let_op(INT_MAX, ENOTCONN, n), w.werk(); }, &gezegd);
            if (status >= 64 && status < 128)
                break;
            EXPECT_TRUE(status == 8 || (w.wrk && status == 0)) << status << gezegd;
            EXPECT_TRUE(gezegd.find("verbinding verbroken") != std::string::npos ||
                        (w.een_order && inhoud("JRN").empty()))
                << gezegd;
            EXPECT_TRUE(inhoud("JRN") == voor || inhoud("JRN") == na || w.werk == bewerk);
        }
    }
    for (const char* ext : {"WRK", "TMP", "ORS", "ACT"})
        ::unlink(pad(ext).c_str());
}

// At each read of opening an order, and of repairing one: a report with file and reason, and what was there is there.
TEST_F(Gedeeld, lezen_mislukt) {
    static int over, fout;
    for (const bool met_wrk : {false, true}) {
        zet("JRN", bytes(TWEE));
        if (met_wrk)
            laat_wrk();
        const std::string jrn = inhoud("JRN"), wrk = met_wrk ? inhoud("WRK") : "",
                          act = met_wrk ? inhoud("ACT") : "";
        for (int n = 0, klaar = 0; !klaar; n++) {
            SCOPED_TRACE((met_wrk ? "repair, read " : "open, read ") + std::to_string(n));
            ASSERT_LT(n, 60);
            fout = std::array{EIO, ENOTCONN, ESTALE, EBADFD}[static_cast<size_t>(n) % 4], over = n;
            std::string gezegd;
            const int status = in_kind(
                [&] {
                    SYS.pread = [](int fd, void* p, size_t m, off_t waar) {
                        return over-- > 0 ? pread(fd, p, m, waar) : (errno = fout, ssize_t{-1});
                    };
                    const int uit = met_wrk ? herstart() : kies(1);
                    return (over < 0 ? 20 : 10) + uit;
                },
                &gezegd);
            klaar = status == 11;
            if (klaar)
                break;
            EXPECT_EQ(status, 1) << gezegd;
            EXPECT_TRUE(bevat(gezegd, "kan niet gelezen worden (errno=" + std::to_string(fout)));
            EXPECT_TRUE(bevat(gezegd, "ORD0012."));
            EXPECT_EQ(inhoud("JRN"), jrn);
            if (met_wrk) {
                EXPECT_EQ(inhoud("WRK"), wrk);
                EXPECT_EQ(inhoud("ACT"), act);
            }
        }
    }
}

} // namespace
} // namespace zg::test
