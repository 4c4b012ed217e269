// Another program, run without a shell and listened to: lpstat and lp.
#include "print/printjob.h"
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zg {
namespace {

constexpr std::chrono::milliseconds STAP{10};
constexpr size_t GEHOORD = 256; // bytes of what it says

} // namespace

bool prt_programma(std::vector<std::string> woorden, std::chrono::seconds wacht, int* status,
                   std::string* gezegd) {
    int pijp[2];
    if (pipe2(pijp, O_CLOEXEC | O_NONBLOCK) < 0)
        return false;
    std::vector<char*> argv;
    for (std::string& w : woorden)
        argv.push_back(w.data());
    argv.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(open("/dev/null", O_RDONLY), 0);
        for (int fd : {1, 2})
            dup2(pijp[1], fd);
        setenv("LC_ALL", "C.UTF-8", 1); // what it says is told, and its arguments are UTF-8
        signal(SIGPIPE, SIG_DFL);
        execvp(argv[0], argv.data());
        dprintf(2, "%s: %s\n", argv[0], strerror(errno));
        _exit(127);
    }
    close(pijp[1]);
    const auto grens = std::chrono::steady_clock::now() + wacht;
    bool klaar = false, door = pid > 0;
    char buffer[GEHOORD];
    while (door) {
        klaar = waitpid(pid, status, WNOHANG) == pid;
        for (ssize_t n; (n = read(pijp[0], buffer, sizeof buffer)) > 0;)
            if (gezegd->size() < GEHOORD)
                gezegd->append(buffer, static_cast<size_t>(n));
        door = !klaar && std::chrono::steady_clock::now() < grens;
        if (door)
            std::this_thread::sleep_for(STAP);
    }
    close(pijp[0]);
    if (pid > 0 && !klaar) {
        kill(pid, SIGKILL);
        waitpid(pid, status, 0);
    }
    return klaar;
}

} // namespace zg
