// SQLite, synchronous off, write-ahead log or rollback journal; prepared statements and a cache of 64 MB. The number
// is the row id, so it costs no index of its own.
#include "bench/bank.h"
#include <cstring>
#include <sqlite3.h>

namespace bank {
namespace {

class SqliteBank : public Bank {
    bool wal_;
    sqlite3* db_ = nullptr;
    enum { VOEGIN, LEES, NAAM, CODE, WIJZIG, WEG, BEGIN, KLAAR, TERUG, LOOP1, LOOP2, LOOP3, GROEP, AANTAL };
    sqlite3_stmt* st_[AANTAL] = {};

    void doe(const char* sql) {
        char* fout = nullptr;
        eis(sqlite3_exec(db_, sql, nullptr, nullptr, &fout) == SQLITE_OK, sql, fout ? fout : "");
    }
    bool stap(int n) {
        int r = sqlite3_step(st_[n]);
        eis(r == SQLITE_ROW || r == SQLITE_DONE, "sqlite3_step", sqlite3_errmsg(db_));
        return r == SQLITE_ROW;
    }
    void klaar(int n) { sqlite3_reset(st_[n]); }
    bool haal(int n, int kolom, Rij* r) {
        bool er = stap(n);
        if (er)
            memcpy(r, sqlite3_column_blob(st_[n], kolom), sizeof *r);
        klaar(n);
        return er;
    }
    void bind(int n, int plaats, const char* p, int lengte) {
        sqlite3_bind_text(st_[n], plaats, p, static_cast<int>(strnlen(p, static_cast<size_t>(lengte))),
                          SQLITE_STATIC);
    }
    Som tel(int n) {
        Som s;
        Rij r{};
        while (stap(n)) {
            memcpy(&r, sqlite3_column_blob(st_[n], 0), sizeof r);
            s.tel(r);
        }
        klaar(n);
        return s;
    }

public:
    explicit SqliteBank(bool wal) : wal_(wal) {}
    const char* naam() const override { return wal_ ? "SQLite WAL" : "SQLite jrnl"; }
    void open(const std::string& map, Stand stand) override {
        std::string pad = map + (wal_ ? "/wal.db" : "/jrn.db");
        eis(sqlite3_open(pad.c_str(), &db_) == SQLITE_OK, "sqlite3_open");
        sqlite3_busy_handler(
            db_, [](void*, int) { return sqlite3_sleep(0), 1; }, nullptr);
        if (stand == ALLEEN)
            doe("PRAGMA locking_mode=EXCLUSIVE");
        doe(wal_ ? "PRAGMA journal_mode=WAL" : "PRAGMA journal_mode=DELETE");
        doe("PRAGMA synchronous=OFF; PRAGMA cache_size=-65536; PRAGMA temp_store=MEMORY");
        doe("CREATE TABLE IF NOT EXISTS r(nr INTEGER PRIMARY KEY, naam TEXT, groep INTEGER, code TEXT, rec "
            "BLOB);"
            "CREATE INDEX IF NOT EXISTS r2 ON r(naam); CREATE INDEX IF NOT EXISTS r3 ON r(groep, code)");
        const char* sql[AANTAL] = {"INSERT INTO r VALUES(?,?,?,?,?)",
                                   "SELECT rec FROM r WHERE nr=?",
                                   "SELECT rec FROM r WHERE naam=? LIMIT 1",
                                   "SELECT rec FROM r WHERE groep=? AND code=? LIMIT 1",
                                   "UPDATE r SET naam=?, rec=? WHERE nr=?",
                                   "DELETE FROM r WHERE nr=?",
                                   "BEGIN IMMEDIATE",
                                   "COMMIT",
                                   "ROLLBACK",
                                   "SELECT rec FROM r ORDER BY nr",
                                   "SELECT rec FROM r ORDER BY naam, nr",
                                   "SELECT rec FROM r ORDER BY groep, code, nr",
                                   "SELECT rec FROM r WHERE groep=? ORDER BY code"};
        for (int i = 0; i < AANTAL; i++)
            eis(sqlite3_prepare_v2(db_, sql[i], -1, &st_[i], nullptr) == SQLITE_OK, sql[i],
                sqlite3_errmsg(db_));
    }
    void sluit() override {
        for (sqlite3_stmt* s : st_)
            sqlite3_finalize(s);
        eis(sqlite3_close(db_) == SQLITE_OK, "sqlite3_close");
    }
    void voegin(const Rij& r) override {
        sqlite3_bind_int(st_[VOEGIN], 1, r.nr);
        bind(VOEGIN, 2, r.naam, sizeof r.naam);
        sqlite3_bind_int(st_[VOEGIN], 3, r.groep);
        bind(VOEGIN, 4, r.code, sizeof r.code);
        sqlite3_bind_blob(st_[VOEGIN], 5, &r, sizeof r, SQLITE_STATIC);
        stap(VOEGIN);
        klaar(VOEGIN);
    }
    bool lees(int32_t nr, Rij* r) override {
        sqlite3_bind_int(st_[LEES], 1, nr);
        return haal(LEES, 0, r);
    }
    bool leesnaam(const char* naam, Rij* r) override {
        bind(NAAM, 1, naam, 12);
        return haal(NAAM, 0, r);
    }
    bool leescode(uint16_t groep, const char* code, Rij* r) override {
        sqlite3_bind_int(st_[CODE], 1, groep);
        bind(CODE, 2, code, 10);
        return haal(CODE, 0, r);
    }
    bool wijzig(int32_t nr, const char* naam) override {
        Rij r{};
        stap(BEGIN), klaar(BEGIN);
        bool er = lees(nr, &r);
        if (er) {
            memcpy(r.naam, naam, sizeof r.naam);
            r.teller++;
            bind(WIJZIG, 1, r.naam, sizeof r.naam);
            sqlite3_bind_blob(st_[WIJZIG], 2, &r, sizeof r, SQLITE_STATIC);
            sqlite3_bind_int(st_[WIJZIG], 3, nr);
            stap(WIJZIG), klaar(WIJZIG);
        }
        stap(KLAAR), klaar(KLAAR);
        return er;
    }
    bool verwijder(int32_t nr) override {
        Rij r{};
        stap(BEGIN), klaar(BEGIN);
        bool er = lees(nr, &r);
        sqlite3_bind_int(st_[WEG], 1, nr);
        stap(WEG), klaar(WEG);
        stap(KLAAR), klaar(KLAAR);
        return er;
    }
    Som loop(int sleutel) override { return tel(LOOP1 + sleutel - 1); }
    Som groep(uint16_t groep) override {
        sqlite3_bind_int(st_[GROEP], 1, groep);
        return tel(GROEP);
    }
    bool herbouw() override {
        doe("REINDEX r");
        return true;
    }
    void begin() override { doe("BEGIN"); }
    void einde() override { doe("COMMIT"); }
};

} // namespace

std::unique_ptr<Bank> sqlite_bank(bool wal) {
    return std::make_unique<SqliteBank>(wal);
}

} // namespace bank
