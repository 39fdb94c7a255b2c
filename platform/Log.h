// SPDX-License-Identifier: MIT

// The diagnostic log.

#ifndef TRAMMEL_LOG_H
#define TRAMMEL_LOG_H

#include "TrammelExport.h"

#include <string>

/// A function that takes one finished line of the log, without time stamp and line end.
typedef void (*NSLogSink)(std::string const& line);

/// Writes one line to the log; the format and the arguments are those of `printf`.
///
/// The line goes to the sink that the application installed. Without a sink it goes to standard
/// error in one write, after the local time and a space ("2024-05-01 12:34:56.789 ").
///
/// The line may be of any length. Line breaks at its end are dropped, others become spaces, so a
/// call is always one line. Numbers are written in the classic locale, whatever the locale of the
/// process or the thread. Both locales and `errno` stay as they are.
///
/// Never throws: when memory is short or the text cannot be formatted, the line is dropped; an
/// exception of the sink is swallowed. A null format writes nothing. Safe in several threads at
/// once; calls made by the sink itself go to standard error.
#if defined(__GNUC__) || defined(__clang__)
__attribute__((format(printf, 1, 2)))
#endif
TRAMMEL_API void
NSLog(char const* format, ...) noexcept;

/// Installs the function that gets the log's lines from now on, in the thread that logs; null means
/// standard error, as at the start. Returns the sink before, null for standard error.
TRAMMEL_API NSLogSink SetNSLogSink(NSLogSink sink) noexcept;

#endif
