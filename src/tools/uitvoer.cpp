#include "tools/uitvoer.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace zg {

namespace {

namespace fs = std::filesystem;

bool is_paarhelft(const fs::path& pad) {
    const bool data = pad.extension() == ".TXT";
    fs::path ander = pad;
    ander.replace_extension(data ? ".INX" : ".TXT");
    return (data || pad.extension() == ".INX") && IOEXISTS(ander.c_str());
}

bool in_datamap(const fs::path& pad) {
    const fs::path map = pad.parent_path(), ext = pad.extension();
    const bool order = ext == ".JRN" || ext == ".WRK"; // in a directory of its season
    return IOEXISTS((map / "DTSYS.TXT").c_str()) ||
           (order && IOEXISTS((map.parent_path() / "DTSYS.TXT").c_str()));
}

} // namespace

std::string uitvoer_bezet(const std::string& pad, bool vervang) {
    struct stat st;
    if (pad.empty() || stat(pad.c_str(), &st) != 0 || !S_ISREG(st.st_mode))
        return "";
    std::error_code fout;
    const fs::path echt = fs::canonical(pad, fout);
    if (fout || is_paarhelft(echt) || in_datamap(echt))
        return "stands in a data directory or is half of a pair; not overwritten";
    return vervang ? "" : "exists already";
}

Uitvoer::Uitvoer(const std::string& pad, bool vervang) : pad_(pad), vervang_(vervang) {
    struct stat st;
    if (pad.empty()) {
        stroom_ = stdout;
        return;
    }
    if (stat(pad.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) {
        stroom_ = fopen(pad.c_str(), "we");
        return;
    }
    if (char* echt = realpath(pad.c_str(), nullptr)) { // not over a link to it
        pad_ = echt;
        free(echt);
    }
    const std::string map(pad_, 0, pad_.size() - std::string(IOBASENAME(pad_.c_str())).size());
    naast_ = pad_ + "." + std::to_string(getpid());
    int fd = SYS.open(map.empty() ? "." : map.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    naamloos_ = fd >= 0;
    if (!naamloos_)
        fd = SYS.open(naast_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    if (fd >= 0)
        stroom_ = fdopen(fd, "w");
}

Uitvoer::~Uitvoer() {
    if (stroom_ && stroom_ != stdout)
        fclose(stroom_);
    if (stroom_ && !naast_.empty() && !naamloos_)
        SYS.unlink(naast_.c_str());
}

bool Uitvoer::plaats() {
    const int fd = fileno(stroom_);
    const std::string zelf = "/proc/self/fd/" + std::to_string(fd);
    if ((IOEXISTS(pad_.c_str()) && !SYSEVENALS(fd, pad_.c_str())) || SYS.fsync(fd) != 0)
        return false;
    if (naamloos_ && !vervang_)
        return linkat(AT_FDCWD, zelf.c_str(), AT_FDCWD, pad_.c_str(), AT_SYMLINK_FOLLOW) == 0;
    if ((naamloos_ && linkat(AT_FDCWD, zelf.c_str(), AT_FDCWD, naast_.c_str(), AT_SYMLINK_FOLLOW) != 0) ||
        (!vervang_ && IOEXISTS(pad_.c_str())))
        return false;
    naamloos_ = false;
    if (SYS.rename(naast_.c_str(), pad_.c_str()) != 0)
        return false;
    naast_.clear();
    return true;
}

bool Uitvoer::af() {
    if (fflush(stroom_) != 0 || ferror(stroom_) || (!naast_.empty() && !plaats()))
        return false;
    FILE* f = stroom_;
    if (f == stdout)
        return true;
    stroom_ = nullptr;
    return fclose(f) == 0;
}

} // namespace zg
