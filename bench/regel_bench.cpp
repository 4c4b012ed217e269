// A line on the order at its largest, a firm of 250 branches and a size type of 95 sizes: the grid under the buyer's
// keys, spreading over the branches, the walks over an order of 1,000 lines, a line into a work file of 10 MB. Prints
// medians and system calls on files, counted at the table that all files go through. Status 1 when a step takes
// longer than it may. usage: bench_regel
#include "bench/meting.h"
#include "order/bestanden.h"
#include "order/matrix.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/regelstam.h"
#include "order/verdelen.h"
#include "order/wrk.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "price/prijsscherm.h"
#include "shared/files.h"
#include "shared/iofil.h"
#include "shared/iotab.h"
#include "shared/maatbalk.h"
#include "sub/matrixinvoer.h"
#include "support/demomap.h"
#include "support/ordbytes.h"
#include "term/toets.h"
#include "term/vast.h"
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <unistd.h>

using namespace zg;
using namespace zg::test;
using namespace meting;

namespace {

constexpr int FILIALEN = 250;
constexpr uint8_t SOORT = 60; // its size type
constexpr double BEELD_MS = 16, VERDEEL_MS = 100, KOPIE_X = 2;

// ---- the firm

void maak_firma() {
    int32_t nr = 7;
    iotab('O', &nr, nullptr, SYS_RECORD);
    bestanden_open();
    firma.filialen = FILIALEN;
    schrijf_bestand("DTFILGEG.TXT", "");
    iofil('O', 0, nullptr);
    for (int f = 0; f < FILIALEN; f++) {
        filiaalrec rec{};
        rec.nummer = static_cast<uint8_t>(f + 1);
        iofil('W', f, &rec);
    }
    mthandle* h = mtopen(mtstelsel(0), SOORT, 2);
    for (int p = 1; p <= MATEN; p++) {
        mtinfo info{};
        info.positie = static_cast<uint8_t>(p);
        VASTIN(info.naam, std::to_string(p));
        mtinsert(h, &info);
    }
    mtclose(h);
    regelgroep = {};
    regelgroep.artikelgroep = 2100;
    regelgroep.verdeelsoort = 'P';
    regelgroep.magazijn = 1;
    regelgroep.minimum = 2;
    regelgroep.magazijnpct = 10;
    for (int f = 0; f < FILIALEN; f++)
        regelgroep.perfiliaal[f] = static_cast<uint8_t>(1 + f % 7);
}

ordmodel model_nr(int nr) {
    ordmodel m{};
    m.merk = 103, m.maatsoort = SOORT, m.artikelgroep = 2100;
    VASTIN(m.model, nr == 0 ? std::string("ONS") : "M" + std::to_string(nr));
    return m;
}

// One line: twelve sizes in ten branches.
std::string regel_bytes(int nr) {
    orddessin d{};
    d.kleur = static_cast<uint16_t>(1 + nr % 500);
    std::string prijzen, uit = record('L', ordlevt{42050, 42080});
    const int eerste = 1 + nr % 80;
    for (int maat = eerste; maat < eerste + 12; maat++) {
        maat_aan(d.maten, maat);
        prijzen += record('S', ordmaat{static_cast<uint8_t>(maat), {}, 1000, 950});
    }
    for (int f = nr % 25; f < FILIALEN; f += 25)
        for (int maat = eerste; maat < eerste + 12; maat++)
            uit += record('F', ordfil{static_cast<uint8_t>(f), static_cast<uint8_t>(maat), 0, 3});
    return record('D', d) + prijzen + uit;
}

// One line of all sizes, each at a price of its own, in one branch.
std::string lange_regel(int nr) {
    orddessin d{};
    d.kleur = static_cast<uint16_t>(1 + nr % 500);
    std::string prijzen, uit = record('L', ordlevt{42050, 42080});
    for (int maat = 1; maat <= MATEN; maat++) {
        maat_aan(d.maten, maat);
        prijzen += record('S', ordmaat{static_cast<uint8_t>(maat), {}, 1000 + maat, 950 + maat});
        uit += record('F', ordfil{static_cast<uint8_t>(nr % FILIALEN), static_cast<uint8_t>(maat), 0, 3});
    }
    return record('D', d) + prijzen + uit;
}

// An order of so many lines of one model, open in its work file. Rate 0 is the rate of the day.
void open_order(int regels, std::string (*regel)(int) = regel_bytes, const char* valuta = "",
                uint32_t koers = 10000) {
    seizoensmap = "2016Z", gekozen_leverancier = 12, gekozen_jaar = 2016, gekozen_letter = 'Z';
    ordkop k = kop_op(42000);
    k.toeslag = 10500;
    k.koers = koers;
    VASTIN(k.valuta, valuta);
    std::string jrn = record('O', k) + record('M', model_nr(0));
    for (int r = 0; r < regels; r++)
        jrn += regel(r);
    schrijf_bestand("2016Z/ORD0012.JRN", jrn);
    journaal = ord_open_jrn("2016Z", 12, O_RDWR);
    ord_eerste_order(journaal);
    wrk_open();
    order_prijscontext();
    ors_ingang in{};
    ors_lees('F', &in);
    regel_lees(in, &regel_nu);
}

void sluit_order() {
    ord_sluit(werk);
    ord_sluit(journaal);
    werk = journaal = nullptr;
    wrk_ruim_op();
}

// ---- the steps

// A screen under keys: the median of an answer, and what it does to files.
void onder_toetsen(const std::function<void()>& scherm, const char* vooraf, const char* toetsen,
                   const char* naam, int rondes, long verwacht = 0) {
    Terminal t(
        [&] {
            SCRINIT();
            WINOPEN1(1, 1, SCHERM.lines - 1, 80);
            WINBOX(nullptr);
            aanroepen = 0;
            scherm();
            const long calls = aanroepen;
            SCREXIT();
            return static_cast<int>(std::min(calls, 100L));
        },
        Opties{});
    t.kalm();
    t.toetsen(vooraf);
    std::vector<double> ms;
    for (int i = 0; i < rondes; i++) {
        auto t0 = klok::now();
        t.reeks(toetsen);
        t.kalm();
        ms.push_back(ms_sinds(t0));
    }
    t.toetsen("<Esc><Esc>");
    const long calls = t.einde();
    toon(naam, mediaan(ms), BEELD_MS, calls);
    te_traag |= calls > verwacht;
}

void raster() {
    balk_open(mtstelsel(0), SOORT, nullptr);
    aantalmatrix m;
    fmclear(&m);
    for (int f = 0; f < FILIALEN; f++)
        for (int maat = 1; maat <= MATEN; maat++)
            fmadd(&m, f, maat, 1 + (f * maat) % 400);
    Matrixscherm s{};
    auto hand = [&](const char* sneltoetsen) {
        return [&, sneltoetsen] {
            s.sneltoetsen = sneltoetsen;
            matrix_begin(&s, 2, SCHERM.lines - 6, m);
            matrix_teken(&s, m);
            aanroepen = 0; // the branch numbers are read where the grid begins
            matrix_hand(&s, &m);
        };
    };
    onder_toetsen(hand(nullptr), "", "<PgDn>", "grid: a page down", 12);
    onder_toetsen(hand(nullptr), "", "7<Enter>", "grid: a cell booked, the next one open", 200);
    onder_toetsen(hand("qwertyuiopasdf"), "", "w", "grid, key by key: a piece booked", 200);
}

void verdelen() {
    balk_open(mtstelsel(0), SOORT, nullptr);
    regel_nu.model = model_nr(0);
    aantalmatrix m;
    for (char soort : {'P', 'A'})
        for (bool per_maat : {false, true}) {
            regelgroep.verdeelsoort = soort;
            instel15.optie13 = per_maat ? 4 : 0;
            long calls;
            const double ms = meet(
                [&] {
                    verdeel_vrij();
                    fmclear(&m);
                    for (int maat = 1; maat <= MATEN; maat++)
                        fmadd(&m, 0, maat, 999);
                },
                [&] { auto_verdelen(&m); }, &calls);
            const std::string naam = std::string("spread 95 x 999 pieces, '") + soort + "', memory " +
                                     (per_maat ? "per size" : "of all sizes");
            toon(naam.c_str(), ms, VERDEEL_MS, calls);
        }
}

void lange_order() {
    open_order(1000);
    long calls;
    ors_ingang in{};
    ors_lees('F', &in);
    double ms = meet([] { verdeel_vrij(); }, [&] { verdeel_herbouw(regel_nu, &in, 0); }, &calls);
    toon("the memory of a model from 1,000 lines", ms, BEELD_MS, calls);
    ms = meet([] {}, [] { order_totalen(); }, &calls);
    toon("the totals of 1,000 lines", ms, BEELD_MS, calls);
    size_t rijen = 0;
    ms =
        meet([] {}, [&] { rijen = matrix_bouw(Matrixkeuze::op_model, regel_nu.model).rijen.size(); }, &calls);
    toon("the order matrix of 1,000 lines", ms, BEELD_MS, calls);
    if (rijen != 501)
        printf("the matrix has %zu rows\n", rijen), te_traag = true;
    sluit_order();
}

// The groups of the line in hand from one on, painted in a terminal's window: what the program itself does for it.
double schilder_ms(int eerste, long* calls) {
    Terminal t(
        [&] {
            SCRINIT();
            WINOPEN1(12, 1, 13, 80);
            WINBOX(nullptr);
            up_scherm(1, 2, 14, false, false, 255, &regel_nu.prijzen);
            const double ms = meet([] { SCRCLREOW(1, 1); }, [&] { up_toon_pagina(eerste); }, calls);
            SCREXIT();
            schrijf_bestand("schilder", std::to_string(ms) + " " + std::to_string(*calls));
            return 0;
        },
        Opties{});
    double ms = 1e9;
    if (t.einde() != 0 || sscanf(lees_bestand("schilder").c_str(), "%lf %ld", &ms, calls) != 2)
        te_traag = true;
    return ms;
}

// Prices at their most: all sizes, in a currency that isn't the firm's own.
void prijzen() {
    const double TOTAAL_MS = 50, STAP_MS = 1;
    long calls, vast, koers;
    open_order(1000, lange_regel, "GBP", 13000);
    meet([] {}, [] { order_totalen(); }, &vast);
    sluit_order();
    open_order(1000, lange_regel, "GBP", 0);
    meet([] {}, [] { koers_vandaag("GBP"); }, &koers);
    std::vector<char> blok(256 * 1024);
    const double lezen = meet([] { lseek(werk->fd, 0, SEEK_SET); },
                              [&] {
                                  while (read(werk->fd, blok.data(), blok.size()) > 0) {
                                  }
                              },
                              &calls);
    printf("%-56s %9.3f ms\n", "the work file read by itself", lezen);
    double ms = meet([] {}, [] { order_totalen(); }, &calls);
    toon("the totals of 1,000 lines of 95 sizes, rate of the day", ms, TOTAAL_MS + lezen, calls);
    if (calls > vast + koers)
        printf("the rate is looked up more than once: %ld calls for one\n", koers), te_traag = true;
    balk_open(mtstelsel(0), SOORT, nullptr);
    ordertotalen totaal;
    ms = meet([] {}, [&] { regel_totaal(regel_nu, &totaal); }, &calls);
    toon("the totals of such a line", ms, STAP_MS, calls);
    prijsgroep_info groep{};
    up_volgende_groep(regel_nu.prijzen, {PK_MATEN, false}, &groep);
    ms = meet([] {},
              [&] {
                  up_vul(&regel_nu.prijzen.bruto, groep.maten, 12345);
                  up_netto_groep(&regel_nu.prijzen, &groep, 2.5);
                  up_inkoop_alle(&regel_nu.prijzen);
              },
              &calls);
    toon("a gross price for 95 sizes", ms, STAP_MS, calls);
    for (int maat = 1; maat <= MATEN; maat++)
        up_zet_maat(&regel_nu.prijzen, maat, 1000 + maat, 900 + maat);
    up_inkoop_alle(&regel_nu.prijzen);
    for (auto [eerste, naam] : {std::pair{0, "first"}, {90, "last"}})
        toon(("a page of 95 groups painted, the " + std::string(naam)).c_str(), schilder_ms(eerste, &calls),
             STAP_MS, calls);
    sluit_order();
}

// A copy of the work file that takes the place of the copy before it: what a changed file costs when nothing else is
// to be done. The system frees the old one when its last descriptor is closed.
void kopieer(const std::string& van, const std::string& naar) {
    static std::vector<char> blok(256 * 1024);
    const int in = open(van.c_str(), O_RDONLY | O_CLOEXEC), oud = open(naar.c_str(), O_RDONLY | O_CLOEXEC);
    const int uit = open((naar + "2").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0660);
    for (ssize_t n; (n = read(in, blok.data(), blok.size())) > 0;)
        if (write(uit, blok.data(), static_cast<size_t>(n)) != n)
            te_traag = true;
    close(in);
    close(uit);
    if (rename((naar + "2").c_str(), naar.c_str()) != 0)
        te_traag = true;
    if (oud >= 0)
        close(oud);
}

void regel_erbij() {
    open_order(5800);
    const std::string wrk = wrk_naam("WRK");
    std::vector<double> kopie, regel;
    long calls = 0;
    for (int i = 0; i < RONDEN; i++) {
        auto t0 = klok::now();
        kopieer(wrk, wrk + ".kopie");
        kopie.push_back(ms_sinds(t0));
        ors_ingang in{};
        ors_lees('F', &in);
        aanroepen = 0;
        t0 = klok::now();
        wrk_regel_in(&in, true, &regel_nu);
        regel.push_back(ms_sinds(t0));
        calls = aanroepen;
    }
    printf("%-56s %9.3f ms\n", "a copy of the work file in its place", mediaan(kopie));
    const std::string naam = "a line into it, " + std::to_string(std::filesystem::file_size(wrk) >> 20) +
                             " MB, " + std::to_string(aantal_regels) + " lines";
    toon(naam.c_str(), mediaan(regel), KOPIE_X * mediaan(kopie), calls);
    sluit_order();
}

} // namespace

int main() {
    DemoMap map;
    IOCHDIR(map.pad().c_str());
    maak_firma();
    tel_aanroepen();
    raster();
    verdelen();
    lange_order();
    prijzen();
    regel_erbij();
    bestanden_sluit();
    return te_traag;
}
