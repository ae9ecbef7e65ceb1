#include "DirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace satwalk::browser {

DirectoryRead ReadDirectory(const std::string& folder) {
    DirectoryRead result;
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        result.error = errno;
        return result;
    }
    DIR* dir = ::fdopendir(fd);
    if (dir == nullptr) {
        result.error = errno;
        ::close(fd);
        return result;
    }
    result.ok = true;
    for (;;) {
        errno = 0;
        const dirent* d = ::readdir(dir);
        if (d == nullptr) {
            if (errno != 0) {
                result.ok = false;
                result.error = errno;
            }
            break;
        }
        const std::string_view name = d->d_name;
        if (name == "." || name == "..")
            continue;
        // stat follows a link to what it names; a dangling or looping link
        // fails here and is left out.
        struct stat st {};
        if (::fstatat(fd, d->d_name, &st, 0) != 0)
            continue;
        if (S_ISDIR(st.st_mode))
            result.entries.push_back({std::string(name), true, 0});
        else if (S_ISREG(st.st_mode))
            result.entries.push_back(
                {std::string(name), false, static_cast<std::uint64_t>(st.st_size)});
    }
    ::closedir(dir);
    return result;
}

}  // namespace satwalk::browser
