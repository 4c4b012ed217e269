// The builders, sessions and faults of bouw.h.
#include "bouw.h"
#include "price/ing_val.h"
#include "support/ordbytes.h"
#include "support/roepstoring.h"
#include "support/systeem.h"

namespace zg::test {

namespace {

ordkop kop_van(const Order& o) {
    ordkop k = kop_op(o.datum);
    k.status = static_cast<uint8_t>(o.status);
    k.korting = static_cast<int16_t>(o.korting);
    k.ordernummer = o.nummer;
    return k;
}

ordmodel model_van(const Model& m) {
    ordmodel r{};
    r.merk = static_cast<uint16_t>(m.merk);
    r.maatsoort = static_cast<uint8_t>(m.soort);
    r.artikelgroep = m.soort;
    VASTIN(r.model, "OOTDMSX"); // tag letters inside a text must fool nobody
    return r;
}

orddessin dessin_van(const Regel& l, bool geregistreerd = false) {
    orddessin d{};
    d.geregistreerd = geregistreerd;
    d.kleur = static_cast<uint16_t>(l.kleur);
    d.tijdstempel = static_cast<uint16_t>(l.tijd);
    for (const Maat& m : l.maten)
        d.maten[m.maat / 8] = static_cast<uint8_t>(d.maten[m.maat / 8] | 1 << m.maat % 8);
    return d;
}

std::string extra_van(int maat, char tag) {
    return std::string(1, tag) + "extra" + std::string(6, static_cast<char>(maat)) + "!";
}

void regel_bytes(std::string* uit, const Regel& l, bool alle, bool geregistreerd = false) {
    *uit += record('D', dessin_van(l, geregistreerd));
    *uit += tekst(4, l.tekst, alle);
    for (const Maat& m : l.maten) {
        *uit += record('S', ordmaat{static_cast<uint8_t>(m.maat), {}, m.bruto, m.netto});
        for (char tag : m.extra)
            *uit += tag + extra_van(m.maat, tag);
    }
    for (const Term& t : l.termen) {
        *uit += record('L', ordlevt{static_cast<uint16_t>(t.van), static_cast<uint16_t>(t.tot)});
        for (const Aantal& a : t.aantallen)
            *uit += record(
                'F', ordfil{static_cast<uint8_t>(a.filiaal), static_cast<uint8_t>(a.maat), 0, a.aantal});
    }
}

} // namespace

std::string bytes(const Order& o, bool werkbestand) {
    std::string uit;
    uit += record('O', kop_van(o));
    uit += tekst(1, o.levering, werkbestand);
    uit += tekst(2, o.betaling, werkbestand);
    for (const Model& m : o.modellen) {
        uit += record('M', model_van(m));
        uit += tekst(3, m.tekst, werkbestand);
        for (const Regel& l : m.regels)
            regel_bytes(&uit, l, werkbestand, o.nummer != 0);
    }
    return uit;
}

std::string bytes(const std::vector<Order>& orders) {
    std::string uit;
    for (const Order& o : orders)
        uit += bytes(o);
    return uit;
}

std::vector<Order> genummerd(std::vector<Order> orders) {
    for (size_t i = 0; i < orders.size(); i++)
        orders[i].nummer = 1000 + static_cast<int>(i);
    return orders;
}

std::vector<ors_ingang> index_van(const Order& o) {
    std::vector<ors_ingang> uit;
    Order tot = o;
    tot.modellen.clear();
    std::string voor = bytes(tot, true);
    for (const Model& m : o.modellen) {
        auto m_op = static_cast<int32_t>(voor.size());
        voor += record('M', model_van(m));
        voor += tekst(3, m.tekst, true);
        for (const Regel& l : m.regels) {
            uit.push_back(
                {static_cast<uint16_t>(uit.size() + 1), 0, m_op, static_cast<int32_t>(voor.size())});
            regel_bytes(&voor, l, true);
        }
    }
    return uit;
}

Regel maak_regel(int kleur) {
    Regel l{kleur, kleur % 3 ? "" : "dessin " + std::string(70, 'd'), {}, {}, 7 * kleur};
    for (int i = 0; i < 1 + kleur % 4; i++)
        l.maten.push_back({1 + i * 31, 1000 + kleur, 900 + kleur, kleur % 2 ? "" : i ? "EB" : "E"});
    for (int t = 0; t < kleur % 3; t++)
        l.termen.push_back({42000 + t, 42010 + t, {{0, 1, 5 + t}, {2, 1, kleur + 1}}});
    return l;
}

Order maak_order(int nummer, const std::vector<int>& regels_per_model) {
    Order o{42400 + nummer, nummer % 2 ? "levering\n" + std::string(200, 'l') : "", "betaling", {}};
    int kleur = nummer * 100;
    for (size_t i = 0; i < regels_per_model.size(); i++) {
        Model m{static_cast<int>(i) + 1, i % 2 ? "" : "opmerking", {}};
        for (int r = 0; r < regels_per_model[i]; r++)
            m.regels.push_back(maak_regel(++kleur));
        o.modellen.push_back(m);
    }
    return o;
}

OrderMap::OrderMap() {
    mkdir("2016Z", 0777);
    seizoensmap = "2016Z";
    gekozen_jaar = 2016;
    gekozen_letter = 'Z';
    gekozen_leverancier = 12;
    sessienummer = 3;
    gebruikersrecht = 'A';
    registermodus = false;
    firma.filialen = 3;
    VASTIN(instel15.valuta, "EUR");
    schrijf_bestand("DTSYS.TXT", "");
    EXPECT_EQ(truncate("DTSYS.TXT", 130'000), 0);
    Systeem::open();
    valuta_tabel(); // none; read here, before the forks
    regel_wis(&regel_nu);
}

OrderMap::~OrderMap() {
    ord_sluit(werk);
    ord_sluit(journaal);
    werk = journaal = nullptr;
    ors_wis();
    Systeem::sluit();
}

std::string pad(const char* ext) {
    return std::string("2016Z/ORD0012.") + ext;
}
std::string inhoud(const char* ext) {
    return lees_bestand(pad(ext));
}
void zet(const char* ext, std::string_view b) {
    schrijf_bestand(pad(ext), b);
}
bool bestaat(const char* ext) {
    return IOEXISTS(pad(ext).c_str());
}

std::string kwalen(const char* ext, ordsoort soort) {
    int fd = open(pad(ext).c_str(), O_RDONLY | O_CLOEXEC);
    std::string uit;
    if (fd >= 0)
        for (const ordkwaal& k : ord_controle(fd, soort, firma.filialen, nullptr))
            uit += std::to_string(k.pos) + ": " + k.wat + "\n";
    close(fd);
    return uit;
}

std::string scratch() {
    std::string uit;
    for (const char* ext : {"WRK", "TMP", "ORS", "ACT"})
        if (bestaat(ext))
            uit += std::string(ext) + ' ';
    return uit;
}

bool kies(int n) {
    journaal = ord_open_jrn(seizoensmap.c_str(), gekozen_leverancier, O_RDWR | O_CREAT);
    if (!journaal)
        return false;
    order_nieuw = n < 0;
    if (order_nieuw) {
        while (ord_lees(journaal, 'N'))
            continue;
    } else {
        ord_eerste_order(journaal);
        while (n--)
            ord_volgende_order(journaal);
    }
    return wrk_open();
}

bool sluit() {
    bool goed = wrk_sluit();
    ord_sluit_jrn(journaal);
    journaal = nullptr;
    return goed;
}

bool nieuwe_kop(const Order& o) {
    char levering[BLOKLEN] = {}, betaling[BLOKLEN] = {};
    kop = kop_van(o);
    o.levering.copy(levering, BLOKLEN);
    o.betaling.copy(betaling, BLOKLEN);
    return ord_kop_schrijf(werk, levering, betaling);
}

void neem_regel(const Model& m, const Regel& l) {
    regel_wis(&regel_nu);
    regel_nu.model = model_van(m);
    regel_nu.dessin = dessin_van(l);
    m.tekst.copy(regel_nu.modeltekst, BLOKLEN);
    l.tekst.copy(regel_nu.dessintekst, BLOKLEN);
    for (const Maat& s : l.maten) {
        up_zet_maat(&regel_nu.prijzen, s.maat, s.bruto, s.netto);
        for (char tag : s.extra) {
            regelextra e{static_cast<uint8_t>(s.maat), tag, {}};
            extra_van(s.maat, tag).copy(e.inhoud, sizeof e.inhoud);
            regel_nu.opslag.extra.push_back(e);
        }
    }
    for (const Term& t : l.termen) {
        aantalmatrix matrix;
        fmclear(&matrix);
        for (const Aantal& a : t.aantallen)
            fmadd(&matrix, a.filiaal, a.maat, a.aantal);
        lt_schrijf(&regel_nu.termen, static_cast<uint16_t>(t.van), static_cast<uint16_t>(t.tot), matrix);
    }
}

ors_ingang regel_op(int nr) {
    ors_ingang uit{static_cast<uint16_t>(nr), 0, 0, 0};
    return ors_lees('R', &uit) ? uit : ors_ingang{};
}

int herstart() {
    journaal = ord_open_jrn(seizoensmap.c_str(), gekozen_leverancier, O_RDWR | O_CREAT);
    int uit = 0;
    wrk_namen();
    if (IOSIZE(pad("WRK").c_str()) > 0)
        uit = herstel_order() ? 1 : 2;
    if (journaal)
        ord_sluit_jrn(journaal);
    journaal = nullptr;
    return uit;
}

int in_kind(const std::function<int()>& doe, std::string* gezegd) {
    Afloop afloop = in_proces(doe, 60'000);
    if (gezegd)
        *gezegd = afloop.uitvoer;
    return afloop.status;
}

// ---- faults

namespace {
Storing storing;
}

void stoor(int n, Storing wat) {
    static const SYSCALLS echt = SYS;
    SYS = echt;
    storing = wat;
    stoor_roep(n - 1, wat == Storing::Dood, wat == Storing::VoorGoedVol);
    if (wat == Storing::Dood)
        return;
    if (wat == Storing::HalfDood) // of the others each is whole or not there
        SYS = echt;
    else
        SYS.pwrite = [](int fd, const void* b, size_t lengte, off_t p) {
            const bool nu = roep_nu();
            const ssize_t uit = roep_echt.pwrite(fd, b, nu ? lengte / 2 : lengte, p);
            return nu ? (errno = ENOSPC, ssize_t{-1}) : uit;
        };
    SYS.write = [](int fd, const void* b, size_t lengte) {
        const bool nu = roep_nu();
        const ssize_t uit = roep_echt.write(fd, b, nu ? lengte / 2 : lengte); // a full disk takes what fits
        if (nu && storing == Storing::HalfDood)
            raise(SIGKILL);
        return !nu || (storing == Storing::Vol && uit > 0) ? uit : (errno = ENOSPC, ssize_t{-1});
    };
}

} // namespace zg::test
