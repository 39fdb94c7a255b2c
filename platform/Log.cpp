// SPDX-License-Identifier: MIT

#include "Log.h"

#include <atomic>
#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace {

std::atomic<NSLogSink> gSink{nullptr};

/// True while this thread runs the application's sink.
thread_local bool tInsideSink = false;

/// Puts a variable back to the value it had.
template <class T> class Restorer {
public:
    explicit Restorer(T& variable) : mVariable(variable), mValue(variable) {}
    ~Restorer() { mVariable = mValue; }
    Restorer(Restorer const&) = delete;
    Restorer& operator=(Restorer const&) = delete;

private:
    T& mVariable;
    T const mValue;
};

/// Gives this thread the classic locale for a while.
class ClassicLocale {
public:
    ClassicLocale() {
        // Made once and kept for the life of the process. Where its allocation fails, the text is
        // written in the thread's locale.
        static locale_t const classic = newlocale(LC_ALL_MASK, "C", locale_t{});
        if (classic != locale_t{}) {
            mFormer = uselocale(classic);
        }
    }
    ~ClassicLocale() {
        if (mFormer != locale_t{}) {
            uselocale(mFormer);
        }
    }
    ClassicLocale(ClassicLocale const&) = delete;
    ClassicLocale& operator=(ClassicLocale const&) = delete;

private:
    locale_t mFormer{};
};

/// Appends the text that `printf` would print; false when it cannot be formatted. A text longer
/// than usual is formatted twice: hence the arguments come in two copies.
bool AppendFormatted(std::string& text, char const* format, va_list first, va_list second) {
    constexpr std::size_t usualLength = 256;
    std::size_t const start = text.size();
    text.resize(start + usualLength);
    int const length = std::vsnprintf(&text[start], usualLength, format, first);
    if (length < 0) {
        return false;
    }
    std::size_t const needed = static_cast<std::size_t>(length);
    if (needed >= usualLength) {
        text.resize(start + needed + 1); // with room for the terminator
        if (std::vsnprintf(&text[start], needed + 1, format, second) != length) {
            return false;
        }
    }
    text.resize(start + needed);
    return true;
}

/// Makes one line of the text from `start` on.
void JoinLines(std::string& text, std::size_t start) {
    auto const isBreak = [](char c) { return c == '\n' || c == '\r'; };
    while (text.size() > start && isBreak(text.back())) {
        text.pop_back();
    }
    for (std::size_t i = start; i < text.size(); ++i) {
        if (isBreak(text[i])) {
            text[i] = ' ';
        }
    }
}

/// Returns the local time as "2024-05-01 12:34:56.789 ".
std::string TimeStamp() {
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);
    char seconds[64] = "";
    std::strftime(seconds, sizeof seconds, "%Y-%m-%d %H:%M:%S", &local);
    std::string const thousandths = std::to_string(1000 + now.tv_nsec / 1000000).substr(1);
    return seconds + ("." + thousandths) + " ";
}

void WriteToStandardError(std::string const& line) {
    char const* next = line.data();
    std::size_t left = line.size();
    // One write takes all of it, unless a signal or a full pipe comes between.
    while (left > 0) {
        ssize_t const written = ::write(STDERR_FILENO, next, left);
        if (written > 0) {
            next += written;
            left -= static_cast<std::size_t>(written);
        } else if (written == 0 || errno != EINTR) {
            return; // nobody is there to be told
        }
    }
}

void LogLine(char const* format, va_list first, va_list second) {
    int const formerErrno = errno;
    NSLogSink const sink = tInsideSink ? nullptr : gSink.load();
    std::string line = sink == nullptr ? TimeStamp() : std::string();
    std::size_t const start = line.size();
    {
        ClassicLocale const classic;
        errno = formerErrno; // for %m; the time stamp and the locale may have changed it
        if (!AppendFormatted(line, format, first, second)) {
            return;
        }
    }
    JoinLines(line, start);
    if (sink == nullptr) {
        line += '\n';
        WriteToStandardError(line);
    } else {
        Restorer<bool> const inside(tInsideSink);
        tInsideSink = true;
        sink(line);
    }
}

} // namespace

void NSLog(char const* format, ...) noexcept {
    if (format == nullptr) {
        return;
    }
    Restorer<int> const formerErrno(errno);
    va_list first;
    va_list second;
    va_start(first, format);
    va_start(second, format);
    try {
        LogLine(format, first, second);
    } catch (...) { // memory is short or the sink threw: the line is dropped
    }
    va_end(second);
    va_end(first);
}

NSLogSink SetNSLogSink(NSLogSink sink) noexcept { return gSink.exchange(sink); }
