// Error reports: the line, its tag, and the end with status 1.
#include "shared/report.h"
#include "support/proef.h"

namespace zg {
namespace {

TEST(Report, LineAndStatus) {
    struct {
        std::function<void()> doe;
        const char* tekst;
    } const rijen[] = {
        {[] { NOMEM("iomaat", 3); }, "iomaat: Onvoldoende geheugen (nr=3)"},
        {[] { NOMEM("src/Order/IOORD.C.old", -1); }, "ioord: Onvoldoende geheugen (nr=-1)"},
        {[] {
             errno = ENOENT;
             OPENFAIL("/x/.y/Iofil.cpp", "DTFILGEG.TXT");
         },
         "iofil: Open niet gelukt (file=DTFILGEG.TXT, errno=2)"},
        {[] { BADKEY("om%snummer", "NAAM VAN ELF EN MEER", 3, 1); },
         "om%snummer: Onjuist keynr (file=NAAM VAN EL, keynr=3/1)"},
        {[] { INTERNAL("", 7); }, ": errno=7"},
        {[] { IOFAIL("CAF\x90", 1); }, "caf\x82: errno=1"},
    };
    for (const auto& r : rijen)
        test::verwacht_stop(r.doe, "PROGRAMMA AFGEBROKEN\r\n" + std::string(r.tekst) + "\r\n");
}

} // namespace
} // namespace zg
