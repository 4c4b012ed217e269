// The store itself.
#include "bench/bank.h"
#include "store/ix.h"
#include "store/rebuild.h"
#include <cstdlib>
#include <cstring>
#include <sched.h>
#include <unistd.h>

using namespace zg;

namespace bank {
namespace {

class IxBank : public Bank {
    const bool kaart_;
    ICB* icb_ = nullptr;
    std::string pad_;

    void kies() { setenv("ZGKAART", kaart_ ? "1" : "0", 1); } // asked for at each opening

public:
    explicit IxBank(bool kaart) : kaart_(kaart) {}
    const char* naam() const override { return kaart_ ? "store" : "store, calls"; }
    void open(const std::string& map, Stand stand) override {
        kies();
        pad_ = map + (kaart_ ? "/BENCH" : "/BELLEN");
        if (access((pad_ + ".INX").c_str(), F_OK) != 0) {
            ICB* icb = IXCREATE(pad_.c_str(), 1);
            IXUPDFCB(icb, 0, "bench,200");
            IXUPDFCB(icb, 1, "nr,NODUPS,I,1,4");
            IXUPDFCB(icb, 2, "naam,C,5,16");
            IXUPDFCB(icb, 3, "groep,I,17,18,C,19,28");
            IXINIT(icb);
            IXCLOSE(icb);
        }
        IXWAITHOOK = [](ICB*) { usleep(50); };
        icb_ = IXOPEN(pad_.c_str(), stand == ALLEEN ? 1 : 2);
    }
    void sluit() override { IXCLOSE(icb_); }
    void voegin(const Rij& r) override { eis(IXWRITE(icb_, &r), "IXWRITE"); }
    bool lees(int32_t nr, Rij* r) override {
        IXSWITCH(icb_, 1);
        r->nr = nr;
        return IXREAD(icb_, r);
    }
    bool leesnaam(const char* naam, Rij* r) override {
        IXSWITCH(icb_, 2);
        memcpy(r->naam, naam, sizeof r->naam);
        return IXFIRSTR(icb_, r, 1);
    }
    bool leescode(uint16_t groep, const char* code, Rij* r) override {
        IXSWITCH(icb_, 3);
        r->groep = groep;
        memcpy(r->code, code, sizeof r->code);
        return IXFIRSTR(icb_, r, 2);
    }
    bool wijzig(int32_t nr, const char* naam) override {
        Rij r{};
        IXSWITCH(icb_, 1);
        r.nr = nr;
        if (!IXREADL(icb_, &r)) {
            IXUNLOCK(icb_, &r);
            return false;
        }
        memcpy(r.naam, naam, sizeof r.naam);
        r.teller++;
        return IXWRITE(icb_, &r);
    }
    bool verwijder(int32_t nr) override {
        Rij r{};
        IXSWITCH(icb_, 1);
        r.nr = nr;
        if (!IXREADL(icb_, &r)) {
            IXUNLOCK(icb_, &r);
            return false;
        }
        IXDELETE(icb_, &r);
        return true;
    }
    Som loop(int sleutel) override {
        Som s;
        Rij r{};
        memset(&r, 0, sizeof r);
        IXSWITCH(icb_, sleutel);
        for (int ok = IXFIRST(icb_, &r); ok; ok = IXNEXT(icb_, &r))
            s.tel(r);
        return s;
    }
    Som groep(uint16_t groep) override {
        Som s;
        Rij r{};
        memset(&r, 0, sizeof r);
        IXSWITCH(icb_, 3);
        r.groep = groep;
        for (int ok = IXFIRSTR(icb_, &r, 1); ok; ok = IXNEXTR(icb_, &r, 1))
            s.tel(r);
        return s;
    }
    bool herbouw() override {
        kies();
        IXCLOSE(icb_);
        bool goed = IXBLDIX(pad_.c_str());
        icb_ = IXOPEN(pad_.c_str(), 2);
        return goed;
    }
};

} // namespace

std::unique_ptr<Bank> ix_bank(bool kaart) {
    return std::make_unique<IxBank>(kaart);
}

} // namespace bank
