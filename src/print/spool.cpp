// The end of a report: closed, looked at, and sent. A queue, a device and a directory are left to zgspoel, so that the user
// goes on at once; a file is put in its place here; what goes through the user's own terminal is sent here, too.
#include "print/doorgeef.h"
#include "print/printtabel.h"
#include "print/spooljob.h"
#include "print/teksten.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include <cerrno>
#include <ctime>
#include <utility>
#include <vector>

namespace zg {
namespace {

std::vector<std::string> onderweg; // descriptions of jobs that this program handed over
bool gezocht;                      // has it looked for those of an earlier one?

std::string leesbaar(std::string tekst) {
    prt_blank(tekst.data(), tekst.size());
    return tekst;
}

// The box about a job that isn't out, or not all of it.
void meld(const std::string& titel, const Tekst& wat, const std::string& reden, const std::string& bewaard) {
    std::string tekst = titel.empty() ? std::string() : "\"" + leesbaar(titel.substr(0, 60)) + "\"\n";
    tekst += TXT(wat);
    if (!reden.empty())
        tekst += ":\n" + leesbaar(reden.substr(0, 70));
    if (!bewaard.empty())
        tekst += "\n" + std::string(TXT(T_PRT_BEWAARD)) + " " + leesbaar(bewaard);
    prt_box(TXT(T_PRT_PRINTEN), tekst);
}

bool mislukt(const printjob& job, const std::string& reden, const std::string& bewaard) {
    meld(job.titel, T_PRT_NIET_GEPRINT, reden, bewaard);
    return false;
}

spooljob beschrijf(const printjob& job) {
    spooljob uit{};
    uit.spool = job.spool;
    uit.weg = job.weg;
    uit.apparaat = job.apparaat;
    uit.titel = job.titel;
    uit.tekens = job.tekens;
    uit.kopieen = job.kopieen;
    uit.rijen = job.rijen;
    uit.kolommen = job.kolommen;
    uit.staand = job.staand;
    uit.over = job.over;
    uit.begin = job.begin;
    uit.eind = job.plaats - static_cast<int64_t>(job.exit.size());
    uit.sessie = sessie;
    uit.tijd = time(nullptr);
    return uit;
}

// To zgspoel. Where the end is waited for, what it couldn't do is told here.
bool geef_af(const printjob& job, bool wacht) {
    spooljob s = beschrijf(job);
    const int fd = spool_maak(s);
    if (fd < 0)
        return mislukt(job, spool_reden(errno), job.spool);
    bool goed = spool_start(fd, s, wacht);
    if (!goed) {
        if (errno) {
            s.stand = Spoolstand::fout;
            s.reden = std::string(TXT(T_PRT_GEEN_ZENDER)) + " (" + spool_reden(errno) + ")";
        } else
            spool_lees(fd, spool_beschrijving(s.spool), &s);
        s.gemeld = true;
        spool_schrijf_stand(fd, s); // the worst is that it is told again
        mislukt(job, s.reden, s.spool);
    } else if (!wacht)
        onderweg.push_back(spool_beschrijving(s.spool));
    SYS.close(fd);
    return goed;
}

// Through the user's own terminal; it is out at the end, or as much of it as the user wanted.
bool geef_door(const printjob& job) {
    spooljob s = beschrijf(job);
    const int fd = spool_maak(s);
    if (fd < 0)
        return mislukt(job, spool_reden(errno), job.spool);
    const bool goed = prt_doorgeef(fd, &s);
    if (goed)
        spool_weg(s);
    else {
        s.stand = Spoolstand::fout;
        s.reden = spool_reden(errno);
        s.gemeld = true;
        spool_schrijf_stand(fd, s);
        mislukt(job, s.reden, s.spool);
    }
    SYS.close(fd);
    return goed;
}

} // namespace

bool prt_verzend(const printjob& job) {
    switch (job.weg) {
    case Printweg::geen:
        IOUNLINK(job.spool.c_str());
        return true;
    case Printweg::bestand:
        if (job.tekens != "cp850")
            return geef_af(job, true);
        return spool_plaats(job.spool, job.apparaat, job.over) || mislukt(job, spool_reden(errno), job.spool);
    case Printweg::wachtrij:
    case Printweg::apparaat:
    case Printweg::map:
        return geef_af(job, false);
    case Printweg::aux:
    case Printweg::terminal:
        return geef_door(job);
    }
    return false;
}

int XPRT_CLOSE() {
    printjob& job = printopdracht;
    if (!job.open)
        zigzag_stop(); // which stops
    SCHERM.laatste = K_CANCEL;
    SCHERM.vlag = 0;
    int antwoord = 1;
    switch (prt_job_sluit(XPRT_STOP())) {
    case Jobeind::leeg:
        break;
    case Jobeind::fout:
        IOUNLINK(job.spool.c_str()); // half a report is no use, and the disk may need the room
        mislukt(job, spool_reden(job.fout), "");
        antwoord = 0;
        break;
    case Jobeind::klaar:
        if (job.voorbeeld && (job.kopieen = PRT_SCR(job)) == 0) {
            IOUNLINK(job.spool.c_str());
            break;
        }
        SCHERM.laatste = 0;
        SCHERM.vlag = 0;
        ONDERBREKAAN();
        ONDERBREKRESET();
        antwoord = prt_verzend(job);
    }
    SCRFLUSH(0);
    ONDERBREKAAN();
    ONDERBREKRESET();
    return antwoord;
}

void prt_meld_mislukt() {
    if (!gezocht && sessie) {
        onderweg.clear(); // they are among these
        for (const std::string& beschrijving : spool_beschrijvingen(""))
            if (spooljob job;
                spool_kijk(beschrijving, &job) != Spoolpad::weg && job.sessie == sessie && !job.gemeld)
                onderweg.push_back(beschrijving);
        gezocht = true;
    }
    for (const std::string& beschrijving : std::exchange(onderweg, {})) {
        spooljob job;
        const Spoolpad hoe = spool_kijk(beschrijving, &job);
        if (hoe == Spoolpad::bezig)
            onderweg.push_back(beschrijving);
        if (hoe != Spoolpad::blijft)
            continue;
        const int fd = spool_neem(beschrijving, &job);
        if (fd < 0)
            continue; // somebody sends it again
        job.gemeld = true;
        spool_schrijf_stand(fd, job);
        SYS.close(fd);
        meld(job.titel,
             job.stand == Spoolstand::bezig || job.gedaan ? T_PRT_DEELS_GEPRINT : T_PRT_NIET_GEPRINT,
             job.reden, job.spool);
    }
}

} // namespace zg
