#include "base/Files.h"

#include <unistd.h>

#include <cerrno>

namespace vyr::inspect {

int WriteAll(int file, SView bytes)
{
    while (bytes.size != 0) {
        const ssize_t written = write(file, bytes.data, bytes.size);
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        bytes = bytes.From(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return 0;
}

}  // namespace vyr::inspect
