// ixsh: the store's operations from a script, one a line, one answer a line. An answer begins with the
// operation's own result; `rec=` is the record number it stands on. Records are given and shown as fields by
// name, or whole in hexadecimal behind "hex:". '#' begins a comment.
#include "shared/files.h"
#include "store/diepcheck.h"
#include "store/kop.h"
#include "store/node.h"
#include "store/rebuild.h"
#include "store/wachtrij.h"
#include "term/natl.h"
#include "term/vast.h"
#include "tools/opdracht.h"
#include <charconv>
#include <cstring>
#include <iostream>
#include <sstream>
#include <utility>

namespace zg {

namespace {

struct Schelp {
    ICB* icb = nullptr;
    std::string naam;
    std::vector<Veld> velden;
    uint8_t rec[IXRECMAX] = {};
    int wacht = 0;       // seconds for a lock
    bool hex = false;    // show records in hexadecimal
    int uitkomst = GOED; // of the line at work
};

using Woorden = std::vector<std::string>;

// Words of a line; a value in double quotes may hold blanks: naam="Huis & Tuin".
Woorden woorden(const std::string& regel) {
    Woorden uit;
    std::string woord;
    bool in = false, iets = false;
    for (char c : regel) {
        if (c == '#' && !in && woord.empty())
            break;
        if (c == '"') {
            in = !in, iets = true;
        } else if ((c == ' ' || c == '\t') && !in) {
            if (iets)
                uit.push_back(woord);
            woord.clear(), iets = false;
        } else {
            woord += c, iets = true;
        }
    }
    if (iets)
        uit.push_back(woord);
    return uit;
}

bool getal(const Woorden& w, size_t i, int* uit, int anders) {
    if (i >= w.size())
        return *uit = anders, true;
    auto [einde, fout] = std::from_chars(w[i].data(), w[i].data() + w[i].size(), *uit);
    return fout == std::errc() && einde == w[i].data() + w[i].size();
}

void toon(const Schelp& s, int antwoord) {
    printf("%d rec=%d", antwoord, s.icb ? s.icb->currec : -1);
    if (s.hex && s.icb) {
        printf(" hex:%s", veld_uit({"", 'x', 0, s.icb->h.reclen}, s.rec).c_str());
    } else {
        for (const Veld& v : s.velden) {
            std::string w = veld_uit(v, s.rec);
            if (v.soort == 'x' && w.find_first_not_of('0') == std::string::npos)
                continue;
            bool kaal = w.find_first_of(" \"#") == std::string::npos && !w.empty();
            printf(kaal ? " %s=%s" : " %s=\"%s\"", v.naam.c_str(), w.c_str());
        }
    }
    printf("\n");
}

// Fields from the words into the record; empty when good. "leeg" clears the record first.
std::string vul(Schelp& s, const Woorden& w) {
    for (size_t i = 1; i < w.size(); i++) {
        if (w[i] == "leeg" || w[i] == "clear") {
            memset(s.rec, 0, sizeof s.rec);
            continue;
        }
        if (w[i].starts_with("hex:")) {
            std::string fout =
                veld_in({"hex", 'x', 0, s.icb->h.reclen}, std::string_view(w[i]).substr(4), s.rec);
            if (!fout.empty())
                return fout;
            continue;
        }
        size_t is = w[i].find('=');
        const Veld* veld = nullptr;
        for (const Veld& v : s.velden)
            if (is != std::string::npos && v.naam == w[i].substr(0, is))
                veld = &v;
        if (!veld)
            return "no such field: " + w[i];
        std::string fout = veld_in(*veld, std::string_view(w[i]).substr(is + 1), s.rec);
        if (!fout.empty())
            return fout;
    }
    return {};
}

ICB* open_nu; // the pair that is open

void stel_in(Schelp& s) {
    s.velden = indeling(tabelnaam(s.naam), s.icb->h);
    memset(s.rec, 0, sizeof s.rec);
}

// What is reserved here nobody would give up any more.
void sluit(Schelp& s) {
    IXGEEFTERUG(s.icb);
    IXCLOSE(s.icb);
    s.icb = open_nu = nullptr;
}

// One operation on an open pair: its words are the name and then what `arg` says: 'n' an optional number, 'f'
// fields.
struct Operatie {
    const char *naam, *uitleg;
    char arg;
    bool toont;
    int (*doe)(Schelp& s, int getal);
    int goed = -1; // a lower answer: nothing was written; at least 1 means that a read-only pair refuses it
};

const Operatie OPERATIES[] = {
    {"key", "N: make key N current", 'n', false,
     [](Schelp& s, int n) { return IXSWITCH(s.icb, n), IXSLEUTEL(s.icb); }},
    {"set", "field=value ...|hex:...|clear: fill the record", 'f', true, [](Schelp&, int) { return 1; }},
    {"first", "first record of the key", 'n', true,
     [](Schelp& s, int n) {
         return n ? IXFIRSTR(s.icb, memset(s.rec, 0, sizeof s.rec), n)
                  : IXFIRST(s.icb, memset(s.rec, 0, sizeof s.rec));
     }},
    {"last", "last record of the key", '-', true,
     [](Schelp& s, int) { return IXLAST(s.icb, memset(s.rec, 0xFF, sizeof s.rec)); }},
    {"find", "[PARTS]: first record at or after the record's key", 'n', true,
     [](Schelp& s, int n) { return IXFIRSTR(s.icb, s.rec, n); }},
    {"next", "[PARTS]: the record after", 'n', true,
     [](Schelp& s, int n) { return IXNEXTR(s.icb, s.rec, n); }},
    {"prev", "[PARTS]: the record before", 'n', true,
     [](Schelp& s, int n) { return IXPREVR(s.icb, s.rec, n); }},
    {"firstk", "[PARTS]: first key", 'n', true, [](Schelp& s, int n) { return IXFIRSTK(s.icb, s.rec, n); }},
    {"nextk", "[PARTS]: next key", 'n', true, [](Schelp& s, int n) { return IXNEXTK(s.icb, s.rec, n); }},
    {"prevk", "[PARTS]: key before", 'n', true, [](Schelp& s, int n) { return IXPREVK(s.icb, s.rec, n); }},
    {"skip", "STEPS: move from the record stood on", 'n', true,
     [](Schelp& s, int n) {
         int32_t r = s.icb->currec;
         return IXSKIP(s.icb, s.rec, 0, n, &r);
     }},
    {"uniq", "PART: is there one value of this part", 'n', true,
     [](Schelp& s, int n) { return n >= 1 && n <= IXDELEN ? IXUNIQK(s.icb, s.rec, n) : 0; }},
    {"get", "NUMBER: read by record number", 'n', true,
     [](Schelp& s, int n) {
         int r = IXGET(s.icb, s.rec, n);
         s.icb->currec = r < 0 ? -1 : n;
         return r;
     }},
    {"read", "fields: read by the full key", 'f', true, [](Schelp& s, int) { return IXREAD(s.icb, s.rec); }},
    {"readl", "fields: read with a lock", 'f', true, [](Schelp& s, int) { return IXREADL(s.icb, s.rec); }},
    {"exists", "fields: does the full key exist", 'f', false,
     [](Schelp& s, int) { return IXEXISTS(s.icb, s.rec); }},
    {"write", "fields: write, key 1 decides, and release", 'f', false,
     [](Schelp& s, int) { return IXWRITE(s.icb, s.rec); }, 1},
    {"writek", "fields: write and keep the lock", 'f', false,
     [](Schelp& s, int) { return IXWRITEK(s.icb, s.rec); }, 1},
    {"put", "fields: rewrite the record stood on, keys untouched", 'f', false,
     [](Schelp& s, int) { return s.icb->mode == 0 || s.icb->currec < 0 ? 0 : IXPUTREC(s.icb, s.rec); }, 1},
    {"delete", "delete the record stood on", '-', false,
     [](Schelp& s, int) { return s.icb->mode == 0 ? -1 : IXDELETE(s.icb, s.rec); }, 0},
    {"unlock", "give up a lock or a reserved key", '-', false,
     [](Schelp& s, int) { return IXUNLOCK(s.icb, s.rec), 1; }},
    {"bulk", "O|W|C is 1|2|3: fill an emptied index", 'n', false,
     [](Schelp& s, int n) {
         return n >= 1 && n <= 3 && s.icb->mode == 1 ? (IXBULK("OWC"[n - 1], s.icb, s.rec), 1) : 0;
     }},
    {"init", "empty the pair (exclusive mode)", '-', false,
     [](Schelp& s, int) {
         if (s.icb->mode != 1)
             return 0;
         for (const std::string& sleutel : IXRESERVERINGEN(s.icb->idxfd, s.icb->h))
             klacht(s.naam, "reserved key cleared: " + CP850UTF8(sleutel));
         return IXINIT(s.icb), 1;
     }},
    {"close", "give up what is reserved, and close the pair", '-', false,
     [](Schelp& s, int) { return sluit(s), 1; }},
};

void hulp() {
    printf("open NAME MODE       0 read-only, 1 exclusive, 2 shared\n"
           "create NAME RECLEN KEY...  a new empty pair; KEY as key1,NODUPS,C,5,14\n"
           "check NAME           free records, or -1\n"
           "rebuild NAME\n"
           "deepcheck NAME\n"
           "hex 0|1              show records whole in hexadecimal\n");
    for (const Operatie& op : OPERATIES)
        printf("%-20s %s\n", op.naam, op.uitleg);
    printf("quit\n");
}

// The header is read under its lock: a pair in use is marked busy for moments. Who only reads goes on beside one who has it to
// himself.
int leesbaar(const std::string& naam, int modus, int seconden) {
    Paar paar;
    int fout = paar_open(naam, &paar);
    const bool bezet = !fout && modus == 0 && !IOLOCK('T', paar.idx, 0, IXBLOK) && paar_kop(&paar).empty() &&
                       paar.kop.busy != K_BEZIG;
    if (!fout && !bezet)
        fout = paar_vast(&paar, seconden);
    if (fout)
        return fout;
    std::string kwaal = paar_kop(&paar);
    if (const char* wat = IXKOPFOUT(paar.kop); wat && kwaal.empty())
        kwaal = std::string("header: ") + wat;
    if (kwaal.empty() && paar.kop.busy && !bezet)
        kwaal = "marked busy: rebuild it first";
    if (!kwaal.empty())
        klacht(naam, kwaal);
    return kwaal.empty() ? GOED : FOUT_GEVONDEN;
}

// The operations that need no open pair; false when the name is none of them. *fout is the answer's
// complaint.
bool zonder_paar(Schelp& s, const Woorden& w, std::string* fout) {
    const std::string& op = w[0];
    int n = 0;
    if (op == "help") {
        hulp();
    } else if (op == "hex") {
        if (getal(w, 1, &n, 1))
            s.hex = n != 0, printf("%d\n", n);
    } else if (op == "open" || op == "create") {
        if (s.icb)
            *fout = "a pair is open: close it first";
        else if (w.size() < 3 || !getal(w, 2, &n, 0))
            *fout = op == "open" ? "open NAME MODE" : "create NAME RECLEN KEY...";
        else if (op == "open" && (n < 0 || n > 2))
            *fout = "mode 0, 1 or 2";
        else if (op == "create" && (n < 6 || n > IXRECMAX || w.size() < 4 || w.size() > 3 + IXSLEUTELS))
            *fout = "a record length of 6 to 512 and one to five keys";
        else if (op == "create" && IXTIJDELIJKENAAM(w[1].c_str()))
            *fout = "a name with a point is a program's own index";
        else if (op == "create" && (IOEXISTS((w[1] + ".INX").c_str()) || IOEXISTS((w[1] + ".TXT").c_str())))
            *fout = "exists already";
        else if (op == "open" && (s.uitkomst = leesbaar(w[1], n, s.wacht)) != GOED)
            *fout = "not opened";
        else {
            s.naam = w[1];
            if (op == "open") {
                s.icb = IXOPEN(w[1].c_str(), n);
            } else {
                s.icb = IXCREATE(w[1].c_str(), 1);
                IXUPDFCB(s.icb, 0, (tabelnaam(w[1]) + "," + w[2]).c_str());
                for (size_t i = 3; i < w.size(); i++)
                    IXUPDFCB(s.icb, static_cast<int>(i) - 2, w[i].c_str());
                IXINIT(s.icb);
            }
            stel_in(s);
            open_nu = s.icb;
            printf("1 keys=%d reclen=%d records=%d\n", s.icb->h.nkeys, s.icb->h.reclen, s.icb->h.nrecs);
        }
    } else if (op == "check" || op == "rebuild" || op == "deepcheck") {
        if (w.size() != 2)
            *fout = op + " NAME";
        else if (s.icb)
            *fout = "a pair is open: close it first"; // closing any descriptor drops its locks
        else if (op == "check")
            printf("%d\n", IXCHECK(w[1].c_str()));
        else if (op == "rebuild")
            printf("%d\n", IXBLDIX(w[1].c_str()));
        else {
            std::vector<std::string> b = IXDIEPCHECK(w[1].c_str());
            printf("%zu", b.size());
            for (const std::string& t : b)
                printf("%s %s", &t == b.data() ? "" : ";", t.c_str());
            printf("\n");
        }
    } else {
        return false;
    }
    return true;
}

std::string voer_uit(Schelp& s, const Woorden& w) {
    std::string fout;
    if (zonder_paar(s, w, &fout))
        return fout;
    for (const Operatie& op : OPERATIES) {
        if (w[0] != op.naam)
            continue;
        if (!s.icb)
            return "no pair is open";
        int n = 0;
        if (op.arg == 'n' && (w.size() > 2 || !getal(w, 1, &n, 0)))
            return std::string(op.naam) + " " + op.uitleg;
        if (op.arg == '-' && w.size() > 1)
            return std::string(op.naam) + " takes nothing";
        if (op.arg == 'f')
            if (std::string kwaal = vul(s, w); !kwaal.empty())
                return kwaal;
        const int geweigerd = IXWEIGERINGEN;
        const bool alleen_lezen = s.icb->mode == 0;
        int antwoord = op.doe(s, n);
        if (antwoord < op.goed || (op.goed == 1 && alleen_lezen) || IXWEIGERINGEN > geweigerd)
            s.uitkomst = FOUT_GEVONDEN;
        if (op.toont)
            toon(s, antwoord);
        else
            printf("%d rec=%d\n", antwoord, s.icb ? s.icb->currec : -1);
        return {};
    }
    return "no such operation: " + w[0] + " ('help' lists them)";
}

} // namespace

volatile std::sig_atomic_t ixsh_sein;

void ixsh_geef_terug() {
    if (ICB* icb = std::exchange(open_nu, nullptr))
        IXGEEFTERUG(icb);
}

int ixsh(const Opdracht& o) {
    // A signal ends the wait for a line or a lock, and then the script: nobody else gives up what it has reserved.
    struct sigaction stop {};
    stop.sa_handler = [](int sein) { ixsh_sein = sein; };
    for (int sein : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        sigaction(sein, &stop, nullptr);
    Schelp s;
    s.wacht = o.wacht;
    int uitkomst = GOED; // the first that isn't good: the rest may follow from it
    auto doe = [&](const Woorden& w) {
        s.uitkomst = GOED;
        if (std::string fout = voer_uit(s, w); !fout.empty()) {
            printf("? %s\n", fout.c_str());
            s.uitkomst = s.uitkomst == GOED ? FOUT_GEVONDEN : s.uitkomst;
        }
        uitkomst = uitkomst == GOED ? s.uitkomst : uitkomst;
        fflush(stdout);
    };
    if (!o.namen.empty())
        doe({"open", o.namen[0], "2"});
    for (std::string regel; !ixsh_sein && std::getline(std::cin, regel);) {
        Woorden w = woorden(regel);
        if (w.empty())
            continue;
        if (w[0] == "quit")
            break;
        doe(w);
    }
    if (s.icb)
        sluit(s);
    return uitkomst;
}

} // namespace zg
