#include "tools/restkeur.h"
#include "edi/edifys.h"
#include "edi/edihdl.h"
#include "print/spooljob.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/mutatie.h"
#include "shared/syscalls.h"
#include "term/strings.h"
#include "term/vast.h"
#include "tools/boomkeur.h"
#include "tools/demomerk.h"
#include "tools/journaalkeur.h"
#include "tools/werkmap.h"
#include <algorithm>
#include <cstring>
#include <ctime>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr size_t MEEST = 1 << 20; // bytes of a note that are looked at

// The user's slot out of "MUT01.RES", and whether he is in.
int32_t slot_uit(const std::string& naam) {
    return static_cast<int32_t>(strtol(naam.substr(naam.find('.') - 2, 2).c_str(), nullptr, 10));
}
bool is_in(int32_t nr) {
    gebruikerslot ongelezen;
    return nr >= 1 && nr <= SYS_GEBRUIKER.slots && !iotab('T', &nr, &ongelezen, SYS_GEBRUIKER);
}
std::string volgende_start(int32_t nr) {
    return is_in(nr) ? VORM("user %d is in", nr) : VORM("at the next start of user %d", nr);
}

// What a text of lines has that aren't mutations; `kop` digits stand in front of the letter. A program may be writing the
// last one.
void mutatieregels(const std::string& bytes, size_t kop, keurbestand* b) {
    int64_t n = 0;
    size_t van = 0;
    for (size_t tot; (tot = bytes.find('\n', van)) != std::string::npos; van = tot + 1) {
        n++;
        const std::string regel = bytes.substr(van, tot - van);
        if (regel.empty())
            continue; // a part that somebody left was closed by it
        if (regel.size() <= kop || regel.find_first_not_of("0123456789") != kop ||
            !isalpha(static_cast<unsigned char>(regel[kop])))
            b->kwalen.push_back(VORM("line %lld is no mutation", static_cast<long long>(n)));
    }
    if (van < bytes.size())
        b->noten.push_back("the last line has no end; the next one closes it");
    b->telling = keur_aantal(n, "mutations");
}

void kasmut(keurbestand* b, const std::string& naam) {
    std::string bytes;
    if (keur_lees(naam, MEEST, &bytes, b))
        mutatieregels(bytes, naam == "KASMUT.TXT" ? 6 : 0, b);
    if (!kassakoppeling())
        b->noten.push_back("tills aren't linked: nobody asks for it");
}

bool eigen_bestand(keurbestand* b, const std::string& naam, const char* gevolg) {
    struct stat st;
    const bool goed = lstat(naam.c_str(), &st) != 0 || (S_ISREG(st.st_mode) && st.st_nlink == 1);
    if (!goed)
        b->kwalen.push_back(std::string("a link, or no plain file: ") + gevolg);
    return goed;
}

void mutatienoot(keurbestand* b, const std::string& naam) {
    std::string bytes;
    if (!eigen_bestand(b, naam, "never sent") || !keur_lees(naam, MEEST, &bytes, b))
        return;
    mutatieregels(bytes, 0, b);
    b->noten.push_back("sent: " + volgende_start(slot_uit(naam)));
}

void sernoot(keurbestand* b, const std::string& naam) {
    std::string bytes;
    if (!keur_lees(naam, MEEST, &bytes, b))
        return;
    if (bytes.size() % 8)
        b->kwalen.push_back("ends inside a key");
    b->telling = keur_aantal(static_cast<int64_t>(bytes.size() / 8), "reserved numbers of series");
    b->noten.push_back("given up: " + volgende_start(slot_uit(naam)));
}

void pad_keur(keurbestand* b, const char* naam, const char* veld, size_t ruimte) {
    const size_t n = strnlen(veld, ruimte);
    if (n == ruimte)
        b->kwalen.push_back(std::string(naam) + " has no end");
    else if (std::any_of(veld, veld + n, [](char c) { return static_cast<unsigned char>(c) < ' '; }))
        b->kwalen.push_back(std::string(naam) + " has control bytes in it");
}

// The mailboxes below a root that is there; what has a wrong mode keeps the transfer program's messages out.
void postbussen(const std::string& wortel, keurbestand* b) {
    constexpr mode_t MODE = S_ISGID | S_IRWXU | S_IRWXG;
    for (int soort = 0; soort < EDI_SOORTEN; soort++) {
        const std::string bus = wortel + "/" + edidirname(soort);
        for (const std::string& map : {bus, bus + "/save"}) {
            struct stat st;
            if (map != bus && soort > EDI_BEWAART)
                continue;
            if (stat(map.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
                b->kwalen.push_back("mailbox " + map + " isn't there; zgedi make makes it");
            else if ((st.st_mode & MODE) != MODE)
                b->kwalen.push_back("mailbox " + map +
                                    VORM(": mode %04o, should be 2774", st.st_mode & 07777));
        }
    }
    if (IOEXISTS((wortel + "/.zgedi.tmp").c_str()))
        b->noten.push_back("a message half moved in " + wortel + "; the next move throws it away");
}

// The files that tell the transfer program where mailboxes are, and the number of the last file.
void locaties(const std::string& map, const std::string& wortel, keurbestand* b) {
    std::string regel;
    keurbestand hier{"", ""};
    for (const auto& l : EDILOCATIES) {
        const std::string naam = map + "/" + l.bestand;
        if (!keur_lees(naam, MEEST, &regel, &hier))
            b->kwalen.push_back("location file " + naam +
                                " isn't there, or can't be read; zgedi make makes it");
        else if (regel != edilocatie(wortel, l.soort))
            b->kwalen.push_back("location file " + naam + " doesn't name the mailbox " + edidirname(l.soort) +
                                "; zgedi make makes it anew");
    }
    const std::string naam = map + "/" + EDIFILENR;
    if (IOEXISTS(naam.c_str()) && keur_lees(naam, MEEST, &regel, &hier) &&
        (regel.find_first_of("0123456789") != 0 ||
         regel.find_first_not_of("0123456789 \r\n") < regel.find('\n')))
        b->kwalen.push_back(naam + ": no number in its first line");
}

void overdracht(keurbestand* b, const std::string& naam) {
    std::string bytes;
    edirec r;
    if (!keur_lees(naam, sizeof r, &bytes, b))
        return;
    if (IOSIZE(naam.c_str()) != EDIREC) {
        b->kwalen.push_back(VORM("%lld bytes of %d", static_cast<long long>(IOSIZE(naam.c_str())), EDIREC));
        return;
    }
    memcpy(&r, bytes.data(), sizeof r);
    pad_keur(b, "ZEBEDI", r.zebedi, sizeof r.zebedi);
    pad_keur(b, "EDIRPC", r.edirpc, sizeof r.edirpc);
    pad_keur(b, "EDIDIR", r.edidir, sizeof r.edidir);
    pad_keur(b, "EDICMD", r.edicmd, sizeof r.edicmd);
    if (naam == EDIBESTAND && r.methode > 2)
        b->kwalen.push_back(VORM("method %d, which there isn't", r.methode));
    if (std::ranges::any_of(VASTUIT(r.rpchost), [](char c) { return static_cast<unsigned char>(c) < ' '; }))
        b->kwalen.push_back("RPCHOST has control bytes in it");
    const std::string wortel(VASTUIT(r.zebedi)), locaties_in(VASTUIT(r.edidir));
    for (const std::string& m : {wortel, locaties_in})
        if (!m.empty() && !IOISDIR(m.c_str()))
            b->noten.push_back(m + " isn't there, or no directory");
    if (naam == EDIBESTAND && !wortel.empty() && IOISDIR(wortel.c_str()))
        postbussen(wortel, b);
    if (naam == EDIBESTAND && !wortel.empty() && !locaties_in.empty() && IOISDIR(locaties_in.c_str()))
        locaties(locaties_in, wortel, b);
}

void druk(keurbestand* b, const std::string& naam) {
    const keurlezer l(naam);
    spooljob job;
    if (l.fd < 0)
        return;
    const bool goed = spool_lees(l.fd, naam, &job), spool = IOEXISTS(job.spool.c_str());
    if (!IOLOCK('T', l.fd, 0, 0))
        b->noten.push_back("being made or sent");
    else if (!goed)
        b->kwalen.push_back("damaged: nobody sends " + job.spool);
    else if (job.stand == Spoolstand::maak)
        b->noten.push_back("broken off while it was made; it goes when somebody prints");
    else if (!spool)
        b->noten.push_back("is out; it goes when somebody prints");
    else if (job.stand == Spoolstand::fout)
        b->noten.push_back("not printed: " + job.reden);
    else
        b->noten.push_back("not sent: zgdruk sends it");
    b->telling = goed ? job.titel : "";
}

void los_druk(keurbestand* b, const std::string& naam) {
    const std::string spool = naam.substr(0, 6);
    if (!IOEXISTS(spool_beschrijving(spool).c_str()))
        b->noten.push_back(naam == spool ? "a report without its description: nobody sends it"
                                         : "left by a job that is gone");
}

void macro(keurbestand* b, const std::string& naam) {
    struct stat st;
    if (lstat(naam.c_str(), &st) == 0 && time(nullptr) - st.st_mtime > 10)
        b->noten.push_back("goes at the next start on that terminal, unplayed");
}

void werkmap(keurbestand* b, const std::string& naam) {
    b->noten.push_back(
        Werkmap::enige_kopie(naam)
            ? "a load that was killed: its \"vorige\" is the only copy of the old records of a pair, "
              "and is left alone; look which of the two is wanted"
            : "a load or copy under way, or killed; the next one sweeps it");
}

// Of which all that is to be said stands in the row.
struct Soort {
    const char *vorm, *wat, *noot;
    void (*keur)(keurbestand* b, const std::string& naam) = nullptr;
};
const Soort SOORTEN[] = {
    {"DTSYS.TXT", nullptr, nullptr}, // others tell of these
    {"DTFILGEG.TXT", nullptr, nullptr},
    {"ORDPARM.SYS", nullptr, nullptr},
    {"DTETI.TXT", nullptr, nullptr},
    {"DTIPG.TXT", nullptr, nullptr},
    {"ORD####@.JRN", nullptr, nullptr},
    {"SERNR##.RES", "", nullptr, sernoot},
    {"MUT##.RES", "", nullptr, mutatienoot},
    {"KASMUT.TXT", "", nullptr, kasmut},
    {"DCMU####.TXT", "", nullptr, kasmut},
    {"KAS####.SYS", "a till", nullptr},
    {"STAT##.TXT", "", "master data waits to be taken up: no orders until then"},
    {"DTRCMSYS.TXT", "settings of the transfer", nullptr, overdracht},
    {"DTIPCSYS.TXT", "settings of the transfer", nullptr, overdracht},
    {"DTEDI.TXT", "", "settings of the older form; they become DTRCMSYS.TXT when they are asked for"},
    {"EDISYS.CVC", "", "settings half made; made again when they are asked for"},
    {"MAC*", "", nullptr, macro},
    {"PR????.JOB", "", nullptr, druk},
    {"PR????.UIT", "", nullptr, los_druk},
    {"PR????.TMP", "", nullptr, los_druk},
    {"PR@@##", "", nullptr, los_druk},
    {"ZGDEMO.MRK", nullptr, nullptr},
    {"ZGCOPY.LST", nullptr, nullptr}, // of a restore
    {"ZGBEURT.LCK", nullptr, nullptr},
    {"ZEBCAT", nullptr, nullptr},
    {"DETAIL", nullptr, nullptr},
    {".zgdeel", "", "zgdeel under way, or killed; the next one sweeps it"},
    {".ixwerk??????", "", nullptr, werkmap},
};

const Soort* soort_van(const std::string& naam) {
    const auto p = std::ranges::find_if(SOORTEN, [&](const Soort& s) {
        return keur_past(s.vorm, naam) && (s.keur != macro || naam.ends_with(".TMP"));
    });
    return p == std::end(SOORTEN) ? nullptr : &*p;
}

// A season's file: of a supplier's orders, where those of none have their journal elsewhere; or orders that wait.
bool van_seizoen(const std::string& naam) {
    constexpr const char* EXT[] = {"JRN", "WRK", "TMP", "ORS", "ACT", "PRN", "LBN", "PRS", "LBW"};
    return naam == "NEWORD.TXT" || (keur_past("ORD####.???", naam) && naam != "ORD0000.JRN" &&
                                    std::ranges::find(EXT, naam.substr(8)) != std::end(EXT));
}

// A file in the data directory itself, of which these are the pairs.
bool van_map(const std::string& naam, const std::vector<std::string>& paren) {
    const std::string stam = naam.substr(0, std::max<size_t>(naam.size(), 4) - 4);
    return soort_van(naam) || naam.find(".CUT") != std::string::npos || is_bijboom(naam) ||
           ((naam.ends_with(".INX") || naam.ends_with(".TXT")) && std::ranges::binary_search(paren, stam));
}

void seizoen_rest(const std::string& map, keurbestanden* uit) {
    for (const std::string& pad : werkresten(map))
        uit->push_back(
            {pad,
             "",
             {},
             {"left by an order that ended, or never began; it goes when the supplier is chosen"}});
    if (IOEXISTS((map + "/NEWORD.TXT").c_str()))
        uit->push_back(
            {map + "/NEWORD.TXT", "", {}, {"orders wait to be taken up: none of this season until then"}});
}

} // namespace

std::vector<std::string> keur_bekend(std::vector<std::string>* onbekend) {
    std::vector<std::string> uit;
    const auto neem = [&](bool bekend, const std::string& pad) {
        if (bekend)
            uit.push_back(pad);
        else if (onbekend)
            onbekend->push_back(pad);
    };
    const std::vector<std::string> paren = keur_paren("");
    for (const std::string& naam : keur_namen(".")) {
        const bool map = IOISDIR(naam.c_str());
        if (map && keur_past("####@", naam))
            for (const std::string& van : keur_namen(naam))
                neem(van_seizoen(van), naam + "/" + van);
        else if (!map || keur_past("####?", naam)) // a season's name, but for its letter
            neem(!map && van_map(naam, paren), naam + (map ? "/" : ""));
    }
    for (const auto& elders : {keur_paren("edistam/"), tabel_paren()})
        for (const std::string& paar : elders)
            for (const char* ext : {".INX", ".TXT"})
                uit.push_back(paar + ext);
    return uit;
}

keurbestanden rest_keur() {
    keurbestanden uit;
    if (demo_half("."))
        uit.push_back({DEMOMERK, "", {DEMOHALFMADE}});
    for (const std::string& naam : keur_namen(".")) {
        const Soort* s = soort_van(naam);
        if (s && s->wat) {
            keurbestand b{naam, s->wat};
            if (s->noot)
                b.noten.push_back(s->noot);
            if (s->keur)
                s->keur(&b, naam);
            uit.push_back(std::move(b));
        } else if (const size_t cut = naam.find(".CUT"); cut != std::string::npos) {
            uit.push_back({naam, "", {}, {"the end that was cut off " + naam.substr(0, cut) + ".TXT"}});
        } else if (keur_past("####@", naam) && IOISDIR(naam.c_str())) {
            seizoen_rest(naam, &uit);
        }
    }
    std::vector<std::string> onbekend;
    keur_bekend(&onbekend);
    keurbestand rest{"other files",
                     keur_aantal(static_cast<int64_t>(onbekend.size()), "that the package doesn't know")};
    rest.namen = true;
    constexpr size_t GENOEMD = 10;
    for (size_t i = 0; i < onbekend.size() && i < GENOEMD; i++)
        rest.noten.push_back(onbekend[i]);
    if (onbekend.size() > GENOEMD)
        rest.noten.push_back("and " + std::to_string(onbekend.size() - GENOEMD) + " more");
    if (!onbekend.empty())
        uit.push_back(std::move(rest));
    return uit;
}

} // namespace zg
