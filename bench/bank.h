// One engine under test: 200-byte records with three keys. Number is unique; name has duplicates; group and code
// are two parts of one key with duplicates. Every call is complete when it returns, and in shared mode other
// processes see it then.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

namespace bank {

struct [[gnu::packed]] Rij {
    int32_t nr;     // key 1
    char naam[12];  // key 2
    uint16_t groep; // key 3, first part
    char code[10];  // key 3, second part
    int32_t teller; // changed by updates
    char rest[168];
};
static_assert(sizeof(Rij) == 200);

enum Stand { GEDEELD, ALLEEN };

struct Som { // what a walk saw; equal on every engine for the same work
    int64_t aantal = 0, som = 0;
    void tel(const Rij& r) { aantal++, som += static_cast<int64_t>(r.nr) * 31 + r.teller; }
    bool operator==(const Som&) const = default;
};

class Bank {
public:
    virtual ~Bank() = default;
    virtual const char* naam() const = 0;
    virtual bool gedeeld() const { return true; } // can several processes write it at once?
    virtual void open(const std::string& map, Stand stand) = 0;
    virtual void sluit() = 0;
    virtual void voegin(const Rij& r) = 0;
    virtual bool lees(int32_t nr, Rij* r) = 0;
    virtual bool leesnaam(const char* naam, Rij* r) = 0; // any record of that name
    virtual bool leescode(uint16_t groep, const char* code, Rij* r) = 0;
    // Read under lock, give it another name and count one up, write.
    virtual bool wijzig(int32_t nr, const char* naam) = 0;
    virtual bool verwijder(int32_t nr) = 0;  // read under lock, delete
    virtual Som loop(int sleutel) = 0;       // all records in the order of a key
    virtual Som groep(uint16_t groep) = 0;   // all records of a group, by code
    virtual bool herbouw() { return false; } // all indexes anew; false: has no such thing
    // Many inserts as the engine likes them best, nobody else about.
    virtual void begin() {}
    virtual void einde() {}
};

std::unique_ptr<Bank> ix_bank(bool kaart); // its files in memory, or by calls alone
std::unique_ptr<Bank> sqlite_bank(bool wal);
std::unique_ptr<Bank> lmdb_bank(bool kaart); // into its writable map, or by calls
std::unique_ptr<Bank> bdb_bank();
std::unique_ptr<Bank> tokyo_bank();

[[noreturn]] void stop(const char* wat, const char* waarom);
inline void eis(bool goed, const char* wat, const char* waarom = "") {
    if (!goed)
        stop(wat, waarom);
}

} // namespace bank
