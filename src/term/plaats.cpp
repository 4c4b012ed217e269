// The running program's directory and the package's data. ZG_DATAMAP is the way from one to the other in an
// installation, given by the build.
#include "term/plaats.h"
#include <climits>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {

std::string EIGENMAP() {
    char pad[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", pad, sizeof pad);
    const std::string p(pad, n > 0 ? static_cast<size_t>(n) : 0);
    return p.substr(0, p.rfind('/') + 1);
}

std::string PAKKETMAP(const char* naam) {
    const std::string eigen = EIGENMAP();
    if (!eigen.empty())
        for (const char* weg : {ZG_DATAMAP "/", ""}) {
            const std::string pad = eigen + weg + naam;
            struct stat st;
            if (stat(pad.c_str(), &st) == 0 && S_ISDIR(st.st_mode))
                return pad;
        }
    return "";
}

} // namespace zg
