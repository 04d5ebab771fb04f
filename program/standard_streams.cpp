// SPDX-License-Identifier: MIT
#include "program/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace quillet {

void holdStandardStreams() {
    int file = -1;
    do {
        file = open("/dev/null", O_RDONLY | O_CLOEXEC);
    } while (file >= 0 && file <= STDERR_FILENO);
    close(file);
}

}  // namespace quillet
