// Baud rates that have no termios constant (14400) go through termios2,
// whose header cannot share a translation unit with <termios.h>.
#include <asm/ioctls.h>
#include <asm/termbits.h>

#include "TtyBaud.h"

extern "C" int ioctl(int fd, unsigned long request, ...);

namespace satwalk::link {

bool SetArbitraryBaud(int fd, unsigned rate) {
    struct termios2 t {};
    if (ioctl(fd, TCGETS2, &t) != 0)
        return false;
    t.c_cflag &= ~static_cast<tcflag_t>(CBAUD | (CBAUD << IBSHIFT));
    t.c_cflag |= BOTHER | (BOTHER << IBSHIFT);
    t.c_ispeed = rate;
    t.c_ospeed = rate;
    return ioctl(fd, TCSETS2, &t) == 0;
}

}  // namespace satwalk::link
