// The full registration of a firm that has used it for years: 100,000 series, a million labels, an order of 1,000 lines and
// 100,000 pieces. Each step in the program's own routines, beside the bare system calls that its reads and writes ask for
// (bench/vloer.h). What is mapped is read without any, so these are noted where nothing is mapped, in a run of its own on a
// copy of the firm. Prints medians of processor time. Status 1 when a step takes too many times that or makes more calls
// than it should, or when the operators' check finds anything afterwards. usage: bench_register
// bench_register --beside [SERIES]: instead of that, how long a line saved and a commit take at most while zgcheck looks at
// the directory, and without it.
#include "bench/meting.h"
#include "bench/spoor.h"
#include "bench/vloer.h"
#include "order/bestanden.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/regelstam.h"
#include "order/register.h"
#include "order/wrk.h"
#include "shared/ean.h"
#include "shared/files.h"
#include "shared/ioeti.h"
#include "shared/iofil.h"
#include "shared/iotab.h"
#include "store/rebuild.h"
#include "sub/omserie.h"
#include "sub/serdel.h"
#include "sub/serzoek.h"
#include "support/demomap.h"
#include "support/ordbytes.h"
#include "term/toets.h"
#include "term/vast.h"
#include <array>
#include <filesystem>
#include <functional>
#include <numeric>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zg;
using namespace zg::test;
using namespace meting;

namespace {

int SERIES = 100'000;
constexpr int REGELS = 1000, MAATAANTAL = 6;
constexpr int PER_REGEL = 100, PER_SERIE = 9; // labels of a series of the order, of any other
constexpr int32_t GROEP = 2100, ORDER = 1;
constexpr uint16_t MERK = 101, MERKEN = 10;                           // all that there are
constexpr uint16_t LEV = 12, DATUM = 42430, VAN = 42450, TOT = 42480; // 1 March 2016
constexpr uint8_t MAATBITS = 0x7E;
std::string kopieen; // where the copies of the data directory come

// ---- the firm

// Series of the order first, each group a thousand.
seriesleutel sleutel(int nr) {
    return {GROEP + nr / 1000, static_cast<uint16_t>(1 + nr % 100), static_cast<uint16_t>(1 + nr / 100 % 10)};
}

int labels_van(int nr) {
    return nr < REGELS ? PER_REGEL : PER_SERIE;
}
int blokken_van(int nr) {
    return (labels_van(nr) + ETIPLAATSEN - 1) / ETIPLAATSEN;
}

template <class R> void erbij(std::string* uit, const R& rec) {
    uit->append(reinterpret_cast<const char*>(&rec), sizeof rec);
}

int bloktotaal() {
    int uit = 0;
    for (int nr = 0; nr < SERIES; nr++)
        uit += blokken_van(nr);
    return uit;
}

void maak_series(const std::vector<int32_t>& koppen) {
    std::string uit;
    for (int nr = 0; nr < SERIES; nr++) {
        serrec s{};
        s.serie = sleutel(nr);
        s.merk = nr < REGELS ? uint16_t{MERK} : static_cast<uint16_t>(MERK + nr % MERKEN);
        s.jaar = 2016, s.seizoen = 'Z', s.doelgroep = ' ', s.maatsoort = 1, s.etiketsoort = 1;
        VASTIN(s.model, "M" + std::to_string(nr / 10 % 1000));
        VASTIN(s.dessin, "D" + std::to_string(nr));
        s.maten[0] = MAATBITS;
        s.leverancier = LEV;
        s.levering_van = VAN, s.levering_tot = TOT, s.laatste_order = DATUM;
        s.in_nota = nr < REGELS ? labels_van(nr) : 0;
        s.voorraad = labels_van(nr) - s.in_nota;
        s.regtype = 1;
        s.etiketkop = koppen[static_cast<size_t>(nr)];
        s.stempel = serie_stempel(DATUM - 100, 0);
        s.nummer = nr + 1;
        erbij(&uit, s);
    }
    schrijf_bestand("DTSER.TXT", uit);
}

void maak_prijzen() {
    std::string sets, groepen;
    for (int nr = 0; nr < SERIES; nr++) {
        prijsset set{};
        set.serie = sleutel(nr);
        set.setnr = LEV, set.tot = PRIJS_TOT, set.van = DATUM - 400, set.koersfactor = 10000;
        set.maten[0] = MAATBITS;
        memcpy(set.valuta, "EUR", 3);
        set.groep = 2 * nr;
        erbij(&sets, set);
        for (int g = 0; g < 2; g++) {
            prijsgroeprec rec{};
            rec.serie = set.serie, rec.setnr = set.setnr, rec.tot = set.tot;
            rec.maten[0] = g ? 0x70 : 0x0E;
            memcpy(rec.valuta, set.valuta, sizeof set.valuta);
            rec.bruto = 2000 + 500 * g, rec.netto = 1900 + 500 * g;
            rec.volgende = g ? -1 : 2 * nr + 1;
            erbij(&groepen, rec);
        }
    }
    schrijf_bestand("DTIPA.TXT", sets);
    schrijf_bestand("DTIPG.TXT", groepen);
}

void maak_etiketten(const std::vector<int32_t>& koppen) {
    std::string uit(static_cast<size_t>(bloktotaal()) * sizeof(etiblok), '\0');
    for (int nr = 0; nr < SERIES; nr++) {
        const bool besteld = nr < REGELS;
        etiket l{};
        l.serie = sleutel(nr);
        l.leverancier = LEV, l.orderdatum = DATUM, l.levering_tot = TOT, l.maatsoort = 1;
        l.status = besteld ? ETI_ORDER : ETI_VOORRAAD;
        l.levering_van = besteld ? VAN : 0;
        l.ordernummer = besteld ? ORDER : 0;
        l.prijs = 4995, l.locatie = GEEN_MAGAZIJN;
        for (int k = 0; k < blokken_van(nr); k++) {
            const int32_t blok = koppen[static_cast<size_t>(nr)] + k;
            etiblok b{};
            b.serie = l.serie;
            b.etiketsoort = 1, b.volgende = k + 1 < blokken_van(nr) ? blok + 1 : -1;
            for (int i = k * ETIPLAATSEN; i < std::min((k + 1) * ETIPLAATSEN, labels_van(nr)); i++) {
                l.maat = static_cast<uint8_t>(1 + i % MAATAANTAL);
                l.filiaal = static_cast<uint8_t>(i % 2);
                l.inkoop = l.netto = l.maat > 3 ? 2400 : 1900;
                te_traag |= !eti_pak(l, nullptr, b.plaats[i % ETIPLAATSEN]);
            }
            memcpy(&uit[static_cast<size_t>(blok) * sizeof b], &b, sizeof b);
        }
    }
    schrijf_bestand("DTETI.TXT", uit);
}

// A code for every size. Answers the last one's number.
int32_t maak_codes() {
    std::string uit;
    int32_t teller = 0;
    for (int nr = 0; nr < SERIES; nr++)
        for (uint8_t maat = 1; maat <= MAATAANTAL; maat++) {
            const seriesleutel s = sleutel(nr);
            eanrec e{};
            VASTIN(e.code, ean_maat(++teller));
            e.soort = 'M', e.maat = maat;
            e.artikelgroep = s.artikelgroep, e.kleur = s.kleur, e.volgnummer = s.volgnummer;
            erbij(&uit, e);
        }
    schrijf_bestand("DTEAN.TXT", uit);
    return teller;
}

void maak_order() {
    ordkop k = kop_op(DATUM);
    k.toeslag = 10000, k.ordernummer = ORDER;
    VASTIN(k.valuta, "EUR");
    std::string jrn = record('O', k);
    for (int r = 0; r < REGELS; r++) {
        ordmodel m{};
        m.merk = MERK, m.maatsoort = 1, m.artikelgroep = GROEP, m.etiketsoort = 1;
        VASTIN(m.model, "M" + std::to_string(r / 10));
        if (r % 10 == 0)
            jrn += record('M', m);
        const seriesleutel s = sleutel(r);
        orddessin d{};
        d.kleur = s.kleur, d.volgnummer = s.volgnummer, d.geregistreerd = 1, d.regtype = 1, d.doelgroep = ' ';
        d.tijdstempel = static_cast<uint16_t>(r);
        VASTIN(d.dessin, "D" + std::to_string(r));
        d.maten[0] = MAATBITS;
        jrn += record('D', d);
        for (uint8_t maat = 1; maat <= MAATAANTAL; maat++)
            jrn += record('S', ordmaat{maat, {}, maat > 3 ? 2500 : 2000, maat > 3 ? 2400 : 1900});
    }
    schrijf_bestand("2016Z/ORD0012.JRN", jrn);
    ordnrrec n{};
    n.ordernummer = ORDER, n.leverancier = LEV, n.jaar = 2016, n.seizoen = 'Z', n.orderdatum = DATUM;
    std::string uit;
    erbij(&uit, n);
    schrijf_bestand("DTORDNR.TXT", uit);
}

void maak_firma() {
    std::vector<int> orde(SERIES); // in which they got their labels
    std::iota(orde.begin(), orde.end(), 0);
    std::shuffle(orde.begin(), orde.end(), std::mt19937(20));
    std::vector<int32_t> koppen(SERIES);
    int32_t blok = 0;
    for (const int nr : orde) {
        koppen[static_cast<size_t>(nr)] = blok;
        blok += blokken_van(nr);
    }
    maak_series(koppen);
    maak_prijzen();
    maak_etiketten(koppen);
    maak_order();
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    const auto zet = [](int32_t record, auto waarde) {
        decltype(waarde) was;
        iotab('X', &record, &was, SYS_RECORD);
        te_traag |= !iotab('W', &record, &waarde, SYS_RECORD);
    };
    zet(2, systeller{SERIES, {}});
    zet(4, sysetiket{bloktotaal(), bloktotaal(), 0, {}});
    zet(5, systeller{ORDER, {}});
    zet(9, sysprijs{2 * SERIES, 2 * SERIES, {}});
    zet(14, systeller{maak_codes(), {}});
    for (const char* naam : {"DTSER", "DTIPA", "DTEAN", "DTORDNR"})
        te_traag |= IXBLDIX(naam) != 1;
    iotab('C', &nr, nullptr, SYS_RECORD);
    // Files that have grown record by record: a small write into one that came in one piece costs ten times as much.
    for (const char* naam : {"DTSER.TXT", "DTSER.INX", "DTIPA.TXT", "DTIPA.INX", "DTEAN.TXT", "DTEAN.INX",
                             "DTETI.TXT", "DTIPG.TXT"}) {
        spoor::kopieer(naam, "gegroeid");
        te_traag |= rename("gegroeid", naam) != 0;
    }
}

bool gaaf() {
    const std::string opdracht = programma("zgcheck") + " -q . >&2";
    return system(opdracht.c_str()) == 0;
}

// ---- what the screens do

void toetsen(std::initializer_list<int32_t> rij) { // as if they had been typed ahead
    for (auto t = std::rbegin(rij); t != std::rend(rij); ++t)
        TOETSTERUG(*t);
}

void open_order() {
    journaal = ord_open_jrn("2016Z", LEV, O_RDWR);
    ord_eerste_order(journaal);
    te_traag |= !wrk_open() || order_alleen_lezen;
}

void weg_ermee() {
    ord_sluit(werk);
    ord_sluit(journaal);
    werk = journaal = nullptr;
    wrk_ruim_op();
}

// The cursor's line under its lock, as for a change.
void neem_regel(int nr) {
    regelingang.regel = static_cast<uint16_t>(nr);
    te_traag |= !ors_lees('R', &regelingang) || !regel_lees(regelingang, &regel_nu) ||
                serie_laad(&regel_nu, true, true) != Serie::gelezen;
    regelstam_lees(&regel_nu);
    te_traag |= !regel_balk(regel_nu);
    regel_advies(&regel_nu);
}

// So many pieces in two branches.
void zet_stuks(int stuks) {
    aantalmatrix m;
    fmclear(&m);
    for (int i = 0; i < stuks; i++)
        fmadd(&m, i % 2, 1 + i % MAATAANTAL, 1);
    regel_nu.termen.clear();
    lt_schrijf(&regel_nu.termen, VAN, TOT, m);
    regel_nu.nota_aantallen = regel_nu.order_aantallen = m;
}

void bewaar() {
    const prijsrijen prijzen = regel_nu.prijzen;
    te_traag |= !serie_past(regel_nu) || !prijzen_kunnen(regel_nu, prijzen) ||
                !wrk_regel_vervang(&regelingang, &regel_nu) || !serie_bewaar(&regel_nu, false, prijzen);
    serie_los();
    register_ververs();
}

void wis_regel(int nr) {
    neem_regel(nr);
    int over = 0;
    te_traag |= !label_wis(&regel_nu, &over) || over != 0 ||
                !serie_verwijderen(dtser, &regel_nu.serie, false) || !wrk_regel_uit(&regelingang);
    serie_los();
}

// ---- the steps

FILE* uitslag;
bool zonder_kaart; // this run only finds out what the steps ask for
// What that one found out, by step in their order: shared with the process that the steps run in.
using Vloeren = std::array<vloer::Meting, 64>;
Vloeren& vloeren = *static_cast<Vloeren*>(
    mmap(nullptr, sizeof(Vloeren), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
size_t stapnr; // of the step that comes next

// A step makes no more calls than what it has to read and write asks for, and takes three times their time at most; less
// than a millisecond, mostly the screen's, isn't looked at.
void toon_stap(const char* naam, long calls, const vloer::Meting& m) {
    constexpr double MAAL = 3, SNEL_MS = 1;
    vloer::Meting& v = vloeren.at(stapnr++);
    if (zonder_kaart) {
        v = m;
        return;
    }
    const bool traag = (m.ms > MAAL * v.vloer && m.ms > SNEL_MS) || m.calls > calls;
    fprintf(uitslag, "%-44s %9.3f ms %s %7ld calls %9.3f ms %7ld calls %6.2f\n", naam, m.ms,
            traag ? "SLOW" : "    ", m.calls, v.vloer, v.calls, m.ms / v.vloer);
    te_traag |= traag;
}
void stap(const char* naam, long calls, const std::function<void()>& voor, const std::function<void()>& doe) {
    toon_stap(naam, calls, vloer::meet(voor, doe, kopieen));
}

// Keys on the order screen, each beside the others: what they cost on top of coming and going.
void order_toetsen() {
    const auto scherm = [](int aantal, int32_t toets) {
        return vloer::meet([] {},
                           [=] {
                               toetsen({K_ESC});
                               for (int i = 0; i < aantal; i++)
                                   TOETSTERUG(toets);
                               order_scherm();
                           },
                           kopieen);
    };
    constexpr int KEREN = 50;
    const vloer::Meting leeg = scherm(0, 0);
    toon_stap("the order screen, left at once", 11L * REGELS, leeg);
    for (const auto& [toets, naam] : {std::pair{K_DOWN, "one line down"}, {K_PGDN, "a page down"}}) {
        vloer::Meting m = scherm(KEREN, toets);
        m = {(m.ms - leeg.ms) / KEREN, (m.vloer - leeg.vloer) / KEREN, (m.calls - leeg.calls) / KEREN};
        toon_stap(naam, 15L * 12, m);
    }
}

void zoeken() {
    WINOPEN1(5, 1, 10, 80);
    WINBOX(nullptr);
    static int groep; // another each time, or the leaf in hand would answer
    serrec rec;
    const auto zoek = [&](const char* letters, const std::string& waarde,
                          std::initializer_list<int32_t> rij) {
        toetsen(rij);
        for (size_t i = waarde.size(); i-- > 0;)
            TOETSTERUG(waarde[i]);
        rec = {};
        serie_zoek(1, 2, letters, &rec);
    };
    const auto volgende = [] { groep = GROEP + (groep + 37) % 100; };
    stap("search, group: the first series", 10, volgende, [&] {
        zoek("AKV", std::to_string(groep), {K_ENTER, K_ESC});
    });
    stap("the list of series from there on", 150, volgende, [&] {
        zoek("AKV", std::to_string(groep), {K_ENTER, K_F5, K_ESC, K_ESC});
    });
    stap("search, brand and model: the first series", 10L * 100, volgende, [&] {
        zoek("RMAKV", std::to_string(MERK + groep % MERKEN), {K_ENTER, K_ESC});
    });
    WINCLOSE();
}

void wijzig_kop() {
    kop.omschrijving[0] = static_cast<char>(kop.omschrijving[0] ^ 1);
    werk->offset = 0, werk->tag = 'O';
    te_traag |= !ord_schrijf(werk);
}

void stappen() {
    const auto niets = [] {};
    stap(
        "open the order: work file", 60,
        [] {
            if (werk)
                weg_ermee();
        },
        open_order);
    stap("open the order: its totals", 11L * REGELS, niets, order_totalen);
    order_scherm_los();
    order_toetsen();
    const auto stuks = [](int n) {
        neem_regel(500);
        zet_stuks(n);
    };
    stap(
        "save a line: 90 labels made", 4L * PER_REGEL,
        [&] {
            stuks(10);
            bewaar();
            stuks(100);
        },
        bewaar);
    stap(
        "save a line of 100 pieces as it is", 250, [&] { stuks(100); }, bewaar);
    stap("discount over all lines", 2L * PER_REGEL * REGELS, niets, [] {
        const int16_t was = kop.korting;
        kop.korting = was ? 0 : -500;
        te_traag |= !order_korting(was);
    });
    int regel = 100;
    stap("delete a line and its series", 4L * PER_REGEL + 150L * MAATAANTAL, niets,
         [&] { wis_regel(regel += 20); });
    zoeken();
    stap(
        "commit", 60,
        [] {
            if (journaal && !werk)
                ord_sluit(journaal);
            if (!werk)
                open_order();
            wijzig_kop();
        },
        [] { te_traag |= !wrk_sluit(); });
}

// Lines saved and orders committed one behind another as long as the check takes, and as long without one, by the clock on
// the wall.
void pauzes() {
    constexpr int KEREN = 3, PER_COMMIT = 25;
    double duur = 0;
    const auto ronde = [&](const char* naam, const std::function<bool()>& door) {
        std::vector<double> regels, commits;
        for (int nr = 1; door(); nr++) {
            if (nr % PER_COMMIT == 1) {
                open_order();
                wijzig_kop();
            }
            neem_regel(500 + nr % 100);
            zet_stuks(nr % 2 ? 10 : 100);
            auto t0 = klok::now();
            bewaar();
            regels.push_back(ms_sinds(t0));
            if (nr % PER_COMMIT == 0) {
                t0 = klok::now();
                te_traag |= !wrk_sluit();
                commits.push_back(ms_sinds(t0));
                ord_sluit(journaal);
                journaal = nullptr;
            }
        }
        if (werk)
            weg_ermee();
        for (auto& [wat, v] : {std::pair{"line", &regels}, {"commit", &commits}}) {
            std::ranges::sort(*v);
            const auto op = [&](double deel) {
                return (*v)[static_cast<size_t>(deel * double(v->size() - 1))];
            };
            fprintf(uitslag, "%-26s %-7s %7zu %10.3f ms %10.3f ms %10.3f ms\n", naam, wat, v->size(), op(0.5),
                    op(0.99), op(1));
        }
    };
    for (int keer = 0; keer < KEREN; keer++) {
        const auto begin = klok::now();
        const pid_t kind = fork();
        if (kind == 0) {
            const std::string zgcheck = programma("zgcheck");
            if (freopen("/tmp/w-mens/keuring", "ae", stdout))
                execl(zgcheck.c_str(), "zgcheck", "-q", ".", nullptr);
            _exit(127);
        }
        int status = 0;
        ronde("beside zgcheck", [&] { return waitpid(kind, &status, WNOHANG) == 0; });
        duur = ms_sinds(begin);
        te_traag |= status != 0;
        const auto daarna = klok::now();
        ronde("without", [&] { return ms_sinds(daarna) < duur; });
    }
    fprintf(uitslag, "zgcheck took %.1f s\n", duur / 1000);
}

bool naast_keuring;

int meet_alles() {
    te_traag = false;
    uitslag = fopen("uitslag", "we");
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    sys_lees();
    iofil('O', 0, nullptr);
    registermodus = true;
    seizoensmap = "2016Z", gekozen_leverancier = LEV, gekozen_jaar = 2016, gekozen_letter = 'Z';
    sessie = sessienummer = 1;
    te_traag |= !iotab('X', &sessie, &gebruiker, SYS_GEBRUIKER); // held, as the program holds it
    bestanden_open();
    SCRINIT();
    naast_keuring ? pauzes() : stappen();
    SCREXIT();
    order_scherm_los();
    bestanden_sluit();
    fclose(uitslag);
    return te_traag;
}

// All steps in a terminal of their own, with or without mapped files. Answers the lines that they wrote.
std::string draai(bool kaart) {
    zonder_kaart = !kaart;
    setenv("ZGKAART", kaart ? "1" : "0", 1);
    Opties o;
    o.klok = "2016-03-01 12:00:00";
    Terminal t(meet_alles, o);
    const int status = t.einde(1'200'000);
    if (status != 0)
        printf("status %d\n%s\n", status, t.scherm().c_str());
    te_traag |= status != 0;
    return lees_bestand("uitslag");
}

} // namespace

int main(int argc, char** argv) {
    naast_keuring = argc > 1 && strcmp(argv[1], "--beside") == 0;
    if (naast_keuring && argc > 2)
        SERIES = std::max(REGELS, atoi(argv[2]));
    const DemoMap map("data/demo", "--empty-register");
    const TijdelijkeMap ernaast(false);
    kopieen = ernaast.pad() + "/kopie";
    const std::string zelfde = ernaast.pad() + "/firma";
    IOCHDIR(map.pad().c_str());
    maak_firma();
    te_traag |= !gaaf();
    if (naast_keuring) {
        uintmax_t bytes = 0;
        for (const auto& e : std::filesystem::recursive_directory_iterator("."))
            bytes += e.is_regular_file() ? e.file_size() : 0;
        printf("%d series, %.0f MB\n", SERIES, double(bytes) / 1e6);
        printf("%-26s %15s %13s %13s %13s\n%s", "", "", "median", "99 of 100", "longest",
               draai(true).c_str());
        return te_traag;
    }
    std::filesystem::copy(map.pad(), zelfde, std::filesystem::copy_options::recursive);
    IOCHDIR(zelfde.c_str());
    draai(false);
    IOCHDIR(map.pad().c_str());
    const std::string uit = draai(true);
    printf("%-44s %12s %18s %15s\n%s", "", "the step", "its calls", "what it asks for, unmapped",
           uit.c_str());
    const auto t0 = klok::now();
    te_traag |= !gaaf();
    printf("%-44s %9.3f ms\n", "zgcheck of all of it", ms_sinds(t0));
    return te_traag;
}
