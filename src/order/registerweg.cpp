// A line of the full registration that is deleted: its labels on order go, and when its series has none left the series,
// if the buyer wants so.
#include "order/register.h"
#include "order/teksten.h"
#include "sub/omserie.h"
#include "sub/serdel.h"
#include "term/prompt.h"

namespace zg {

bool serie_regel_weg(orderregel* regel, int vraagrij) {
    int over = 0;
    bool geweigerd = false;
    if (!label_wis(regel, &over, [&] { return serie_schrijf(regel->serie); }))
        return false;
    regel_wis_aantallen(regel);
    regel->op_bestand = 0;
    if (over == 0 && JNVRAAG(vraagrij, 1, "[-]%s", TXT(T_REG_SERIE_OOK)) &&
        serie_verwijderen(dtser, &regel->serie, true, &geweigerd))
        regel->serie = {};
    return !geweigerd; // with its line the series can be deleted again
}

} // namespace zg
