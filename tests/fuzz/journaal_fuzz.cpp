// Order journals and work files, from a whole one with records of every kind on. The check and every reading routine take
// them to their end, and the loop, the check and the reader agree on where that is.
#include "fuzz/hulp.h"
#include "order/ioord.h"
#include "order/ordcheck.h"
#include "order/ordloop.h"
#include <fcntl.h>
#include <unistd.h>

using namespace zg;
using namespace zg::fuzz;

namespace {

// All there is to read, from every record; `max` steps at most.
int64_t lees_alles(ordhandle* h, int64_t max) {
    int64_t n = 0;
    char blok[BLOKLEN];
    for (bool er = ord_lees(h, 'F'); er; er = ord_lees(h, 'N')) {
        if (++n > max)
            kapot("a journal without an end");
        const int32_t hier = h->offset;
        for (int soort = 1; soort <= 4; soort++)
            ord_tekst_lees(h, soort, blok);
        if (h->offset != hier)
            kapot("reading a text moved the journal");
    }
    return n;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    begin();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n) {
    if (n < 1)
        return 0;
    const uint8_t eerste = data[0];
    schrijf("ORD0007.JRN", std::string(reinterpret_cast<const char*>(data) + 1, n - 1));
    int fd = open("ORD0007.JRN", O_RDWR | O_CLOEXEC);
    int64_t records = 0;
    ordloop l;
    ordrauw r;
    loopstand stand;
    ordloop_begin(&l, fd, 0, INT64_MAX);
    while ((stand = ordloop_volgende(&l, &r)) == LOOP_RECORD)
        records++;
    const bool heel = stand == LOOP_EINDE;
    for (ordsoort soort : {ORD_JOURNAAL, ORD_WERK}) {
        ordtelling telling;
        const bool goed = ord_controle(fd, soort, eerste & 2 ? 5 : 0, &telling).empty();
        if (goed && !heel)
            kapot("the check finds a cut journal good");
        if (telling.records != records)
            kapot("the check counts " + std::to_string(telling.records) + " records of " +
                  std::to_string(records));
    }
    close(fd);

    ordhandle* h = nullptr;
    bool tot_het_einde = ronde([&] {
        h = ord_open_jrn(".", 7, O_RDONLY);
        if (!h)
            kapot("not opened");
        if (lees_alles(h, records) != records)
            kapot("the reader sees other records than the loop");
        for (bool er = ord_eerste_order(h); er; er = ord_volgende_order(h))
            for (char soort : {'M', 'D', 'L', 'S', 'T', 'O'})
                ord_kind(h, soort);
    });
    if (!tot_het_einde && heel)
        kapot("a whole journal stops the program");
    ord_sluit(h);
    h = nullptr;
    if (heel || eerste < 8) // opening for writing looks at every record first
        ronde([&] {
            h = ord_open_jrn(".", 7, O_RDWR);
            if (!heel)
                kapot("opened for writing though it is cut");
            for (bool er = ord_lees(h, 'F'); er; er = ord_lees(h, 'N'))
                ord_schrijf(h);
        });
    if (h)
        ord_sluit(h);
    return 0;
}
