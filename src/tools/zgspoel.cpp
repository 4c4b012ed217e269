// zgspoel: sends one print job, of which a description tells all (print/spooljob.h): to a queue, a device, a directory or a
// file. It goes its own way, without the terminal and with no file of the package open but those of the job, so that
// who prints goes on at once.
//
//     zgspoel [-w] DESCRIPTION      send it (again); -w: wait until it is out
//
// Status: 0 done, or begun without -w; 1 not out, the reason is in the description; 2 used wrong; 4 somebody sends it.
#include "print/zenden.h"
#include "shared/report.h"
#include "shared/versie.h"
#include "term/tekst.h"
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace zg;

constexpr int SLOT = 3; // the lock, when it comes from the program that printed
constexpr char HULP[] = "usage: zgspoel [-w] DESCRIPTION\n"
                        "Sends the print job that DESCRIPTION (PRxxnn.JOB) tells of;\n"
                        "-w waits until it is out.\n";

int gebruik() {
    fputs(HULP, stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    VERSIE_OF_HULP("zgspoel", HULP, argc, argv);
    CATOPEN(); // a refusal is told to a user, in the language of who printed
    bool wacht = false, heeft_slot = false;
    for (int c; (c = getopt(argc, argv, "w3")) != -1;)
        if (c == 'w')
            wacht = true;
        else if (c == '3')
            heeft_slot = true;
        else
            return gebruik();
    if (optind + 1 != argc)
        return gebruik();
    const std::string pad = argv[optind];
    spooljob job;
    const int slot = heeft_slot ? SLOT : spool_neem(pad, &job);
    if (slot < 0 || (heeft_slot && !spool_lees(slot, pad, &job))) {
        if (slot < 0 && errno == EAGAIN)
            return 4;
        fprintf(stderr, "zgspoel: %s: %s\n", pad.c_str(), IOREDEN(slot < 0 ? errno : EINVAL));
        return 1;
    }
    signal(SIGPIPE, SIG_IGN);
    if (!wacht) {
        const pid_t pid = fork();
        if (pid != 0)
            return pid < 0;
        setsid();
        const int nul = open("/dev/null", O_RDWR | O_CLOEXEC);
        for (int fd = 0; fd < SLOT; fd++)
            dup2(nul, fd);
    }
    return spool_verstuur(slot, &job) ? 0 : 1;
}
