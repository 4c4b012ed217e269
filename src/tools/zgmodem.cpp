// zgmodem: a modem on a serial port, at the shell: does it answer, does it dial. The driver is that of the package.
#include "edi/modem.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "tools/tool.h"
#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <functional>

namespace {

using namespace zg;

struct Wens {
    modemlijn lijn{"", 9600, 'N', 8, 1, false, "ATE0V1", 'T', "", 60, "ATZ", 1};
    std::string pariteit = "N", tekst;
    bool puls = false, direct = false;
    int houden = 0;
} wens;

void op_sein(int) {
    mdafbreken = 1;
}

Uitkomst modemfout() {
    klacht(wens.lijn.apparaat, CP850UTF8(mderror()));
    return FOUT_GEVONDEN;
}

Uitkomst proef() {
    if (!mdinit())
        return modemfout();
    puts("OK");
    return GOED;
}

Uitkomst bel() {
    if ((!wens.direct && !mdinit()) || !mddial())
        return modemfout();
    puts(mdregel().c_str());
    fflush(stdout);
    for (const time_t eind = time(nullptr) + wens.houden; time(nullptr) < eind && !mdafbreken;)
        if (mdanswer(100) == MD_NO_CARRIER)
            return meld(FOUT_GEVONDEN, "the line has gone");
    return GOED;
}

Uitkomst hang_op() {
    return mdhangup() ? GOED : modemfout();
}

// A command of one's own, and what the modem says to it until it says no more.
Uitkomst zend() {
    if (!mdsend((wens.tekst + "\r").c_str()))
        return modemfout();
    constexpr int REGELS = 500; // no modem has more to say of itself
    int regels = 0, code = MD_ANDERS;
    for (int laatste; (laatste = mdanswer(wens.lijn.pauze * 100)) != MD_TIJD && !mdafbreken; regels++) {
        if (regels == REGELS) {
            klacht(wens.lijn.apparaat, "no end of answers");
            return FOUT_GEVONDEN;
        }
        code = laatste;
        puts(mdregel().c_str());
        if (laatste == MD_NO_CARRIER && mdregel().empty()) // the line has gone
            break;
    }
    if (regels > 0)
        return code == MD_ERROR ? FOUT_GEVONDEN : GOED;
    klacht(wens.lijn.apparaat, "no answer");
    return FOUT_GEVONDEN;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgmodem");
    for (int sein : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        struct sigaction s {};
        s.sa_handler = op_sein;
        sigaction(sein, &s, nullptr);
    }
    CLI::App app{"a modem on a serial port: does it answer, does it dial", "zgmodem"};
    tool_kop(app, "0 good, 1 the modem says no, 2 used wrong, 3 cannot open the port.");
    app.require_subcommand(1);
    app.fallthrough();
    modemlijn& l = wens.lijn;
    app.add_option("-p,--port", l.apparaat, "the port, as /dev/ttyS0")->required();
    app.add_option("-s,--speed", l.snelheid, "300 to 38400 (9600)")
        ->check(CLI::IsMember({300, 1200, 2400, 4800, 9600, 19200, 38400}));
    app.add_option("--parity", wens.pariteit, "N, O or E (N)")->check(CLI::IsMember({"N", "O", "E"}));
    app.add_option("--data", l.databits, "data bits (8)")->check(CLI::Range(7, 8));
    app.add_option("--stop", l.stopbits, "stop bits (1)")->check(CLI::Range(1, 2));
    app.add_option("--reset", l.reset, "reset text (ATZ)");
    app.add_option("--init", l.init, "init text (ATE0V1)");
    app.add_option("--pause", l.pauze, "seconds between commands, and for an answer to one (1)")
        ->check(CLI::Range(1, 60));
    app.add_flag("--hangup", l.ophangen, "hang up at the end");
    std::function<Uitkomst()> daad;
    auto opdracht = [&](const char* naam, const char* uitleg, std::function<Uitkomst()> f) {
        return tool_opdracht(app, &daad, naam, uitleg, std::move(f));
    };
    opdracht("test", "reset and initialise it", proef);
    CLI::App* dial = opdracht("dial", "initialise it and dial", bel);
    dial->add_option("NUMBER", l.nummer, "the number")->required()->check([](const std::string& nummer) {
        const bool goed = !nummer.empty() && std::all_of(nummer.begin(), nummer.end(),
                                                         [](char c) { return c >= ' ' && c < 0x7F; });
        return goed ? "" : "not a number to dial";
    });
    dial->add_option("-t,--time", l.tijd, "seconds for a connection (60)")->check(CLI::Range(1, 600));
    dial->add_option("-k,--keep", wens.houden, "seconds to keep the connection (0)")
        ->check(CLI::Range(0, 86400));
    dial->add_flag("--pulse", wens.puls, "pulses instead of tones");
    dial->add_flag("-n,--no-init", wens.direct, "dial at once");
    opdracht("hangup", "drop the line", hang_op);
    opdracht("send", "send a command and show the answers", zend)
        ->add_option("COMMAND", wens.tekst, "as ATI")
        ->required();
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    l.pariteit = wens.pariteit[0];
    l.kieswijze = wens.puls ? 'P' : 'T';
    if (!mdopen(l)) {
        modemfout();
        return NIET_TE_OPENEN;
    }
    const Uitkomst uit = daad();
    mdclose();
    return tool_einde(uit);
}
