// Berkeley DB as a concurrent data store (its form for several processes without transactions), a primary by number
// and two secondaries of duplicates.
#include "bench/bank.h"
#include <cstring>
#include <db.h>
#include <sys/stat.h>

namespace bank {
namespace {

class BdbBank : public Bank {
    DB_ENV* env_ = nullptr;
    DB* db_[3] = {};

    static void goed(int r, const char* wat) { eis(r == 0, wat, db_strerror(r)); }
    static DBT dbt(const void* p, size_t n) {
        DBT d;
        memset(&d, 0, sizeof d);
        d.data = const_cast<void*>(p);
        d.size = static_cast<u_int32_t>(n);
        return d;
    }
    static DBT in(void* p, size_t n) {
        DBT d = dbt(p, 0);
        d.ulen = static_cast<u_int32_t>(n);
        d.flags = DB_DBT_USERMEM;
        return d;
    }
    static uint32_t sleutel(int32_t nr) { return __builtin_bswap32(static_cast<uint32_t>(nr)); }
    static int naam_uit(DB*, const DBT*, const DBT* v, DBT* k) {
        *k = dbt(static_cast<const Rij*>(v->data)->naam, 12);
        return 0;
    }
    static void code_in(uint8_t* b, uint16_t groep, const char* code) {
        b[0] = static_cast<uint8_t>(groep >> 8);
        b[1] = static_cast<uint8_t>(groep);
        memcpy(b + 2, code, 10);
    }
    static int code_uit(DB*, const DBT*, const DBT* v, DBT* k) {
        const Rij* r = static_cast<const Rij*>(v->data);
        uint8_t* b = static_cast<uint8_t*>(malloc(12));
        code_in(b, r->groep, r->code);
        *k = dbt(b, 12);
        k->flags = DB_DBT_APPMALLOC;
        return 0;
    }
    bool haal(DB* db, DBT k, Rij* r) {
        DBT v = in(r, sizeof *r);
        int uit = db->get(db, nullptr, &k, &v, 0);
        eis(uit == 0 || uit == DB_NOTFOUND, "get", db_strerror(uit));
        return uit == 0;
    }
    // A write cursor on a record: read it, then change or delete it, nobody else between.
    template <class F> bool onder_slot(int32_t nr, F doe) {
        DBC* c;
        goed(db_[0]->cursor(db_[0], nullptr, &c, DB_WRITECURSOR), "cursor");
        uint32_t n = sleutel(nr);
        DBT k = dbt(&n, 4);
        k.flags = DB_DBT_USERMEM;
        k.ulen = 4;
        Rij r{};
        DBT v = in(&r, sizeof r);
        int uit = c->get(c, &k, &v, DB_SET);
        if (uit == 0)
            goed(doe(c, &k, &r), "c->put");
        goed(c->close(c), "c->close");
        return uit == 0;
    }

public:
    const char* naam() const override { return "Berkeley DB"; }
    void open(const std::string& map, Stand stand) override {
        std::string thuis = map + "/bdb";
        mkdir(thuis.c_str(), 0777);
        goed(db_env_create(&env_, 0), "db_env_create");
        goed(env_->set_cachesize(env_, 0, 64 << 20, 1), "set_cachesize");
        u_int32_t vlaggen = DB_CREATE | DB_INIT_MPOOL | (stand == GEDEELD ? DB_INIT_CDB : DB_PRIVATE);
        if (stand == ALLEEN)
            thuis += "1", mkdir(thuis.c_str(), 0777);
        goed(env_->open(env_, thuis.c_str(), vlaggen, 0660), "env->open");
        const char* naam[] = {"nr", "naam", "code"};
        for (int i = 0; i < 3; i++) {
            goed(db_create(&db_[i], env_, 0), "db_create");
            if (i)
                goed(db_[i]->set_flags(db_[i], DB_DUPSORT), "set_flags");
            goed(db_[i]->open(db_[i], nullptr, naam[i], nullptr, DB_BTREE, DB_CREATE, 0660), "open");
        }
        goed(db_[0]->associate(db_[0], nullptr, db_[1], naam_uit, 0), "associate");
        goed(db_[0]->associate(db_[0], nullptr, db_[2], code_uit, 0), "associate");
    }
    void sluit() override {
        for (int i = 2; i >= 0; i--)
            goed(db_[i]->close(db_[i], DB_NOSYNC), "close");
        goed(env_->close(env_, 0), "env->close");
    }
    void voegin(const Rij& r) override {
        uint32_t n = sleutel(r.nr);
        DBT k = dbt(&n, 4), v = dbt(&r, sizeof r);
        goed(db_[0]->put(db_[0], nullptr, &k, &v, DB_NOOVERWRITE), "put");
    }
    bool lees(int32_t nr, Rij* r) override {
        uint32_t n = sleutel(nr);
        return haal(db_[0], dbt(&n, 4), r);
    }
    bool leesnaam(const char* naam, Rij* r) override { return haal(db_[1], dbt(naam, 12), r); }
    bool leescode(uint16_t groep, const char* code, Rij* r) override {
        uint8_t b[12];
        code_in(b, groep, code);
        return haal(db_[2], dbt(b, 12), r);
    }
    bool wijzig(int32_t nr, const char* naam) override {
        return onder_slot(nr, [naam](DBC* c, DBT* k, Rij* r) {
            memcpy(r->naam, naam, sizeof r->naam);
            r->teller++;
            DBT v = dbt(r, sizeof *r);
            return c->put(c, k, &v, DB_CURRENT);
        });
    }
    bool verwijder(int32_t nr) override {
        return onder_slot(nr, [](DBC* c, DBT*, Rij*) { return c->del(c, 0); });
    }
    Som tel(int sleutel, const uint8_t* vanaf) {
        Som s;
        DBC* c;
        DB* db = db_[sleutel - 1];
        goed(db->cursor(db, nullptr, &c, 0), "cursor");
        uint8_t kb[16];
        Rij r{};
        DBT k = in(kb, sizeof kb), v = in(&r, sizeof r);
        if (vanaf) {
            memcpy(kb, vanaf, 12);
            k.size = 12;
        }
        for (int uit = c->get(c, &k, &v, vanaf ? DB_SET_RANGE : DB_FIRST); uit == 0;
             uit = c->get(c, &k, &v, DB_NEXT)) {
            if (vanaf && memcmp(kb, vanaf, 2) != 0)
                break;
            s.tel(r);
        }
        goed(c->close(c), "c->close");
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

std::unique_ptr<Bank> bdb_bank() {
    return std::make_unique<BdbBank>();
}

} // namespace bank
