// A disk that fills up, for the tests of the program's writers: the work
// runs in a child process whose files may not grow past `room` bytes, with
// SIGXFSZ ignored so that a write comes back short as it does on a full disk.
#pragma once

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

// What `work` returned (0 to 255), or -1 when the child did not exit.
template <typename Work>
int OnAFullDisk(rlim_t room, Work work) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{room, room};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ::_exit(static_cast<int>(work()) & 0xFF);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
