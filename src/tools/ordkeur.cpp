#include "tools/ordkeur.h"
#include "order/ordloop.h"
#include "order/ordrec.h"
#include "shared/iomaat.h"
#include "tools/ordjson.h"
#include "tools/veldkeur.h"
#include <algorithm>
#include <cstring>

namespace zg {

std::vector<ordkwaal> ord_keur(int fd, ordsoort soort, const ordomgeving& omgeving, ordtelling* telling) {
    std::vector<ordkwaal> uit = ord_controle(fd, soort, omgeving, telling);
    ordloop l;
    ordrauw r;
    orddessin regel{};
    ordloop_begin(&l, fd, 0, INT64_MAX);
    while (ordloop_volgende(&l, &r) == LOOP_RECORD) {
        if (r.tag == 'D')
            memcpy(&regel, r.data + 1, sizeof regel);
        // In the full registration the sizes of a line may have changed since its quantities were noted.
        const uint8_t maat = r.tag == 'F' ? r.data[1 + offsetof(ordfil, maat)] : 0;
        if (maat >= 1 && maat <= MATEN && !regel.geregistreerd && !maat_in(regel.maten, maat))
            uit.push_back(
                {r.offset, "quantity of size " + std::to_string(maat) + ", which is not of this line"});
        for (const Veld& v : ord_velden(r.tag))
            if (const std::string fout = veld_kwaal(v, r.data + 1); !fout.empty())
                uit.push_back({r.offset, fout});
    }
    std::ranges::stable_sort(uit, {}, &ordkwaal::pos);
    return uit;
}

} // namespace zg
