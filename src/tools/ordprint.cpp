// ordprint: orders of a journal on paper, from the shell: to a printer, into a file, or on the standard output. It opens
// everything as readers do, so that it prints beside the programs at work, and for who may only read: an
// order as it was committed.
#include "order/bestanden.h"
#include "order/printorder.h"
#include "order/programma.h"
#include "order/start.h"
#include "order/wrk.h"
#include "print/bestemlijst.h"
#include "print/printjob.h"
#include "print/printtabel.h"
#include "shared/files.h"
#include "shared/iofil.h"
#include "shared/iotab.h"
#include "shared/maatbalk.h"
#include "sub/omserie.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/tekst.h"
#include "term/vast.h"
#include "tools/ordplaats.h"
#include "tools/paar.h"
#include "tools/uitvoer.h"
#include <CLI/CLI.hpp>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <new>
#include <unistd.h>

namespace {

using namespace zg;
namespace fs = std::filesystem;

struct Wens {
    std::string journaal, printer, uit, blad = "short";
    int nummer = 0, breedte = 0, config = 0, kopieen = 1;
    bool zonder_prijzen = false;
};
Wens wens;

constexpr int BREEDTE = 80, BLADRIJEN = 64;

// Before a report ends the tool: a job that was begun goes.
void laat_job() {
    if (printopdracht.open)
        prt_job_weg();
}

// The open journal's orders that are meant, each onto the open job; how many, and how many lines couldn't be read.
int druk_orders(ordhandle* jrn, int* onleesbaar) {
    static const std::map<std::string, Orderblad> BLADEN = {
        {"short", Orderblad::kort}, {"full", Orderblad::volledig}, {"branch", Orderblad::filialen}};
    const orderafdruk hoe{BLADEN.at(wens.blad), !wens.zonder_prijzen};
    int aantal = 0;
    for (bool er = ord_eerste_order(jrn); er; er = ord_volgende_order(jrn)) {
        if (wens.nummer && kop.ordernummer != wens.nummer)
            continue;
        const int32_t plaats = jrn->offset;
        const ordkop eigen = kop;
        std::vector<ors_ingang> regels;
        while (ord_kind(jrn, 'O'))
            if (jrn->tag == 'D')
                regels.push_back({static_cast<uint16_t>(regels.size() + 1), 0, jrn->laatste_m, jrn->offset});
        kop = eigen;
        if (!registermodus) {
            jrn->offset = plaats;
            ord_keur_order(jrn);
        }
        aantal += print_order(hoe, regels, plaats, onleesbaar) ? 1 : 0;
        ord_lees_op(jrn, plaats);
    }
    return aantal;
}

// The codes of the printers of that name, as it is typed.
std::vector<uint16_t> zoek_printer(const printtabellen& t, const std::string& naam) {
    std::vector<uint16_t> uit;
    for (const prtrec& p : t.printers)
        if (p.code != PRT_SCHERM && strcasecmp(CP850UTF8(VASTTEKST(p.naam)).c_str(), naam.c_str()) == 0)
            uit.push_back(p.code);
    return uit;
}

// The one way to print that is meant: "Laser" by its first connection, "Laser/2" by another; of several configurations those
// of 80 columns where no width was asked for. False when there is none, or more than one; told.
bool zoek_bestemming(const printtabellen& t, Bestemming* uit) {
    std::vector<uint16_t> codes = zoek_printer(t, wens.printer);
    uint8_t verbinding = 0;
    if (const size_t streep = wens.printer.rfind('/'); codes.empty() && streep != std::string::npos) {
        const char *van = wens.printer.data() + streep + 1, *tot = wens.printer.data() + wens.printer.size();
        const auto [eind, fout] = std::from_chars(van, tot, verbinding);
        if (fout == std::errc() && eind == tot && verbinding)
            codes = zoek_printer(t, wens.printer.substr(0, streep));
    }
    if (codes.size() != 1)
        return klacht(wens.printer,
                      codes.empty() ? "no such printer" : "more than one printer has this name"),
               false;
    std::vector<Bestemming> over;
    for (const Bestemming& b : prt_bestemmingen(t, PRT_ALLES))
        if (b.printer.code == codes[0] && (!verbinding || b.verbinding.nummer == verbinding) &&
            (!wens.config || b.config.nummer == wens.config) &&
            (!wens.breedte || b.config.kolommen == wens.breedte) &&
            (over.empty() || b.verbinding.nummer == over[0].verbinding.nummer))
            over.push_back(b);
    auto breed = [](const Bestemming& b) { return b.config.kolommen == BREEDTE; };
    if (over.size() > 1 && std::any_of(over.begin(), over.end(), breed))
        std::erase_if(over, [&](const Bestemming& b) { return !breed(b); });
    if (over.empty())
        return klacht(wens.printer, "no such connection or configuration"), false;
    if (over.size() > 1) {
        std::string welke;
        for (const Bestemming& b : over) {
            std::string naam = VASTTEKST(b.config.omschrijving);
            prt_blank(naam.data(), naam.size());
            welke += "\n  " + std::to_string(b.config.nummer) + " " + CP850UTF8(naam);
        }
        return klacht(wens.printer,
                      "more than one configuration will do; --configuration says which:" + welke),
               false;
    }
    *uit = over[0];
    return !VASTLEEG(uit->verbinding.apparaat) ||
           (klacht(wens.printer, "this connection has no device"), false);
}

std::ifstream spool; // of a job for the standard output

// A job of our own: into `uit`, or (empty) only onto its spool file.
bool open_job(const std::string& titel) {
    printjob job{};
    job.kolommen = wens.breedte ? wens.breedte : BREEDTE;
    job.staand = job.kolommen <= BREEDTE;
    job.kopieen = 1;
    job.titel = titel;
    if (wens.uit.empty()) {
        const std::string map = fs::temp_directory_path().string(), pad = IOTMPNAM(map.c_str(), "PR");
        if (pad.empty() || !prt_job_open(job, pad))
            return klacht(map, strerror(errno)), false;
        spool.open(pad, std::ios::binary);
        IOUNLINK(pad.c_str()); // without a name it can't be left behind
        return true;
    }
    const fs::path doel = wens.uit;
    const std::string map = doel.parent_path().string();
    if (const std::string bezet = uitvoer_bezet(wens.uit, false); !bezet.empty() || fs::exists(doel))
        return klacht(wens.uit, bezet.empty() ? strerror(EEXIST) : bezet), false;
    if (!prt_bestaat(Printweg::map, map))
        return klacht(wens.uit, "nothing is printed there"), false;
    job.weg = Printweg::bestand;
    job.apparaat = wens.uit;
    job.rijen = BLADRIJEN;
    job.tekens = doel.extension() == ".pdf" ? "pdf" : "utf-8";
    return prt_job_begin(job, map) || (klacht(map, strerror(errno)), false);
}

// What stands on the spool file, in UTF-8.
int naar_uitvoer() {
    const Jobeind eind = prt_job_sluit(false);
    int uitkomst = GOED;
    if (eind == Jobeind::fout)
        uitkomst = (klacht(printopdracht.spool, strerror(printopdracht.fout)), NIET_TE_OPENEN);
    for (std::string regel; uitkomst == GOED && std::getline(spool, regel);)
        puts(CP850UTF8(VASTTRIM(regel)).c_str());
    if (fflush(stdout) != 0 || ferror(stdout))
        uitkomst = (klacht("", "standard output: write failed"), NIET_TE_OPENEN);
    return uitkomst;
}

// GOED with a job open.
int begin(const std::string& titel) {
    if (wens.printer.empty())
        return open_job(titel) ? GOED : NIET_TE_OPENEN;
    printtabellen t;
    Bestemming b;
    if (!prt_lees(&t))
        return klacht("", "the print directory can't be read"), NIET_TE_OPENEN;
    if (!zoek_bestemming(t, &b))
        return FOUT_GEBRUIKT;
    return prt_open_op(b, t, wens.kopieen, titel.c_str()) ? GOED : NIET_TE_OPENEN;
}

int print(ordhandle* jrn) {
    weer_schrijven(); // print tables may be made, and what is left of other jobs is looked at
    const int open = begin(fs::path(wens.journaal).filename().string());
    alleen_lezen(true); // the job alone is made
    if (open != GOED)
        return open;
    int onleesbaar = 0;
    const int aantal = druk_orders(jrn, &onleesbaar);
    if (onleesbaar)
        klacht(wens.journaal, std::to_string(onleesbaar) + " lines can't be read");
    if (aantal == 0) {
        XPRT_STAAK();
        return onleesbaar ? FOUT_GEVONDEN : (klacht(wens.journaal, "no such order"), FOUT_GEVONDEN);
    }
    const bool naar_elders = !wens.printer.empty() || !wens.uit.empty();
    const int uit = !naar_elders ? naar_uitvoer() : XPRT_CLOSE() ? GOED : NIET_TE_OPENEN;
    return uit == GOED && onleesbaar ? FOUT_GEVONDEN : uit;
}

int doe() {
    Ordplaats plaats;
    if (!ord_plaats(wens.journaal, &plaats) || plaats.werk || !plaats.leverancier)
        return klacht(wens.journaal, "not called SEASON/ORDnnnn.JRN"), FOUT_GEBRUIKT;
    const int fd = open_gewoon(wens.journaal, O_RDONLY);
    if (fd < 0)
        return klacht(wens.journaal, openreden(errno)), NIET_TE_OPENEN;
    close(fd);
    if (!wens.uit.empty())
        wens.uit = fs::absolute(wens.uit).string();
    seizoensmap = plaats.seizoen;
    if (!IOCHDIR(plaats.map.c_str()) || access("DTSYS.TXT", R_OK) != 0)
        return klacht(plaats.map + "/DTSYS.TXT", strerror(errno)), NIET_TE_OPENEN;
    alleen_lezen();
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    sys_lees();
    iofil('O', 0, nullptr);
    registermodus = register_aanwezig();
    gekozen_leverancier = static_cast<uint16_t>(plaats.leverancier);
    bestanden_open(true);
    werk = ord_open_jrn(seizoensmap.c_str(), plaats.leverancier, O_RDONLY);
    if (!werk)
        return klacht(wens.journaal, strerror(errno)), NIET_TE_OPENEN;
    const int uitkomst = print(werk);
    ord_sluit(werk);
    werk = nullptr;
    balk_sluit();
    bestanden_sluit();
    return uitkomst;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("ordprint", laat_job);
    CLI::App app{"print orders of a journal.\nIt reads beside programs at work and keeps nobody out.",
                 "ordprint"};
    tool_kop(app,
             "0 good, 1 no such order or lines that can't be read, 2 used wrong, 3 cannot open or print.");
    app.add_option("JOURNAL", wens.journaal, "SEASON/ORDnnnn.JRN of a data directory")->required();
    app.add_option("-n,--number", wens.nummer, "only the order with this number")
        ->check(CLI::Range(1, INT_MAX));
    app.add_option("-f,--form", wens.blad, "short, full, or branch: a sheet for each")
        ->check(CLI::IsMember({"short", "full", "branch"}));
    app.add_flag("-x,--without-prices", wens.zonder_prijzen, "without prices and amounts");
    const CLI::Validator iets([](const std::string& s) { return std::string(s.empty() ? "is empty" : ""); },
                              "");
    auto* printer =
        app.add_option("-p,--printer", wens.printer, "name of a printer, or name/connection")->check(iets);
    app.add_option("-o,--output", wens.uit, "a new file; a PDF when it ends in .pdf")
        ->check(iets)
        ->excludes(printer);
    app.add_option("-w,--width", wens.breedte, "columns")->check(CLI::IsMember({40, 80, 132}));
    app.add_option("-C,--configuration", wens.config, "number of a configuration of the printer")
        ->check(CLI::Range(1, 255))
        ->needs(printer);
    app.add_option("-c,--copies", wens.kopieen, "copies, on a printer")->check(CLI::Range(1, 20));
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    return doe();
}
