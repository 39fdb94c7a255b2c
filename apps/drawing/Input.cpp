// SPDX-License-Identifier: MIT

#include "Input.h"

#include "Error.h"
#include "Gzip.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>

#include <sys/stat.h>

namespace tool {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const {
        if (file != stdin) {
            std::fclose(file);
        }
    }
};

} // namespace

std::string ReadFile(std::string const& file) {
    std::unique_ptr<std::FILE, FileCloser> const stream(
        file == kStandardStream ? stdin : std::fopen(file.c_str(), "rb"));
    if (!stream) {
        throw Error(file, "", "cannot be opened: " + SystemMessage(errno));
    }
    struct stat status {};
    if (fstat(fileno(stream.get()), &status) == 0) {
        if (S_ISDIR(status.st_mode)) {
            throw Error(file, "", "is a folder, not a file");
        }
        if (S_ISREG(status.st_mode) &&
            static_cast<unsigned long long>(status.st_size) > kLargestFile) {
            throw Error(file, "", "is larger than 128 MiB");
        }
    }
    std::string content;
    std::array<char, 1 << 16> buffer;
    std::size_t count;
    while ((count = std::fread(buffer.data(), 1, buffer.size(), stream.get())) > 0) {
        content.append(buffer.data(), count);
        if (content.size() > kLargestFile) {
            throw Error(file, "", "is larger than 128 MiB");
        }
    }
    if (std::ferror(stream.get()) != 0) {
        throw Error(file, "", "cannot be read: " + SystemMessage(errno));
    }
    if (content.empty()) {
        throw Error(file, "", "is empty");
    }
    return LooksZipped(content) ? Unzipped(file, content) : content;
}

} // namespace tool
