// Lines at the end of a text file to which several programs add at once.
#pragma once
#include <string>

namespace zg {

// Open such a file, made when it is missing. The descriptor; -1 with errno, EINVAL for what is no plain file.
int REGELOPEN(const char* pad);
// One line, its line feed apart, at the end of a file of REGELOPEN. Control bytes in it become blanks. A short lock keeps
// others off who do the same; part of a line that somebody has left at the end is closed by a line feed first. False with
// errno: refused, and nothing of it stands, but where a stranger has written behind it.
bool REGELBIJ(int fd, std::string regel);

} // namespace zg
