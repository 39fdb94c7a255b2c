// SPDX-License-Identifier: MIT

// Output files that appear whole or not at all.

#ifndef TRAMMEL_APP_OUTPUT_H
#define TRAMMEL_APP_OUTPUT_H

#include <string>
#include <vector>

namespace tool {

/// The files that one run writes. Each is written beside its place under another name, and Commit
/// then moves all of them. Without Commit nothing is left.
class OutputFiles {
public:
    OutputFiles() = default;
    ~OutputFiles();
    OutputFiles(OutputFiles const&) = delete;
    OutputFiles& operator=(OutputFiles const&) = delete;

    /// Writes `content` for `file`, following links. Commit writes to a device, a pipe or standard
    /// output ("-") directly.
    /// Throws Error when the file cannot be written, or was added before.
    void Add(std::string const& file, std::string const& content);
    /// Moves the files to their places. Throws Error, and then all files are as they were. Where
    /// the system cannot exchange files, some may be new. Devices, pipes and standard output have
    /// been written by then.
    void Commit();

private:
    /// Where the content of the file is.
    enum class Place {
        kApart,     ///< in `temporary`, or in `content`
        kExchanged, ///< in its place, and `temporary` is the old file
        kNew        ///< in its place, where no file was
    };
    struct Entry {
        std::string name;      ///< as the user gave it
        std::string target;    ///< links followed
        std::string temporary; ///< empty: write `content` to the target itself
        std::string content;
        Place place = Place::kApart;
    };
    /// Moves one file to its place. Returns false, with errno set, when that fails.
    static bool Move(Entry& entry, bool mayExchange);
    /// Brings the old files back. Returns a text that names the files which stay elsewhere.
    std::string Undo();

    std::vector<Entry> mEntries;
};

/// Writes one file.
void WriteFile(std::string const& file, std::string const& content);

/// Writes to standard output and flushes it. Throws Error.
void Print(std::string const& text);

} // namespace tool

#endif
