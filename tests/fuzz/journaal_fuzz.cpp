// Order journals and work files: raw bytes, or records of the right length with bytes of the input in them. The check
// and every reading routine take them to their end, and the loop, the check and the reader agree on where that is.
#include "fuzz/hulp.h"
#include "order/ioord.h"
#include "order/ordcheck.h"
#include "order/ordloop.h"
#include <fcntl.h>
#include <unistd.h>

using namespace zg;
using namespace zg::fuzz;

namespace {

std::string bouw(Bron& in) {
    static constexpr char TAGS[] = "OMDTSEBLFOMDX";
    std::string uit;
    while (!in.op() && uit.size() < 60'000) {
        const uint8_t b = in.byte();
        const char tag = TAGS[b % (sizeof TAGS - 1)];
        const int lengte = ord_lengte(tag);
        uit += tag;
        if (lengte < 0)
            continue;
        std::string lichaam(static_cast<size_t>(lengte), '\0');
        for (int i = b >> 4; i > 0; i--) {
            const uint32_t plaats = in.onder(static_cast<uint32_t>(lengte));
            lichaam[plaats] = static_cast<char>(in.byte());
        }
        uit += lichaam;
    }
    return uit;
}

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
    Bron in(data, n);
    const uint8_t eerste = in.byte();
    const std::string inhoud =
        eerste & 1 ? bouw(in) : std::string(reinterpret_cast<const char*>(data) + 1, n ? n - 1 : 0);
    schrijf("ORD0007.JRN", inhoud);
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
