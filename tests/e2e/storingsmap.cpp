// The program under faults, see e2e/storingsmap.h.
#include "e2e/storingsmap.h"
#include "order/driver.h"
#include "order/programma.h"
#include "order/start.h"
#include "shared/ioeti.h"
#include "sub/omserie.h"
#include "support/roepstoring.h"
#include "term/scherm.h"
#include "term/toets.h"

namespace zg::test {

namespace {

std::vector<int32_t> toetscodes(std::string_view reeks) {
    std::vector<int32_t> uit;
    while (!reeks.empty()) {
        const size_t e = reeks[0] == '<' ? reeks.find('>') : 0;
        const std::string_view t = reeks.substr(0, e + 1);
        uit.push_back(t == "<Enter>" ? '\n' : t == "<Esc>" ? '\033' : t == "<Down>" ? int32_t{K_DOWN} : t[0]);
        reeks.remove_prefix(e + 1);
    }
    return uit;
}

} // namespace

void Storingsmap::zet_terug() const {
    for (const auto& [naam, nu] : inhoud())
        if (!begin.contains(naam))
            std::filesystem::remove(bestand(naam));
        else if (begin.at(naam) != nu)
            schrijf_bestand(bestand(naam), begin.at(naam));
    for (const auto& [naam, was] : begin)
        if (!std::filesystem::exists(bestand(naam)))
            schrijf_bestand(bestand(naam), was);
}

int Storingsmap::loop(const std::string& toetsen, int n, bool doden) const {
    return klaar(*start(overgave(*this), toetsen, n, doden));
}

std::unique_ptr<Terminal> met_storing(const DemoMap& map, std::vector<std::string> argv,
                                      const std::function<void()>& stoor, const std::function<int()>& einde) {
    return std::make_unique<Terminal>(
        [=]() mutable {
            on_exit([](int status, void*) { _exit(status); },
                    nullptr); // a report's end, too, is the child's alone
            std::vector<char*> av;
            for (std::string& a : argv)
                av.push_back(a.data());
            prog_start(PROGRAMMA, "", static_cast<int>(av.size()), av.data());
            registermodus = register_aanwezig();
            ordparm_lees();
            stoor();
            order_lus();
            SCREXIT();
            return einde();
        },
        demo_opties(map));
}

bool staat_op(int fd, const char* naam) {
    std::error_code fout;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd), fout).string().find(naam) !=
           std::string::npos;
}

std::unique_ptr<Terminal> Storingsmap::start(std::vector<std::string> argv, const std::string& toetsen, int n,
                                             bool doden) const {
    return met_storing(
        *this, std::move(argv),
        [=] {
            const std::vector<int32_t> codes = toetscodes(toetsen);
            for (size_t i = codes.size(); i-- > 0;)
                TOETSTERUG(codes[i]);
            stoor_roep(n, doden);
        },
        [=] { return gestoord() && n >= 0 ? 7 : 0; });
}

int Storingsmap::klaar(Terminal& t) {
    EXPECT_TRUE(t.kalm(60'000) || !t.leeft()) << "neither told nor done\n" << t.scherm();
    if (t.leeft())
        t.sein(SIGHUP);
    return t.einde();
}

std::string Storingsmap::vreemde_labels(const std::set<std::pair<int, int>>& eigen) const {
    std::string uit;
    int nr = 0;
    for (const etiblok& b : alle<etiblok>("DTETI.TXT"))
        if (nr++; b.serie.volgnummer && !eigen.contains({int{b.serie.artikelgroep}, int{b.serie.kleur}}))
            uit += std::to_string(nr) + std::string(reinterpret_cast<const char*>(&b), sizeof b);
    return uit;
}

std::vector<etiket> labels_van(const DemoMap& map, int32_t ordernummer) {
    std::vector<etiket> uit;
    for (const etiblok& b : map.alle<etiblok>("DTETI.TXT"))
        for (const auto& plaats : b.plaats) {
            etiket l;
            eti_uit(plaats, b.serie, 0, &l);
            if (l.status == ETI_ORDER && l.ordernummer == ordernummer)
                uit.push_back(l);
        }
    return uit;
}

} // namespace zg::test
