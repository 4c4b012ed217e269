// A temporary directory with an empty DTSYS.TXT that is open in this process, for all that stands on the fixed
// tables.
#pragma once
#include "shared/iofil.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/maatbalk.h"
#include "shared/woordenboek.h"
#include "support/paar.h"
#include "support/proef.h"

namespace zg::test {

struct Systeem : testing::Test {
    TijdelijkeMap map;
    Systeem() {
        schrijf_bestand("DTSYS.TXT", std::string(130'000, '\0'));
        open();
    }
    // What this process has of the firm goes with its directory.
    ~Systeem() override {
        iofil('C', 0, nullptr);
        if (dtmaat)
            IXCLOSE(dtmaat);
        dtmaat = nullptr;
        sluit();
        sessie = 0, gebruiker = {}, firma = {}, instel15 = {};
    }
    // Again, in a child: the descriptor from before the fork would drop and share locks.
    static void open() {
        sluit();
        int32_t nr = 7;
        iotab('O', &nr, nullptr, SYS_RECORD);
        EXPECT_EQ(nr, 1);
    }
    static void sluit() {
        int32_t nr = 0;
        iotab('C', &nr, nullptr, SYS_RECORD);
    }
    template <class R> static void zet(int32_t slot, const R& rec, const Systabel& tabel) {
        R kopie = rec;
        EXPECT_EQ(iotab('W', &slot, &kopie, tabel), 1);
    }
    static void gebruiker_in(int32_t slot, const char* naam, const char* tty) {
        gebruikerslot g{};
        char s[sizeof g.username + 2];
        snprintf(s, sizeof s, "%s", naam);
        SCRAMBLE(s);
        VASTIN(g.username, s);
        VASTIN(g.usertty, tty);
        zet(slot, g, SYS_GEBRUIKER);
    }
    static void valuta(int32_t slot, const char* code, int decimalen, const char* naam) {
        valutarec v{};
        VASTIN(v.code, code);
        v.decimalen = static_cast<uint8_t>(decimalen);
        VASTIN(v.naam, naam);
        zet(slot, v, SYS_VALUTA);
    }
};

// A size type on file, in DTMAAT; its sizes are numbered as they stand on the bar.
inline void maak_maatsoort(uint8_t soort, const char* naam, const std::vector<std::string>& maten,
                           uint8_t stelsel = 1) {
    tekst20 rec{};
    VASTIN(rec.tekst, naam);
    Systeem::zet(soort, rec, SYS_MAATSOORT);
    dtmaat = IOEXISTS("DTMAAT.INX") ? IXOPEN("DTMAAT", 2)
                                    : nieuw_paar("DTMAAT", {"maten,404", "k1,NODUPS,I,1,1,I,2,2"}, 2);
    mthandle* h = mtopen(stelsel, soort, 2);
    mtinfo info{};
    for (const std::string& maat : maten) {
        info.positie++;
        info.maatnr = info.positie;
        VASTIN(info.naam, (maat + "  ").substr(0, 3));
        EXPECT_EQ(mtinsert(h, &info), 1);
    }
    mtclose(h);
    IXCLOSE(dtmaat);
    dtmaat = nullptr;
}

// A set of sizes, and what is in one: "1,2".
inline std::array<uint8_t, MAATBYTES> maten_van(const std::vector<int>& maten) {
    std::array<uint8_t, MAATBYTES> uit{};
    for (int maat : maten)
        maat_aan(uit.data(), maat);
    return uit;
}
inline std::string maten_in(const uint8_t* maten) {
    std::string uit;
    for (int maat = 1; maat <= MATEN; maat++)
        if (maat_in(maten, maat))
            uit += (uit.empty() ? "" : ",") + std::to_string(maat);
    return uit;
}

// Sizes in force without a file: 1 to n, "31" and up.
inline void zet_balk(mthandle* balk, int maten) {
    *balk = {};
    for (int n = 1; n <= maten; n++)
        for (maatrij* rij : {&balk->posities, &balk->nummers}) {
            rij->entry[n].link = static_cast<uint8_t>(n);
            VASTIN(rij->entry[n].naam, std::to_string(30 + n));
        }
    maatbalk = balk;
    balk_kies(nullptr);
}

// A firm with branches of these numbers, and their table open: "Filiaal 14".
inline void maak_filialen(const std::vector<int>& nummers) {
    firma = {};
    firma.filialen = static_cast<uint8_t>(nummers.size());
    schrijf_bestand("DTFILGEG.TXT", "");
    iofil('O', 0, nullptr);
    int i = 0;
    for (int nr : nummers) {
        filiaalrec rec{};
        VASTIN(rec.naam, "Filiaal " + std::to_string(nr));
        rec.nummer = static_cast<uint8_t>(nr);
        iofil('W', i++, &rec);
    }
}

} // namespace zg::test
