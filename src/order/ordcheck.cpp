// The check of order/ordcheck.h: one pass with the state of the order, model, line and term at hand.
#include "order/ordcheck.h"
#include "codes/seizoen.h"
#include "order/ioord.h"
#include "order/ordloop.h"
#include "shared/dagtekst.h"
#include "shared/iomaat.h"
#include "shared/stamrec.h"
#include "term/natl.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>

namespace zg {

namespace {

// "2016Z", the letter told by its code where it is none.
std::string seizoen_tekst(uint16_t jaar, char letter) {
    char tekst[16];
    snprintf(tekst, sizeof tekst, isalnum(static_cast<uint8_t>(letter)) ? "%04u%c" : "%04u and byte %02x",
             unsigned{jaar}, static_cast<uint8_t>(letter));
    return tekst;
}

struct controle {
    ordsoort soort;
    const ordomgeving& omgeving;
    ordtelling telling = {};
    std::vector<ordkwaal> kwalen{};

    ordrauw r{};
    char hoofd = 0; // the last of O, M, D; texts belong to it while `kop_open`
    bool kop_open = false;
    int teksten[5] = {}; // of each kind behind that record
    bool model_leeg = false;
    int64_t model_pos = 0;
    bool regel_open = false;
    int64_t regel_pos = 0, stuks = 0; // of the line
    uint8_t maten[12] = {};
    std::set<int> prijsmaten{};
    std::set<int> termen{};
    char vorige = 0;      // tag in front
    bool in_term = false; // an L of this line came by

    void fout(const std::string& wat) { kwalen.push_back({r.offset, wat}); }
    void fout_op(int64_t pos, const std::string& wat) { kwalen.push_back({pos, wat}); }

    template <class T> T lichaam() const {
        T t;
        memcpy(&t, r.data + 1, sizeof t);
        return t;
    }

    // A work file has all five pieces of each text; told at the record behind them.
    void sluit_teksten() {
        if (soort == ORD_WERK && kop_open) {
            auto [een, laatste] = hoofd == 'O'   ? std::pair{1, 2}
                                  : hoofd == 'M' ? std::pair{3, 3}
                                                 : std::pair{4, 4};
            for (int k = een; k <= laatste; k++)
                if (teksten[k] != 5)
                    fout("text of kind " + std::to_string(k) + " has " + std::to_string(teksten[k]) +
                         " of its five pieces");
        }
        kop_open = false;
    }

    void sluit_regel() {
        if (!regel_open)
            return;
        for (int maat = 1; maat <= MATEN; maat++) {
            bool in_maten = maten[maat / 8] >> (maat % 8) & 1;
            if (in_maten != prijsmaten.contains(maat))
                fout_op(regel_pos, "size " + std::to_string(maat) +
                                       (in_maten ? " has no prices" : " has prices but is not of this line"));
        }
        if (stuks > INT32_MAX) // the program opens no order with such a line
            fout_op(regel_pos, "quantities of a line that add up to " + std::to_string(stuks));
        regel_open = in_term = false;
    }

    void begin(char tag) {
        sluit_teksten();
        hoofd = tag;
        kop_open = true;
        memset(teksten, 0, sizeof teksten);
    }

    void order() {
        sluit_regel();
        sluit_model();
        begin('O');
        if (++telling.orders > 1 && soort == ORD_WERK)
            fout("a second order in a work file");
        kop(lichaam<ordkop>());
    }
    void kop(const ordkop& k) {
        if (!is_dag(k.orderdatum))
            fout("order date " + std::to_string(k.orderdatum) + " is no day of the calendar");
        if (!k.seizoen || !strchr(SEIZOENLETTERS, k.seizoen) || k.jaar > 9999)
            fout("season " + seizoen_tekst(k.jaar, k.seizoen) + " does not exist");
        else if (!omgeving.seizoen.empty() && seizoen_map(k.jaar, k.seizoen) != omgeving.seizoen)
            fout("an order of season " + seizoen_map(k.jaar, k.seizoen) + " in a file of " +
                 omgeving.seizoen);
        if (omgeving.leverancier >= 0 && k.leverancier != omgeving.leverancier)
            fout("an order of supplier " + std::to_string(k.leverancier) + " in a file of supplier " +
                 std::to_string(omgeving.leverancier));
        relatie("supplier", k.leverancier);
        if (k.agent)
            relatie("agent", k.agent);
        const auto& nummers = omgeving.filiaalnummers;
        if (k.ontvangstlocatie && k.ontvangstlocatie != LOCATIE_MAGAZIJN && !nummers.empty() &&
            std::find(nummers.begin(), nummers.end(), uint8_t{k.ontvangstlocatie}) == nummers.end())
            fout("receiving location " + std::to_string(k.ontvangstlocatie) +
                 " is no branch of the firm, nor the warehouse");
        letters("description", k.omschrijving);
        letters("collection", k.collectie);
        letters("currency", k.valuta);
        letters("supplier's order number", k.lev_ordernr);
    }
    void relatie(const char* wat, uint16_t nr) {
        if (!omgeving.relaties.empty() && !omgeving.relaties[nr])
            fout(wat + (" " + std::to_string(nr)) + " is not on file");
    }
    // A text holds no control bytes in front of its NULs.
    template <size_t n> void letters(const char* wat, const char (&tekst)[n]) {
        for (size_t i = 0; i < n && tekst[i]; i++)
            if (NKLASSE[static_cast<uint8_t>(tekst[i])] & N_CONTROL) {
                char hex[8];
                snprintf(hex, sizeof hex, "%02x", static_cast<unsigned>(static_cast<uint8_t>(tekst[i])));
                return fout(std::string(wat) + " holds byte " + hex + ", which is no letter");
            }
    }
    void sluit_model() {
        if (model_leeg)
            fout_op(model_pos, "model without a line");
        model_leeg = false;
    }
    void een_model() {
        sluit_regel();
        sluit_model();
        begin('M');
        telling.modellen++;
        model_leeg = true;
        model_pos = r.offset;
        letters("model", lichaam<ordmodel>().model);
        if (!telling.orders)
            fout("model before the first order");
    }
    void regel() {
        sluit_regel();
        if (hoofd != 'M' && hoofd != 'D')
            fout("line without a model");
        begin('D');
        telling.regels++;
        model_leeg = false;
        regel_open = true;
        stuks = 0;
        regel_pos = r.offset;
        prijsmaten.clear();
        termen.clear();
        const auto d = lichaam<orddessin>();
        memcpy(maten, d.maten, sizeof maten);
        letters("dessin", d.dessin);
        letters("material", d.materiaal);
        letters("description", d.omschrijving);
        letters("feature", d.kenmerk);
        const char groep[] = {d.doelgroep};
        letters("target group", groep);
    }
    void tekst() {
        auto t = lichaam<ordtekst>();
        if (!kop_open || (hoofd == 'O'   ? t.soort != 1 && t.soort != 2
                          : hoofd == 'M' ? t.soort != 3
                                         : t.soort != 4))
            return fout("text of kind " + std::to_string(t.soort) + " in the wrong place");
        if (++teksten[t.soort] > 5)
            fout("more than five pieces of text kind " + std::to_string(t.soort));
        if (t.soort == 1 && teksten[2])
            fout("text kinds out of order");
        if (soort == ORD_JOURNAAL && !t.tekst[0])
            fout("empty piece of text in a journal");
    }
    void maat() {
        auto s = lichaam<ordmaat>();
        if (!regel_open)
            return fout("prices outside a line");
        if (in_term)
            fout("prices behind a delivery term");
        if (s.maat < 1 || s.maat > MATEN)
            fout("size " + std::to_string(s.maat) + " does not exist");
        else if (!prijsmaten.insert(s.maat).second)
            fout("size " + std::to_string(s.maat) + " has prices twice");
    }
    void extra() {
        if (vorige != 'S' && vorige != 'E' && vorige != 'B')
            fout("extension without prices in front of it");
    }
    void term() {
        auto l = lichaam<ordlevt>();
        if (!regel_open)
            return fout("delivery term outside a line");
        in_term = true;
        if (!termen.insert(l.laatste).second)
            fout("two delivery terms with the same last date");
        for (const uint16_t dag : {uint16_t{l.eerste}, uint16_t{l.laatste}})
            if (!is_dag(dag))
                return fout("date " + std::to_string(dag) + " of a delivery term is no day of the calendar");
        if (l.eerste > l.laatste)
            fout("a delivery term that ends before it begins");
    }
    void aantal() {
        auto f = lichaam<ordfil>();
        if (!in_term)
            return fout("quantity outside a delivery term");
        if (f.maat < 1 || f.maat > MATEN)
            fout("quantity of size " + std::to_string(f.maat) + ", which does not exist");
        if (omgeving.filialen && f.filiaal >= omgeving.filialen)
            fout("quantity of branch index " + std::to_string(f.filiaal) + ", which the firm does not have");
        if (f.aantal <= 0)
            fout("quantity " + std::to_string(f.aantal));
        else
            stuks += f.aantal;
    }

    void record() {
        telling.records++;
        if (r.offset == 0 && r.tag != 'O')
            fout("does not begin with an order");
        if (r.tag != 'T' && kop_open && r.tag != 'O' && r.tag != 'M' && r.tag != 'D')
            sluit_teksten();
        switch (r.tag) {
        case 'O':
            order();
            break;
        case 'M':
            een_model();
            break;
        case 'D':
            regel();
            break;
        case 'T':
            tekst();
            break;
        case 'S':
            maat();
            break;
        case 'E':
        case 'B':
            extra();
            break;
        case 'L':
            term();
            break;
        case 'F':
            aantal();
            break;
        default:
            break;
        }
        vorige = r.tag;
    }
};

} // namespace

std::vector<ordkwaal> ord_controle(int fd, ordsoort soort, const ordomgeving& omgeving, ordtelling* telling) {
    controle c{soort, omgeving};
    ordloop l;
    ordloop_begin(&l, fd, 0, INT64_MAX);
    loopstand stand;
    while ((stand = ordloop_volgende(&l, &c.r)) == LOOP_RECORD)
        c.record();
    char tekst[80];
    unsigned tag = static_cast<uint8_t>(c.r.tag);
    if (stand == LOOP_TAG) {
        snprintf(tekst, sizeof tekst, "unknown tag, byte %02x", tag);
        c.fout(tekst);
    } else if (stand == LOOP_KORT) {
        snprintf(tekst, sizeof tekst, "the file ends inside this '%c' record", c.r.tag);
        c.fout(tekst);
    } else if (stand == LOOP_FOUT) {
        c.fout("the file can't be read from here on");
    } else {
        c.sluit_teksten();
        c.sluit_regel();
        c.sluit_model();
    }
    if (telling)
        *telling = c.telling;
    return c.kwalen;
}

} // namespace zg
