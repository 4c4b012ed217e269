// The check of order/ordcheck.h: one pass with the state of the order, model, line and term at hand.
#include "order/ordcheck.h"
#include "order/ioord.h"
#include "order/ordloop.h"
#include "shared/iomaat.h"
#include <cstdio>
#include <cstring>
#include <set>

namespace zg {

namespace {

struct controle {
    ordsoort soort;
    int filialen;
    ordtelling telling = {};
    std::vector<ordkwaal> kwalen{};

    ordrauw r{};
    char hoofd = 0; // the last of O, M, D; texts belong to it while `kop_open`
    bool kop_open = false;
    int teksten[5] = {}; // of each kind behind that record
    bool model_leeg = false;
    int64_t model_pos = 0;
    bool regel_open = false;
    int64_t regel_pos = 0;
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
        regel_pos = r.offset;
        prijsmaten.clear();
        termen.clear();
        memcpy(maten, lichaam<orddessin>().maten, sizeof maten);
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
    }
    void aantal() {
        auto f = lichaam<ordfil>();
        if (!in_term)
            return fout("quantity outside a delivery term");
        if (f.maat < 1 || f.maat > MATEN)
            fout("quantity of size " + std::to_string(f.maat) + ", which does not exist");
        if (filialen && f.filiaal >= filialen)
            fout("quantity of branch index " + std::to_string(f.filiaal) + ", which the firm does not have");
        if (f.aantal <= 0)
            fout("quantity " + std::to_string(f.aantal));
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

std::vector<ordkwaal> ord_controle(int fd, ordsoort soort, int filialen, ordtelling* telling) {
    controle c{soort, filialen};
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
