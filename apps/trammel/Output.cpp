// SPDX-License-Identifier: MIT

#include "Output.h"

#include "Error.h"
#include "Input.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tool {

namespace {

/// Owns a file descriptor.
class Descriptor {
public:
    explicit Descriptor(int number) : mNumber(number) {}
    ~Descriptor() {
        if (mNumber >= 0) {
            close(mNumber);
        }
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    int Number() const { return mNumber; }
    /// Writes everything and closes. Returns false, with errno set, when either fails.
    bool WriteAndClose(std::string const& content) {
        std::size_t done = 0;
        while (done < content.size()) {
            ssize_t const count = write(mNumber, content.data() + done, content.size() - done);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                return false;
            }
            done += static_cast<std::size_t>(count);
        }
        return close(std::exchange(mNumber, -1)) == 0;
    }

private:
    int mNumber;
};

/// Returns the file that a name stands for, following links. It is the name itself when there is no
/// such file yet.
std::string Resolved(std::string const& file) {
    struct FreeDeleter {
        void operator()(char* text) const {
            std::free(text); // NOLINT(cppcoreguidelines-no-malloc): realpath's own memory
        }
    };
    std::unique_ptr<char, FreeDeleter> const real(realpath(file.c_str(), nullptr));
    return real ? real.get() : file;
}

/// Returns the permissions of the file that is replaced, or of a new file.
mode_t Permissions(bool exists, struct stat const& status) {
    if (exists) {
        return status.st_mode & 07777;
    }
    mode_t const mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

/// Exchanges two files. Returns false where one is missing, or where the system cannot do that.
bool Exchange(std::string const& a, std::string const& b) {
#ifdef RENAME_EXCHANGE
    return renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0;
#else
    static_cast<void>(a);
    static_cast<void>(b);
    return false;
#endif
}

[[noreturn]] void FailToWrite(std::string const& file, int errorNumber) {
    throw Error(file, "", "cannot be written: " + SystemMessage(errorNumber));
}

} // namespace

OutputFiles::~OutputFiles() {
    for (Entry const& entry : mEntries) {
        if (!entry.temporary.empty()) {
            unlink(entry.temporary.c_str());
        }
    }
}

void OutputFiles::Add(std::string const& file, std::string const& content) {
    Entry entry;
    entry.name = file;
    entry.target = file == kStandardStream ? file : Resolved(file);
    for (Entry const& other : mEntries) {
        if (other.target == entry.target) {
            throw Error(file, "", "is named for two outputs");
        }
    }
    if (file == kStandardStream) {
        entry.content = content;
        mEntries.push_back(std::move(entry));
        return;
    }
    struct stat status {};
    bool const exists = stat(entry.target.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) {
        throw Error(file, "", "is a folder, not a file");
    }
    if (exists && !S_ISREG(status.st_mode)) {
        entry.content = content;
        mEntries.push_back(std::move(entry));
        return;
    }
    if (exists && access(entry.target.c_str(), W_OK) != 0) {
        FailToWrite(file, errno);
    }
    std::string name = entry.target + ".XXXXXX";
    mEntries.reserve(mEntries.size() + 1); // from here on the file is removed, whatever happens
    Descriptor descriptor(mkstemp(name.data()));
    if (descriptor.Number() < 0) {
        FailToWrite(file, errno);
    }
    entry.temporary = std::move(name);
    mEntries.push_back(std::move(entry));
    if (fchmod(descriptor.Number(), Permissions(exists, status)) != 0 ||
        !descriptor.WriteAndClose(content)) {
        FailToWrite(file, errno);
    }
}

void OutputFiles::Commit() {
    // What can fail for want of room goes first.
    for (Entry const& entry : mEntries) {
        if (entry.target == kStandardStream) {
            Print(entry.content);
        } else if (entry.temporary.empty()) {
            Descriptor descriptor(open(entry.target.c_str(), O_WRONLY | O_CLOEXEC));
            if (descriptor.Number() < 0 || !descriptor.WriteAndClose(entry.content)) {
                FailToWrite(entry.name, errno);
            }
        }
    }
    for (Entry& entry : mEntries) {
        if (!entry.temporary.empty() && !Move(entry, mEntries.size() > 1)) {
            int const reason = errno;
            std::string const name = entry.name + Undo();
            FailToWrite(name, reason);
        }
    }
    for (Entry const& entry : mEntries) {
        if (entry.place == Place::kExchanged) {
            unlink(entry.temporary.c_str());
        }
    }
    mEntries.clear();
}

bool OutputFiles::Move(Entry& entry, bool mayExchange) {
    if (mayExchange && Exchange(entry.temporary, entry.target)) {
        entry.place = Place::kExchanged;
        return true;
    }
    bool const isNew = access(entry.target.c_str(), F_OK) != 0;
    if (std::rename(entry.temporary.c_str(), entry.target.c_str()) != 0) {
        return false;
    }
    entry.place = isNew ? Place::kNew : Place::kApart;
    entry.temporary.clear();
    return true;
}

std::string OutputFiles::Undo() {
    std::string kept;
    for (Entry& entry : mEntries) {
        if (entry.place == Place::kExchanged) {
            if (!Exchange(entry.temporary, entry.target)) {
                kept += " (the old " + entry.name + " is " + entry.temporary + ")";
                entry.temporary.clear(); // it is the user's file now
            }
        } else if (entry.place == Place::kNew) {
            unlink(entry.target.c_str());
        }
        entry.place = Place::kApart;
    }
    return kept;
}

void WriteFile(std::string const& file, std::string const& content) {
    OutputFiles files;
    files.Add(file, content);
    files.Commit();
}

void Print(std::string const& text) {
    if (isatty(STDERR_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) {
        std::fputs("\r\x1B[K", stderr); // the line of the progress
    }
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        FailToWrite("standard output", errno);
    }
}

} // namespace tool
