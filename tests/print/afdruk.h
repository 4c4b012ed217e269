// A report on a spool file, opened as XPRT_OPEN leaves it, for tests of where it goes.
#pragma once
#include "print/printjob.h"
#include "shared/files.h"
#include <ctime>
#include <unistd.h>

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
inline bool leeg() { // nothing lies here of print jobs any more
    return binnen([] { return FILES_PRESENT("PR*") == 0; });
}

} // namespace zg::test
