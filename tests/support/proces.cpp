#include "support/proces.h"
#include <csignal>
#include <cstdio>
#include <cstdlib>
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

Agent::Agent(std::function<std::string(const std::string&)> doe) {
    int heen[2], terug[2];
    if (pipe2(heen, O_CLOEXEC) != 0 || pipe2(terug, O_CLOEXEC) != 0)
        abort();
    fflush(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        close(heen[1]);
        close(terug[0]);
        char b[256];
        for (ssize_t n; (n = read(heen[0], b, sizeof b)) > 0;) {
            const std::string a = doe(std::string(b, static_cast<size_t>(n))) + "\n";
            if (write(terug[1], a.data(), a.size()) < 0)
                break;
        }
        _exit(0);
    }
    close(heen[0]);
    close(terug[1]);
    heen_ = heen[1];
    terug_ = terug[0];
}

Agent::Agent(const std::function<bool()>& doe)
    : Agent([doe](const std::string&) -> std::string { return doe() ? "yes" : "no"; }) {
    ok_ = vraag("do it", 60'000) == "yes";
}

Agent::~Agent() {
    dood();
    close(heen_);
    close(terug_);
}

void Agent::dood() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    pid_ = -1;
}

std::string Agent::vraag(const std::string& opdracht, int ms) {
    if (write(heen_, opdracht.data(), opdracht.size()) < 0)
        return "dead";
    return antwoord(ms);
}

std::string Agent::antwoord(int ms) {
    std::string uit;
    for (;;) {
        pollfd p{terug_, POLLIN, 0};
        if (poll(&p, 1, ms) <= 0)
            return geen_antwoord;
        char c;
        if (read(terug_, &c, 1) != 1)
            return "dead";
        if (c == '\n')
            return uit;
        uit += c;
    }
}

} // namespace zg::test
