#include "support/proces.h"
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zg::test {

Afloop in_proces(const std::function<int()>& doe, int ms) {
    int pijp[2];
    if (pipe(pijp) != 0)
        return {-1, "no pipe"};
    fflush(nullptr);
    pid_t pid = fork();
    if (pid == 0) {
        int niets = open("/dev/null", O_RDONLY);
        dup2(niets, 0);
        dup2(pijp[1], 1);
        dup2(pijp[1], 2);
        close(pijp[0]);
        close(pijp[1]);
        int status = doe();
        fflush(nullptr);
        _exit(status);
    }
    close(pijp[1]);
    Afloop uit{-1, ""};
    char stuk[4096];
    for (pollfd p{pijp[0], POLLIN, 0}; poll(&p, 1, ms) > 0;) {
        ssize_t n = read(pijp[0], stuk, sizeof stuk);
        if (n <= 0)
            break;
        uit.uitvoer.append(stuk, static_cast<size_t>(n));
    }
    close(pijp[0]);
    int status = 0;
    pid_t klaar = 0;
    for (int i = 0; i <= ms && (klaar = waitpid(pid, &status, WNOHANG)) == 0; i++)
        usleep(1000);
    if (klaar == 0) {
        kill(pid, SIGKILL);
        waitpid(pid, &status, 0);
        return uit;
    }
    uit.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return uit;
}

void verwacht_stop(const std::function<void()>& doe, const std::string& tekst) {
    Afloop afloop = in_proces([&] {
        doe();
        return 0;
    });
    EXPECT_EQ(afloop.status, 1) << tekst;
    EXPECT_NE(afloop.uitvoer.find(tekst), std::string::npos) << tekst << " in " << afloop.uitvoer;
}

Agent::Agent(const std::function<bool()>& doe) {
    int heen[2], terug[2];
    if (pipe2(heen, O_CLOEXEC) != 0 || pipe2(terug, O_CLOEXEC) != 0) {
        ADD_FAILURE() << "no pipe";
        return;
    }
    fflush(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        close(heen[1]);
        close(terug[0]);
        char c = doe() ? 1 : 0;
        if (write(terug[1], &c, 1) != 1 || read(heen[0], &c, 1) < 0)
            _exit(1);
        _exit(0);
    }
    close(heen[0]);
    close(terug[1]);
    draad_ = heen[1];
    char c = 0;
    ok_ = read(terug[0], &c, 1) == 1 && c == 1;
    close(terug[0]);
}

void Agent::laat_los() {
    // A byte, not only the end of the pipe: another child may have inherited its end.
    if (draad_ >= 0) {
        [[maybe_unused]] ssize_t n = write(draad_, "", 1);
        close(draad_);
    }
    draad_ = -1;
    if (pid_ > 0)
        waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

void Agent::dood() {
    if (pid_ > 0)
        kill(pid_, SIGKILL);
    signal(SIGPIPE, SIG_IGN);
    laat_los();
}

} // namespace zg::test
