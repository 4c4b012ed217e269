// A slow, plain model of the trees in memory, one step at a time and with linear scans: what the files of a single
// process must hold, block for block. No part of it is shared with the store.
#pragma once
#include "store/ix.h"
#include <array>
#include <map>
#include <string>
#include <vector>

namespace zg::test {

int model_collate(const uint8_t* a, const uint8_t* b, int n);

struct Model {
    IXHEADER h{};
    std::vector<std::array<uint8_t, IXBLOK>> blok;
    std::vector<uint8_t> data;
    int32_t currec = -1;

    explicit Model(const IXHEADER& leeg); // header of an empty pair
    void schrijf(const uint8_t* rec);     // insert, or update when key 1 exists
    void wis(const uint8_t* rec);         // currec must be the record
    int32_t zoek(const uint8_t* rec);     // by key 1; sets currec
    // First block that differs from the index file; "" when the files are the same.
    std::string verschil(const std::string& naam) const;

private:
    std::array<uint8_t, IXBLOK> node{};
    int32_t curblock = 1, insptr = 0;
    int curent = 5;
    int32_t parent[10]{};
    uint8_t keybuf[64]{};

    const IXKEYDEF& def() const { return h.keydef[node[0] - 1]; }
    int stap() const { return def().keylen + 4; }
    int niveau() const { return node[1]; }
    uint8_t& aantal() { return node[4]; }
    uint8_t* op(int plaats) { return node.data() + plaats; }
    const uint8_t* op(int plaats) const { return node.data() + plaats; }
    int einde() { return 5 + aantal() * stap(); }
    int comp(const uint8_t* a, const uint8_t* b, int lengte) const;
    void bouw(const uint8_t* rec);
    void rdix(int32_t b);
    void wrix(int32_t b);
    void kies(int k);
    void lockey();
    int32_t wijzer(int plaats) const;
    int32_t zoek_gelijk();
    void inskey();
    void split();
    void delentry();
    void setsep(const uint8_t* nieuw);
    void sleutel_in(int k, const uint8_t* rec);
    void sleutel_uit(int k, const uint8_t* rec);
};

} // namespace zg::test
