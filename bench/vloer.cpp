#include "bench/vloer.h"
#include "bench/meting.h"
#include "bench/spoor.h"
#include <climits>
#include <filesystem>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace vloer {
namespace {

namespace fs = std::filesystem;

constexpr int KOPIEEN = 3;

// By a child: a file that this process closes loses the locks that the program has on it.
bool kopieer(const fs::path& van, const fs::path& kopie) {
    const pid_t kind = fork();
    if (kind == 0) {
        for (int i = 0; i < KOPIEEN; i++)
            for (const auto& e : fs::recursive_directory_iterator(van)) {
                const fs::path doel = kopie / std::to_string(i) / e.path().lexically_relative(van);
                fs::create_directories(doel.parent_path());
                if (e.is_regular_file())
                    spoor::kopieer(e.path(), doel);
            }
        _exit(0);
    }
    int status = 1;
    return waitpid(kind, &status, 0) == kind && status == 0;
}

// Descriptors that were open before the step, by their files.
std::vector<spoor::Naar> bestanden(const std::vector<spoor::Aanroep>& lijst, const fs::path& map,
                                   const std::vector<std::string>& open) {
    std::vector<spoor::Naar> uit;
    std::set<int> gezien;
    for (const spoor::Aanroep& a : lijst)
        if (a.fd >= 0 && gezien.insert(a.fd).second && a.soort != spoor::OPEN)
            uit.push_back(
                {a.fd, fs::path(open.at(static_cast<size_t>(a.fd))).lexically_relative(map).string()});
    return uit;
}

// What each descriptor leads to now.
std::vector<std::string> open_nu() {
    constexpr int MEER_NIET = 256;
    std::vector<std::string> uit(MEER_NIET);
    char pad[PATH_MAX];
    for (int fd = 0; fd < MEER_NIET; fd++) {
        const ssize_t n = readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), pad, sizeof pad);
        uit[static_cast<size_t>(fd)].assign(pad, n > 0 ? static_cast<size_t>(n) : 0);
    }
    return uit;
}

} // namespace

Meting meet(const std::function<void()>& voor, const std::function<void()>& stap, const std::string& kopie) {
    std::vector<double> ms, vloer;
    for (int i = 0; i < meting::RONDEN; i++) {
        voor();
        spoor::koel();
        const double t = spoor::klok();
        stap();
        ms.push_back((spoor::klok() - t) * 1000);
    }
    voor();
    const fs::path map = fs::current_path();
    meting::te_traag |= !kopieer(map, kopie);
    const auto open = open_nu();
    spoor::begin();
    stap();
    const auto lijst = spoor::einde();
    const auto namen = bestanden(lijst, map, open);
    for (int i = 0; i < KOPIEEN; i++) {
        fs::current_path(fs::path(kopie) / std::to_string(i));
        vloer.push_back(spoor::herhaal(lijst, namen) * 1000);
    }
    fs::current_path(map);
    fs::remove_all(kopie);
    return {meting::mediaan(ms), meting::mediaan(vloer), static_cast<long>(lijst.size())};
}

} // namespace vloer
