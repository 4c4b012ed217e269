#include "e2e/datamap.h"
#include <filesystem>
#include <gtest/gtest.h>
using namespace zg::test;
TEST(ZZTmp, Maak) {
    Datamap map;
    auto k1 = maak_kop("Voorjaar"), k2 = maak_kop("Zomerjurken", WERKDATUM - 20), k3 = maak_kop("Grote order", WERKDATUM - 5);
    k2.korting = -250; k2.deelseizoen = 1; k2.inkoopcode = 2; k2.agent = 40;
    std::vector<Regel> veel;
    for (int i = 1; i <= 33; i++) veel.push_back({5, "MODEL" + std::to_string((i+1)/2), "D" + std::to_string(i), uint16_t(i), i, 1000 + i});
    veel[3].maatsoort = 9; 
    map.journaal(maak_order(k1, {{}}, "Franco huis\nSpoed") + maak_order(k2, {{5,"ROK"},{5,"ROK","STREEP",2,12,12345}}) + maak_order(k3, veel));
    map.overgave();
    std::filesystem::remove_all("/tmp/zgproef");
    std::filesystem::copy(map.pad(), "/tmp/zgproef", std::filesystem::copy_options::recursive);
}
