// The end of a report: closed, looked at, and sent. A queue, a device and a directory are left to zgspoel, so that the user
// goes on at once; a file is put in its place here; what goes through the user's own terminal is sent here, too.
#include "print/doorgeef.h"
#include "print/printtabel.h"
#include "print/spooljob.h"
#include "print/teksten.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include <cerrno>
#include <sys/stat.h>
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

// It stays, with its reason; the user has been told.
bool bewaar(const printjob& job, spooljob* s, const std::string& reden) {
    s->stand = Spoolstand::fout;
    s->reden = reden;
    s->gemeld = true;
    spool_schrijf_stand(job.slot, *s); // the worst is that it is told again
    return mislukt(job, reden, s->spool);
}

// To zgspoel. Where the end is waited for, what it couldn't do is told here.
bool geef_af(const printjob& job, spooljob* s, bool wacht) {
    if (spool_start(job.slot, *s, wacht)) {
        if (!wacht)
            onderweg.push_back(spool_beschrijving(s->spool));
        return true;
    }
    if (errno)
        return bewaar(job, s, std::string(TXT(T_PRT_GEEN_ZENDER)) + " (" + spool_reden(errno) + ")");
    spool_lees(job.slot, spool_beschrijving(s->spool), s);
    return bewaar(job, s, s->reden);
}

// Here: it is out at the end, or as much of it as the user wanted.
bool doe_zelf(const printjob& job, spooljob* s) {
    if (job.weg == Printweg::bestand ? spool_plaats(s->spool, s->apparaat, s->over)
                                     : prt_doorgeef(job.slot, s)) {
        spool_weg(*s);
        return true;
    }
    return bewaar(job, s, spool_reden(errno));
}

} // namespace

bool prt_verzend(const printjob& job) {
    spooljob s = spool_van(job, Spoolstand::wacht);
    if (job.weg == Printweg::geen) {
        spool_weg(s);
        return true;
    }
    struct stat st; // without its spool file a job counts as out
    if (stat(s.spool.c_str(), &st) != 0 || !spool_schrijf(job.slot, s)) {
        const int fout = errno;
        spool_weg(s); // nobody could send it
        return mislukt(job, spool_reden(fout), "");
    }
    switch (job.weg) {
    case Printweg::bestand:
        return job.tekens == "cp850" ? doe_zelf(job, &s) : geef_af(job, &s, true);
    case Printweg::aux:
    case Printweg::terminal:
        return doe_zelf(job, &s);
    default:
        return geef_af(job, &s, false);
    }
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
        prt_job_weg(); // half a report is no use, and the disk may need the room
        mislukt(job, spool_reden(job.fout), "");
        antwoord = 0;
        break;
    case Jobeind::klaar:
        if (job.voorbeeld && (job.kopieen = PRT_SCR(job)) == 0) {
            prt_job_weg();
            break;
        }
        SCHERM.laatste = 0;
        SCHERM.vlag = 0;
        ONDERBREKAAN();
        ONDERBREKRESET();
        antwoord = prt_verzend(job);
        SYS.close(job.slot); // who sends it has it
        job.slot = -1;
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
        const bool verdwenen = spool_verdwenen(job);
        if (verdwenen)
            spool_weg(job);
        SYS.close(fd);
        meld(job.titel,
             job.stand == Spoolstand::bezig || job.gedaan ? T_PRT_DEELS_GEPRINT : T_PRT_NIET_GEPRINT,
             verdwenen           ? TXT(T_PRT_VERDWENEN)
             : job.reden.empty() ? TXT(T_PRT_ZENDER_WEG)
                                 : job.reden,
             verdwenen ? "" : job.spool);
    }
}

} // namespace zg
