// Opening a job: which printer, through what, set up how; and whether that can be printed to at all.
#include "print/bestemlijst.h"
#include "print/printjob.h"
#include "print/printtabel.h"
#include "print/teksten.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "term/natl.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include "term/tekenset.h"
#include "term/uitvoer.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <strings.h>
#include <unistd.h>

namespace zg {
namespace {

namespace fs = std::filesystem;

constexpr int SCHERMRIJEN = 64;
constexpr int STAANDBREEDTE = 80; // a file that is a PDF: wider ones lie
constexpr size_t BESTANDMAX = 39; // without the ending of a PDF
constexpr char UITMAP[] = "uit";  // files without a directory
constexpr std::chrono::seconds LPSTAT_WACHT{5};
constexpr int CAP_TEKENS = 17, CAP_INIT = 18, CAP_EXIT = 19;

std::vector<prtcode> jobcodes; // of the job's configuration

// Does the scheduler know the queue?
bool rij_bekend(const std::string& naam) {
    int status = 0;
    std::string gezegd;
    return prt_programma({"lpstat", "-v", naam}, LPSTAT_WACHT, &status, &gezegd) && status == 0;
}

// Is it the data directory, or that of a season? Nothing is printed into those.
bool datamap(const std::string& map) {
    std::error_code fout;
    const fs::path hier = fs::canonical(".", fout), daar = fs::canonical(map.empty() ? "." : map, fout);
    if (fout)
        return true;
    const fs::path langs = daar.lexically_relative(hier);
    if (langs.empty() || *langs.begin() == "..")
        return false;
    const std::string eerste = langs.begin()->string();
    return eerste == "." || (eerste.size() > 1 && strchr("ZWK", eerste.back()) &&
                             eerste.find_first_not_of("0123456789") == eerste.size() - 1);
}

bool schrijfbare_map(const std::string& map) {
    return IOISDIR(map.c_str()) && access(map.c_str(), W_OK | X_OK) == 0 && !datamap(map);
}

void weigering(const std::string& apparaat) {
    std::string naam = apparaat;
    prt_blank(naam.data(), naam.size());
    prt_box(TXT(T_PRT_PRINTEN),
            std::string(TXT(T_PRT_UITVOERMEDIUM)) + " <" + naam + ">\n" + TXT(T_PRT_NIET_OPEN));
}

bool bestandfout(const Tekst& tekst) {
    prt_box(TXT(T_PRT_NAAR_BESTAND), TXT(tekst));
    return false;
}

bool pdf_naam(const std::string& naam) {
    return naam.size() > 4 && strcasecmp(naam.c_str() + naam.size() - 4, ".pdf") == 0;
}

// A report to a file: 64 rows, the width by the mask or the menu.
bool naar_bestand(const char* bestand, uint16_t masker, printjob* job) {
    if (!bestand || !*bestand)
        return bestandfout(T_PRT_GEEN_BESTAND);
    const std::string pad = bestand;
    if (pad.size() > BESTANDMAX + (pdf_naam(pad) ? 4 : 0) || pad.back() == '/' ||
        std::any_of(pad.begin(), pad.end(), [](unsigned char c) { return c < ' '; }))
        return bestandfout(T_PRT_FOUT_PAD);
    const bool kaal = pad.find('/') == std::string::npos;
    if (kaal && !IOISDIR(UITMAP))
        SYSNIEUWEMAP(UITMAP);
    job->bestand = kaal ? UITMAP + ("/" + pad) : pad;
    job->apparaat = SCHERM.bestaat ? TEKENSETTEKST(job->bestand) : job->bestand;
    const std::string map = job->apparaat.substr(0, job->apparaat.rfind('/') + 1);
    struct stat st;
    const bool staat = stat(job->apparaat.c_str(), &st) == 0;
    if (!schrijfbare_map(map) || (staat && !S_ISREG(st.st_mode)))
        return bestandfout(T_PRT_FOUT_PAD);
    if (staat && !(SCHERM.bestaat && FFLASH(-2, 2, A_WAARDE, TXT(T_PRT_NAAR_BESTAND), "%s\n[-]%s",
                                            job->bestand.c_str(), TXT(T_PRT_OVERSCHRIJVEN))))
        return false;
    job->over = staat;
    job->weg = Printweg::bestand;
    job->rijen = SCHERMRIJEN;
    switch (masker & (PRT_40 | PRT_80 | PRT_132)) {
    case PRT_40:
    case PRT_80:
    case PRT_132:
        job->kolommen = prt_breedste(masker);
        break;
    default:
        job->kolommen = SCHERM.bestaat ? XPRT_BREEDTE(masker) : prt_breedste(masker);
    }
    job->staand = job->kolommen <= STAANDBREEDTE;
    return true;
}

void neem(const Bestemming& b, printjob* job) {
    job->code = b.printer.code;
    job->config = b.config.nummer;
    job->rijen = b.config.rijen;
    job->kolommen = b.config.kolommen;
    job->staand = b.config.staand != 0;
    auto bytes = [](const auto& tekst) { return prt_bytes(tekst, VASTUIT(tekst).size()); };
    job->init = bytes(b.config.init);
    job->exit = bytes(b.config.exit);
    if (b.printer.code == PRT_SCHERM) {
        job->voorbeeld = true;
        return;
    }
    job->apparaat = VASTTEKST(b.verbinding.apparaat);
    job->weg = job->apparaat.empty()         ? Printweg::geen
               : job->apparaat == "TERMINAL" ? Printweg::terminal
               : job->apparaat == "AUX"      ? Printweg::aux
               : b.verbinding.map            ? Printweg::map
               : job->apparaat[0] == '/'     ? Printweg::apparaat
                                             : Printweg::wachtrij;
}

bool alleen_kijken(uint16_t masker, printjob* job) {
    job->voorbeeld = true;
    job->rijen = SCHERMRIJEN;
    job->kolommen = prt_breedste(masker);
    return true;
}

// Find the destination of a wish, or let the user choose it. False: there is none.
bool zoek(const printwens& wens, uint16_t masker, const printtabellen& t, printjob* job) {
    std::vector<Bestemming> alle = prt_bestemmingen(t, masker);
    if (wens.code) {
        auto past = [&](const Bestemming& b) {
            return b.printer.code == wens.code &&
                   (!wens.verbinding || b.verbinding.nummer == wens.verbinding);
        };
        const auto eerste = std::find_if(alle.begin(), alle.end(), past);
        const auto configs = std::count_if(t.configs.begin(), t.configs.end(), [&](const prtconfig& c) {
            return c.code == wens.code && prt_past(c, masker);
        });
        if (configs == 1 && eerste != alle.end()) {
            neem(*eerste, job);
            return true;
        }
        if (configs == 0 && job->voorbeeld)
            return alleen_kijken(masker, job);
    } else if (std::all_of(alle.begin(), alle.end(),
                           [](const Bestemming& b) { return b.printer.code == PRT_SCHERM; }))
        return alleen_kijken(masker, job);
    if (alle.empty())
        return false;
    const int gekozen = alle.size() == 1 ? 0 : SCHERM.bestaat ? XPRT_KIES(alle) : -1;
    if (gekozen < 0)
        return job->voorbeeld && alleen_kijken(masker, job);
    neem(alle[static_cast<size_t>(gekozen)], job);
    return true;
}

// The characters of a text for the user: those of his terminal, and so of what he opens it with.
std::string tekens_scherm() {
    constexpr uint8_t O_STREEP = 0x9B;
    if (!SCHERM.bestaat || UTF8SCHERM())
        return "utf-8";
    return TABELSCHERM() && static_cast<char32_t>(TEKENSETUIT(O_STREEP).teken) == CP850UIT(O_STREEP)
               ? "latin1"
               : "cp850";
}

std::string tekens_van(const printjob& job) {
    if (job.weg == Printweg::bestand)
        return pdf_naam(job.apparaat) ? "pdf" : tekens_scherm();
    std::string naam = XPRT_CODE(CAP_TEKENS);
    for (const char* bekend : {"cp850", "utf-8", "latin1", "ascii", "pdf"})
        if (naam == bekend)
            return naam;
    return job.weg == Printweg::wachtrij && job.init.empty() ? "utf-8" : "cp850";
}

} // namespace

bool prt_bestaat(Printweg weg, const std::string& apparaat) {
    struct stat st;
    switch (weg) {
    case Printweg::wachtrij: // an option isn't a queue, nor is a list of them
        return !apparaat.empty() && apparaat[0] != '-' && apparaat.find_first_of(", ") == std::string::npos &&
               rij_bekend(apparaat);
    case Printweg::apparaat: // never opened to see: a fifo would wait, a tape would wind
        return stat(apparaat.c_str(), &st) == 0 && (S_ISCHR(st.st_mode) || S_ISFIFO(st.st_mode)) &&
               access(apparaat.c_str(), W_OK) == 0 && !datamap(fs::path(apparaat).parent_path().string());
    case Printweg::map:
        return schrijfbare_map(apparaat);
    case Printweg::aux:
        return SCHERM.bestaat && ttyname(0) && !CAPACITEIT("mc5").empty() && !CAPACITEIT("mc4").empty();
    case Printweg::terminal:
        return SCHERM.bestaat && ttyname(0);
    case Printweg::geen:
    case Printweg::bestand:
        break;
    }
    return true;
}

namespace {

printjob nieuw(const char* titel) {
    if (printopdracht.open)
        zigzag_start(); // which stops
    printjob job{};
    job.kopieen = 1;
    job.titel = titel ? titel : "";
    jobcodes.clear();
    return job;
}

void neem_codes(const printtabellen& t, const printjob& job) {
    std::copy_if(t.codes.begin(), t.codes.end(), std::back_inserter(jobcodes),
                 [&](const prtcode& c) { return job.code && c.code == job.code && c.config == job.config; });
}

// The job on its spool file, when its destination can be printed to.
int open_job(printjob* job) {
    if (!prt_bestaat(job->weg, job->apparaat)) {
        weigering(job->apparaat);
        return 0;
    }
    job->tekens = tekens_van(*job);
    // A file for the user is written beside its place, to be there whole or not at all.
    const bool naar = job->weg == Printweg::bestand;
    const std::string map = naar ? job->apparaat.substr(0, job->apparaat.rfind('/')) : "";
    if (!prt_job_begin(*job, map.empty() && naar ? "/" : map)) {
        weigering(naar ? job->bestand : job->apparaat);
        return 0;
    }
    if (job->weg == Printweg::aux && !job->voorbeeld)
        ONDERBREKUIT();
    else
        ONDERBREKRESET();
    return 1;
}

} // namespace

int XPRT_OPEN(const printwens& wens, uint16_t masker, const char* bestand, const char* titel) {
    printjob job = nieuw(titel);
    const bool naar = wens.vlaggen & PRT_BESTAND;
    job.voorbeeld = (wens.vlaggen & PRT_VOORBEELD) || (wens.code == 0 && !naar);
    if (naar) {
        if (!naar_bestand(bestand, masker, &job))
            return 0;
    } else {
        printtabellen t;
        if (!prt_lees(&t) || !zoek(wens, masker, t, &job)) {
            prt_box(TXT(T_PRT_PRINTEN), TXT(T_PRT_GEEN_MEDIUM));
            return 0;
        }
        neem_codes(t, job);
    }
    return open_job(&job);
}

int prt_open_op(const Bestemming& b, const printtabellen& t, int kopieen, const char* titel) {
    printjob job = nieuw(titel);
    job.kopieen = kopieen;
    neem(b, &job);
    job.voorbeeld = false;
    neem_codes(t, job);
    return open_job(&job);
}

std::string XPRT_CODE(int n) {
    if (n == CAP_INIT)
        return printopdracht.init;
    if (n == CAP_EXIT)
        return printopdracht.exit;
    for (const prtcode& c : jobcodes)
        if (n > 0 && c.nummer == n)
            return prt_bytes(c.tekst, VASTUIT(c.tekst).size());
    return "";
}

printwens XPRT_WENS() {
    printwens wens;
    static_assert(sizeof wens == sizeof gebruiker.vrij18);
    memcpy(&wens, gebruiker.vrij18, sizeof wens);
    if (wens.code == 0)
        wens.vlaggen |= PRT_VOORBEELD;
    return wens;
}

uint16_t XPRT_MASKER() {
    return gebruiker.opties ? gebruiker.opties : uint16_t{PRT_ALLES};
}

} // namespace zg
