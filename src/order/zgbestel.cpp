// The program zgbestel: purchase orders of one supplier and season at a time. Started by the menu program
// with five arguments (order/start.h), and ends by starting it again.
#include "order/driver.h"
#include "order/programma.h"
#include "order/start.h"
#include "order/teksten.h"
#include "shared/report.h"
#include "shared/versie.h"
#include "sub/omserie.h"
#include "term/prompt.h"
#include <csignal>
#include <new>

namespace {

constexpr char RELEASEDATUM[] = "01-11-2026";
constexpr char HULP[] = "usage: zgbestel PROGRAM USER SLOT STARTER\n"
                        "Purchase orders. A menu starts it, in a data directory: zgbsmenu does.\n"
                        "--version and --help end at once.\n";

} // namespace

int main(int argc, char** argv) {
    using namespace zg;
    VERSIE_OF_HULP(PROGRAMMA, HULP, argc, argv);
    signal(SIGXFSZ, SIG_IGN); // a file at its size limit is an error to tell, not an end
    std::set_new_handler([] { NOMEM(PROGRAMMA, 1); });
    prog_bouw(__DATE__, __TIME__);
    prog_start(PROGRAMMA, RELEASEDATUM, argc, argv);
    TOPTITEL(TXT(T_ORDERS));
    registermodus = register_aanwezig();
    ordparm_lees();
    order_lus();
    signal(SIGXFSZ, SIG_DFL);
    prog_exec(MENUPROGRAMMA);
}
