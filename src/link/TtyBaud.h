// Setting a tty to a baud rate by number, for rates without a B constant.
#pragma once

namespace satwalk::link {

// True when the driver accepted `rate` for both directions.
bool SetArbitraryBaud(int fd, unsigned rate);

}  // namespace satwalk::link
