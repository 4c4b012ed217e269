// Tokyo Cabinet: three B+ trees. One process writes at a time, from open to close, so it has no shared mode; its
// figures stand beside those of the others as what memory alone costs.
#include "bench/bank.h"
#include <cstring>
#include <tcbdb.h>

namespace bank {
namespace {

class TokyoBank : public Bank {
    TCBDB* db_[3] = {};

    static uint32_t sleutel(int32_t nr) { return __builtin_bswap32(static_cast<uint32_t>(nr)); }
    static void code_in(uint8_t* b, uint16_t groep, const char* code) {
        b[0] = static_cast<uint8_t>(groep >> 8);
        b[1] = static_cast<uint8_t>(groep);
        memcpy(b + 2, code, 10);
    }
    void goed(bool r, int db, const char* wat) { eis(r, wat, tcbdberrmsg(tcbdbecode(db_[db]))); }
    bool haal(const void* nr, Rij* r) {
        int n;
        const void* p = tcbdbget3(db_[0], nr, 4, &n);
        if (p)
            memcpy(r, p, sizeof *r);
        return p != nullptr;
    }
    bool via(int db, const void* k, Rij* r) {
        int n;
        const void* nr = tcbdbget3(db_[db], k, 12, &n);
        return nr && haal(nr, r);
    }
    // Of the records under one value only the one meant.
    void los(int db, const void* k, uint32_t nr) {
        BDBCUR* c = tcbdbcurnew(db_[db]);
        int n;
        for (bool er = tcbdbcurjump(c, k, 12); er; er = tcbdbcurnext(c)) {
            const void* v = tcbdbcurval3(c, &n);
            if (v && memcmp(v, &nr, 4) == 0) {
                goed(tcbdbcurout(c), db, "tcbdbcurout");
                break;
            }
        }
        tcbdbcurdel(c);
    }

public:
    const char* naam() const override { return "Tokyo"; }
    bool gedeeld() const override { return false; }
    void open(const std::string& map, Stand stand) override {
        for (int i = 0; i < 3; i++) {
            db_[i] = tcbdbnew();
            tcbdbsetcache(db_[i], 65536, 4096);
            std::string pad = map + "/tokyo" + (stand == ALLEEN ? "1" : "") + std::to_string(i);
            goed(tcbdbopen(db_[i], pad.c_str(), BDBOWRITER | BDBOCREAT), i, "tcbdbopen");
        }
    }
    void sluit() override {
        for (TCBDB* db : db_) {
            tcbdbclose(db);
            tcbdbdel(db);
        }
    }
    void voegin(const Rij& r) override {
        uint32_t n = sleutel(r.nr);
        uint8_t b[12];
        code_in(b, r.groep, r.code);
        goed(tcbdbputkeep(db_[0], &n, 4, &r, sizeof r), 0, "tcbdbputkeep");
        goed(tcbdbputdup(db_[1], r.naam, 12, &n, 4), 1, "tcbdbputdup");
        goed(tcbdbputdup(db_[2], b, 12, &n, 4), 2, "tcbdbputdup");
    }
    bool lees(int32_t nr, Rij* r) override {
        uint32_t n = sleutel(nr);
        return haal(&n, r);
    }
    bool leesnaam(const char* naam, Rij* r) override { return via(1, naam, r); }
    bool leescode(uint16_t groep, const char* code, Rij* r) override {
        uint8_t b[12];
        code_in(b, groep, code);
        return via(2, b, r);
    }
    bool wijzig(int32_t nr, const char* naam) override {
        uint32_t n = sleutel(nr);
        Rij r{};
        if (!haal(&n, &r))
            return false;
        los(1, r.naam, n);
        memcpy(r.naam, naam, sizeof r.naam);
        r.teller++;
        goed(tcbdbputdup(db_[1], r.naam, 12, &n, 4), 1, "tcbdbputdup");
        goed(tcbdbput(db_[0], &n, 4, &r, sizeof r), 0, "tcbdbput");
        return true;
    }
    bool verwijder(int32_t nr) override {
        uint32_t n = sleutel(nr);
        Rij r{};
        if (!haal(&n, &r))
            return false;
        uint8_t b[12];
        code_in(b, r.groep, r.code);
        los(1, r.naam, n);
        los(2, b, n);
        goed(tcbdbout(db_[0], &n, 4), 0, "tcbdbout");
        return true;
    }
    Som tel(int sleutel, const uint8_t* vanaf) {
        Som s;
        BDBCUR* c = tcbdbcurnew(db_[sleutel - 1]);
        int n;
        Rij r{};
        for (bool er = vanaf ? tcbdbcurjump(c, vanaf, 12) : tcbdbcurfirst(c); er; er = tcbdbcurnext(c)) {
            if (vanaf && memcmp(tcbdbcurkey3(c, &n), vanaf, 2) != 0)
                break;
            const void* v = tcbdbcurval3(c, &n);
            if (sleutel == 1)
                memcpy(&r, v, sizeof r);
            else
                haal(v, &r);
            s.tel(r);
        }
        tcbdbcurdel(c);
        return s;
    }
    Som loop(int sleutel) override { return tel(sleutel, nullptr); }
    Som groep(uint16_t groep) override {
        uint8_t b[12];
        const char leeg[10] = {};
        code_in(b, groep, leeg);
        return tel(3, b);
    }
};

} // namespace

std::unique_ptr<Bank> tokyo_bank() {
    return std::make_unique<TokyoBank>();
}

} // namespace bank
