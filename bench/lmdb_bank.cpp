// LMDB without sync: a main table by number and two of duplicates that lead to numbers.
#include "bench/bank.h"
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <lmdb.h>
#include <vector>

namespace bank {
namespace {

class LmdbBank : public Bank {
    const bool kaart_;
    MDB_env* env_ = nullptr;
    MDB_dbi db_[3] = {};
    MDB_txn *lees_ = nullptr, *bulk_ = nullptr;
    std::string pad_;

    static void goed(int r, const char* wat) { eis(r == 0, wat, mdb_strerror(r)); }
    static MDB_val val(const void* p, size_t n) { return {n, const_cast<void*>(p)}; }
    static MDB_val nrval(uint8_t* b, int32_t nr) { // most significant first, so that bytes order as numbers
        uint32_t n = __builtin_bswap32(static_cast<uint32_t>(nr));
        memcpy(b, &n, 4);
        return val(b, 4);
    }
    static MDB_val codeval(uint8_t* b, uint16_t groep, const char* code) {
        b[0] = static_cast<uint8_t>(groep >> 8);
        b[1] = static_cast<uint8_t>(groep);
        memcpy(b + 2, code, 10);
        return val(b, 12);
    }
    MDB_txn* schrijf() {
        if (bulk_)
            return bulk_;
        MDB_txn* t;
        goed(mdb_txn_begin(env_, nullptr, 0, &t), "mdb_txn_begin");
        return t;
    }
    void klaar(MDB_txn* t) {
        if (t != bulk_)
            goed(mdb_txn_commit(t), "mdb_txn_commit");
    }
    struct Lezing { // one read transaction, renewed
        LmdbBank* b;
        explicit Lezing(LmdbBank* bank) : b(bank) { goed(mdb_txn_renew(b->lees_), "mdb_txn_renew"); }
        ~Lezing() { mdb_txn_reset(b->lees_); }
    };
    bool haal(MDB_txn* t, MDB_val nr, Rij* r) {
        MDB_val v;
        int uit = mdb_get(t, db_[0], &nr, &v);
        if (uit == 0)
            memcpy(r, v.mv_data, sizeof *r);
        return uit == 0;
    }
    bool via(int db, MDB_val k, Rij* r) {
        Lezing l(this);
        MDB_val nr;
        return mdb_get(lees_, db_[db], &k, &nr) == 0 && haal(lees_, nr, r);
    }

public:
    explicit LmdbBank(bool kaart) : kaart_(kaart) {}
    const char* naam() const override { return kaart_ ? "LMDB map" : "LMDB"; }
    void open(const std::string& map, Stand) override { open_pad(map + (kaart_ ? "/lmdbw" : "/lmdb")); }
    void open_pad(const std::string& pad) {
        pad_ = pad;
        goed(mdb_env_create(&env_), "mdb_env_create");
        mdb_env_set_maxdbs(env_, 3);
        mdb_env_set_mapsize(env_, size_t{2} << 30);
        goed(mdb_env_open(env_, pad_.c_str(), MDB_NOSYNC | (kaart_ ? MDB_WRITEMAP : 0) | MDB_NOSUBDIR, 0660),
             "open");
        MDB_txn* t = schrijf();
        goed(mdb_dbi_open(t, "nr", MDB_CREATE, &db_[0]), "nr");
        goed(mdb_dbi_open(t, "naam", MDB_CREATE | MDB_DUPSORT | MDB_DUPFIXED, &db_[1]), "naam");
        goed(mdb_dbi_open(t, "code", MDB_CREATE | MDB_DUPSORT | MDB_DUPFIXED, &db_[2]), "code");
        klaar(t);
        goed(mdb_txn_begin(env_, nullptr, MDB_RDONLY, &lees_), "mdb_txn_begin");
        mdb_txn_reset(lees_);
    }
    void sluit() override {
        mdb_txn_abort(lees_);
        mdb_env_close(env_);
    }
    void voegin(const Rij& r) override {
        MDB_txn* t = schrijf();
        uint8_t a[4], b[12];
        MDB_val nr = nrval(a, r.nr), naam = val(r.naam, 12), code = codeval(b, r.groep, r.code),
                v = val(&r, sizeof r);
        goed(mdb_put(t, db_[0], &nr, &v, MDB_NOOVERWRITE), "mdb_put");
        goed(mdb_put(t, db_[1], &naam, &nr, 0), "mdb_put");
        goed(mdb_put(t, db_[2], &code, &nr, 0), "mdb_put");
        klaar(t);
    }
    bool lees(int32_t nr, Rij* r) override {
        Lezing l(this);
        uint8_t a[4];
        return haal(lees_, nrval(a, nr), r);
    }
    bool leesnaam(const char* naam, Rij* r) override { return via(1, val(naam, 12), r); }
    bool leescode(uint16_t groep, const char* code, Rij* r) override {
        uint8_t b[12];
        return via(2, codeval(b, groep, code), r);
    }
    bool wijzig(int32_t nr, const char* naam) override {
        MDB_txn* t = schrijf();
        Rij r{};
        uint8_t a[4];
        MDB_val k = nrval(a, nr);
        bool er = haal(t, k, &r);
        if (er) {
            MDB_val oud = val(r.naam, 12), nieuw = val(naam, 12);
            goed(mdb_del(t, db_[1], &oud, &k), "mdb_del");
            goed(mdb_put(t, db_[1], &nieuw, &k, 0), "mdb_put");
            memcpy(r.naam, naam, sizeof r.naam);
            r.teller++;
            MDB_val v = val(&r, sizeof r);
            goed(mdb_put(t, db_[0], &k, &v, 0), "mdb_put");
        }
        klaar(t);
        return er;
    }
    bool verwijder(int32_t nr) override {
        MDB_txn* t = schrijf();
        Rij r{};
        uint8_t a[4], b[12];
        MDB_val k = nrval(a, nr);
        bool er = haal(t, k, &r);
        if (er) {
            MDB_val naam = val(r.naam, 12), code = codeval(b, r.groep, r.code);
            goed(mdb_del(t, db_[1], &naam, &k), "mdb_del");
            goed(mdb_del(t, db_[2], &code, &k), "mdb_del");
            goed(mdb_del(t, db_[0], &k, nullptr), "mdb_del");
        }
        klaar(t);
        return er;
    }
    Som loop(int sleutel) override {
        Som s;
        Lezing l(this);
        MDB_cursor* c;
        goed(mdb_cursor_open(lees_, db_[sleutel - 1], &c), "cursor");
        MDB_val k, v;
        Rij r{};
        while (mdb_cursor_get(c, &k, &v, MDB_NEXT) == 0) {
            if (sleutel == 1)
                memcpy(&r, v.mv_data, sizeof r);
            else
                haal(lees_, v, &r);
            s.tel(r);
        }
        mdb_cursor_close(c);
        return s;
    }
    Som groep(uint16_t groep) override {
        Som s;
        Lezing l(this);
        MDB_cursor* c;
        goed(mdb_cursor_open(lees_, db_[2], &c), "cursor");
        uint8_t b[12];
        const char leeg[10] = {};
        MDB_val k = codeval(b, groep, leeg), v;
        Rij r{};
        for (int uit = mdb_cursor_get(c, &k, &v, MDB_SET_RANGE); uit == 0 && memcmp(k.mv_data, b, 2) == 0;
             uit = mdb_cursor_get(c, &k, &v, MDB_NEXT)) {
            haal(lees_, v, &r);
            s.tel(r);
        }
        mdb_cursor_close(c);
        return s;
    }
    // All three tables out of the records, sorted, appended in one transaction to a new environment that takes the place of
    // the old one.
    bool herbouw() override {
        using Ingang = std::array<uint8_t, 16>; // key and number
        std::vector<Ingang> namen, codes;
        LmdbBank nieuw(kaart_);
        nieuw.open_pad(pad_ + ".new");
        nieuw.begin();
        {
            Lezing l(this);
            MDB_cursor *c, *in;
            goed(mdb_cursor_open(lees_, db_[0], &c), "cursor");
            goed(mdb_cursor_open(nieuw.bulk_, nieuw.db_[0], &in), "cursor");
            MDB_val k, v;
            while (mdb_cursor_get(c, &k, &v, MDB_NEXT) == 0) {
                Rij r;
                memcpy(&r, v.mv_data, sizeof r);
                goed(mdb_cursor_put(in, &k, &v, MDB_APPEND), "append");
                Ingang n, q;
                memcpy(n.data(), r.naam, 12);
                codeval(q.data(), r.groep, r.code);
                nrval(n.data() + 12, r.nr);
                nrval(q.data() + 12, r.nr);
                namen.push_back(n);
                codes.push_back(q);
            }
            mdb_cursor_close(c);
            mdb_cursor_close(in);
        }
        for (int db : {1, 2}) {
            std::vector<Ingang>& lijst = db == 1 ? namen : codes;
            std::sort(lijst.begin(), lijst.end());
            MDB_cursor* in;
            goed(mdb_cursor_open(nieuw.bulk_, nieuw.db_[db], &in), "cursor");
            for (const Ingang& i : lijst) {
                MDB_val k = val(i.data(), 12), v = val(i.data() + 12, 4);
                goed(mdb_cursor_put(in, &k, &v, MDB_APPENDDUP), "append");
            }
            mdb_cursor_close(in);
        }
        nieuw.einde();
        const std::string pad = pad_;
        nieuw.sluit();
        sluit();
        eis(rename((pad + ".new").c_str(), pad.c_str()) == 0, "rename");
        remove((pad + ".new-lock").c_str());
        open_pad(pad);
        return true;
    }
    void begin() override {
        MDB_txn* t = schrijf();
        bulk_ = t;
    }
    void einde() override {
        MDB_txn* t = bulk_;
        bulk_ = nullptr;
        klaar(t);
    }
};

} // namespace

std::unique_ptr<Bank> lmdb_bank(bool kaart) {
    return std::make_unique<LmdbBank>(kaart);
}

} // namespace bank
