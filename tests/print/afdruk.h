// For tests of where a report goes: one on a spool file, opened as XPRT_OPEN leaves it, and printers.
#pragma once
#include "print/printjob.h"
#include "print/printtabel.h"
#include "support/paar.h"
#include "support/proef.h"

namespace zg::test {

inline const std::string INIT("\x1B@\0\n", 4), EXIT("\0Z", 2);
inline const char TITEL[] = "M\x9Bller & S\x9Bn"; // Møller & Søn

inline bool begin(Printweg weg, const std::string& apparaat, int kopieen = 1, const char* tekens = "cp850") {
    printjob job{};
    job.weg = weg, job.apparaat = apparaat, job.kopieen = kopieen, job.tekens = tekens;
    job.titel = TITEL, job.kolommen = 80, job.init = INIT, job.exit = EXIT;
    return prt_job_begin(job, "");
}
inline void regels(const std::string& woord, int n) {
    for (int i = 1; i <= n; i++)
        XPRT_PRINT("%s %d \x9B%c\n", woord.c_str(), i, i == 2 ? 0x1B : '.');
}
inline std::string verwacht(const std::string& woord, int n, const std::string& letter = "\x9B") {
    std::string uit = INIT;
    for (int i = 1; i <= n; i++)
        uit += woord + " " + std::to_string(i) + " " + letter + (i == 2 ? " \n" : ".\n");
    return uit + EXIT;
}

template <class F> bool binnen(F waar) { // a generous limit
    for (const time_t tot = time(nullptr) + 60; !waar(); usleep(5000))
        if (time(nullptr) > tot)
            return false;
    return true;
}
// A directory with print tables, and programs in front of the system's.
struct Printmap : testing::Test {
    TijdelijkeMap tijdelijk;
    std::string pad = getenv("PATH");
    Printmap() {
        for (const char* m : {"prt", "bin", "2016Z", "uit", "elders"})
            SYS.mkdir(m, 0777);
        setenv("ZEBPRT", "prt", 1);
        setenv("PATH", (tijdelijk.pad() + "/bin:" + pad).c_str(), 1);
    }
    ~Printmap() override {
        for (const char* v : {"ZEBPRT", "SYSBUF", "MAXFMT", "MAXSYSBUF"})
            unsetenv(v);
        setenv("PATH", pad.c_str(), 1);
    }
    static void programma(const char* naam, const std::string& regels) {
        schrijf_bestand(naam, "#!/bin/sh\n" + regels + "\n");
        chmod(naam, 0755);
    }
};
// Into the print tables.
template <class R> void zet(Prttabel tabel, const R& rec) {
    ICB* icb = prt_open(tabel, 2);
    ASSERT_TRUE(icb);
    schrijf(icb, rec);
    IXCLOSE(icb);
}
inline void printer(uint16_t code, const char* naam) {
    prtrec r{code, {}, {}};
    VASTIN(r.naam, naam);
    zet(PRT_PRINTERS, r);
}
inline void verbinding(uint16_t code, uint8_t nr, const std::string& apparaat, bool map = false) {
    prtverbinding r{code, nr, map, {}, {}};
    VASTIN(r.apparaat, apparaat);
    VASTIN(r.naam, "via " + std::to_string(nr));
    zet(PRT_VERBINDINGEN, r);
}
inline void config(uint16_t code, uint8_t nr, uint16_t kolommen, uint16_t rijen, const char* init = "",
                   uint8_t staand = 1) {
    prtconfig r{code, nr, staand, kolommen, rijen, {}, {}, {}};
    VASTIN(r.omschrijving, "config " + std::to_string(nr));
    VASTIN(r.init, init);
    zet(PRT_CONFIGS, r);
}

inline bool leeg() { // nothing lies here of print jobs any more
    return binnen([] { return FILES_PRESENT("PR*") == 0; });
}

} // namespace zg::test
