// zgdruk's jobs: a test page, and what is left of jobs that couldn't be sent.
#include "tools/drukwerk.h"
#include "print/bestemlijst.h"
#include "print/spooljob.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "term/natl.h"
#include "term/vast.h"
#include "tools/teksten.h"
#include "tools/wie.h"
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>

namespace zg {

Drukwens druk_wens;

namespace {

using json = nlohmann::ordered_json;

constexpr std::chrono::milliseconds STAP{50};

// Everything that a printer may get wrong: the width, all characters, every row of the page.
void proefblad(const Bestemming& b) {
    const int kolommen = XPRT_KOLOMMEN();
    XPRT_KOP("zgdruk", "%s", TXT(T_DRUK_PROEF));
    XPRT_PRINT("%s %d %s, %s\n", TXT(T_DRUK_PRINTER), int{b.printer.code}, VASTTEKST(b.printer.naam).c_str(),
               VASTTEKST(b.verbinding.naam).c_str());
    XPRT_PRINT("%s\n", VASTTEKST(b.verbinding.apparaat).c_str());
    XPRT_PRINT("%s, %d x %d, %s\n\n", VASTTEKST(b.config.omschrijving).c_str(), kolommen, XPRT_RIJEN(),
               printopdracht.tekens.c_str());
    std::string liniaal;
    for (int k = 1; k <= kolommen; k++)
        liniaal += k % 10 == 0 ? static_cast<char>('0' + k / 10 % 10) : k % 5 == 0 ? '+' : '.';
    XPRT_PRINT("%s\n\n", liniaal.c_str());
    for (int rij = 2; rij < 16; rij++) {
        std::string tekens;
        for (int k = 0; k < 16; k++)
            tekens += {static_cast<char>(rij * 16 + k), ' '};
        XPRT_PRINT("%02X  %s\n", static_cast<unsigned>(rij) * 16, tekens.c_str());
    }
    XPRT_PRINT("\n");
    while (printopdracht.regel < XPRT_RIJEN())
        XPRT_PRINT("%-3d%*s\n", printopdracht.regel, std::max(kolommen - 3, 1), "|");
}

// A job that has been handed over: until it is out, or known not to be.
Uitkomst wacht_op(const std::string& beschrijving) {
    spooljob job;
    const auto grens = std::chrono::steady_clock::now() + std::chrono::seconds(druk_wens.wacht);
    for (;;) {
        const Spoolpad hoe = spool_kijk(beschrijving, &job);
        if (hoe == Spoolpad::weg)
            return GOED;
        if (hoe == Spoolpad::blijft)
            return meld(FOUT_GEVONDEN, "not printed: " + toon(job.reden) + "; kept as " + toon(job.spool));
        if (std::chrono::steady_clock::now() > grens)
            return meld(IN_GEBRUIK,
                        "still being sent: " + toon(spool_bestand(beschrijving)) + open_bij(beschrijving));
        std::this_thread::sleep_for(STAP);
    }
}

const char* weg_naam(Printweg weg) {
    constexpr const char* NAMEN[] = {"nothing", "queue", "device", "directory", "AUX", "TERMINAL", "file"};
    return NAMEN[static_cast<int>(weg)];
}

// A file's path is in bytes of the file system.
std::string apparaat(const spooljob& job) {
    std::string cp850;
    return job.weg == Printweg::bestand && CP850NAAR(job.apparaat, &cp850) ? toon(cp850) : toon(job.apparaat);
}

std::vector<spooljob> achtergebleven() {
    std::vector<spooljob> uit = spool_achtergebleven("");
    if (IOISDIR("uit"))
        for (const spooljob& job : spool_achtergebleven("uit/"))
            uit.push_back(job);
    return uit;
}

// Why it isn't out; of one whose sender died nobody knows how far it came.
std::string reden(const spooljob& job) {
    return spool_verdwenen(job)             ? "its report was removed"
           : job.stand == Spoolstand::bezig ? "the sender died, perhaps some of it is out"
           : job.stand == Spoolstand::wacht ? "the sender died before it began"
                                            : toon(job.reden);
}

// Each job named, or all of them; the gravest answer counts.
Uitkomst elk(const std::function<Uitkomst(int, spooljob*)>& daad) {
    std::vector<std::string> namen = druk_wens.woorden;
    if (druk_wens.alles)
        for (const spooljob& job : achtergebleven())
            namen.push_back(job.spool);
    if (namen.empty() && !druk_wens.alles)
        return meld(FOUT_GEBRUIKT, "name jobs, or --all");
    Uitkomst slechtste = GOED;
    for (const std::string& naam : namen) {
        spooljob job;
        const int fd = spool_neem(spool_bestand(naam).empty() ? spool_beschrijving(naam) : naam, &job);
        Uitkomst uit;
        if (fd < 0)
            uit = errno == EAGAIN
                      ? meld(IN_GEBRUIK,
                             naam + ": is being sent" +
                                 open_bij(spool_bestand(naam).empty() ? spool_beschrijving(naam) : naam))
                      : meld(NIET_TE_OPENEN, naam + ": no such job");
        else {
            uit = daad(fd, &job);
            SYS.close(fd);
        }
        slechtste = std::max(slechtste, uit);
    }
    return slechtste;
}

Uitkomst zend(int fd, spooljob* job) {
    if (spool_start(fd, *job, !druk_wens.vlot))
        return GOED;
    const std::string naam = toon(job->spool);
    if (errno)
        return meld(NIET_TE_OPENEN, std::string("zgspoel can't be run: ") + strerror(errno));
    spool_lees(fd, spool_beschrijving(job->spool), job);
    return meld(FOUT_GEVONDEN, naam + ": " + toon(job->reden));
}

} // namespace

Uitkomst druk_proef() {
    printtabellen t;
    if (!prt_lees(&t))
        return meld(NIET_TE_OPENEN, "no print tables");
    for (const Bestemming& b : prt_bestemmingen(t, PRT_ALLES)) {
        if (b.printer.code != druk_wens.code ||
            (druk_wens.verbinding && b.verbinding.nummer != druk_wens.verbinding) ||
            (druk_wens.config && b.config.nummer != druk_wens.config))
            continue;
        if (b.printer.code == PRT_SCHERM)
            return meld(FOUT_GEBRUIKT, "printer 1 is the screen");
        if (!prt_open_op(b, t, druk_wens.kopieen, TXT(T_DRUK_PROEF)))
            return NIET_TE_OPENEN; // which was told
        proefblad(b);
        if (!XPRT_CLOSE())
            return FOUT_GEVONDEN; // as was this
        return printopdracht.weg == Printweg::geen ? meld(FOUT_GEVONDEN, "this connection has no device")
                                                   : wacht_op(spool_beschrijving(printopdracht.spool));
    }
    return meld(FOUT_GEVONDEN, "no such printer, connection and configuration");
}

Uitkomst druk_opdrachten() {
    for (const spooljob& job : achtergebleven()) {
        char tijd[32] = "";
        const time_t om = job.tijd;
        if (const tm* lokaal = localtime(&om))
            strftime(tijd, sizeof tijd, "%Y-%m-%d %H:%M", lokaal);
        if (druk_wens.json) {
            json j;
            j["job"] = toon(job.spool);
            j["time"] = tijd;
            j["user"] = job.sessie;
            j["title"] = toon(job.titel);
            j["to"] = weg_naam(job.weg);
            j["device"] = apparaat(job);
            j["copies"] = job.kopieen;
            j["done"] = job.gedaan;
            j["reason"] = reden(job);
            puts(j.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
        } else
            printf("%s  %s  user %d  %d/%d  %s %s  \"%s\"  %s\n", toon(job.spool).c_str(), tijd, job.sessie,
                   job.gedaan, job.kopieen, weg_naam(job.weg), apparaat(job).c_str(), toon(job.titel).c_str(),
                   reden(job).c_str());
    }
    return GOED;
}

Uitkomst druk_weer() {
    return elk(zend);
}

Uitkomst druk_laat() {
    return elk([](int, spooljob* job) {
        spool_weg(*job);
        return IOEXISTS(job->spool.c_str()) ? meld(FOUT_GEVONDEN, job->spool + ": not removed") : GOED;
    });
}

} // namespace zg
