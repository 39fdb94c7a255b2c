// SPDX-License-Identifier: MIT

// The diagnostic log.
#ifndef TRAMMEL_LOG_H
#define TRAMMEL_LOG_H

#include "TrammelExport.h"

#include <string>

/// Takes one finished line of the log, without time stamp and line end.
typedef void (*NSLogSink)(std::string const& line);

/// Writes one line to the log; the format and the arguments are those of `printf`.
///
/// The line goes to standard error in one write, after the local time and a space
/// ("2024-05-01 12:34:56.789 "), or to the sink that the application installed. It may be of any
/// length. Line breaks at its end are dropped, others become spaces, so a call is always one line.
/// Numbers are written in the classic locale whatever the locale of the process and the thread,
/// which stay as they are, as does `errno`.
///
/// Never throws: when memory is short or the text cannot be formatted, the line is dropped; an
/// exception of the sink is swallowed. May be called in several threads; calls made by the sink
/// itself go to standard error.
#if defined(__GNUC__) || defined(__clang__)
__attribute__((format(printf, 1, 2)))
#endif
TRAMMEL_API void
NSLog(const char* format, ...) noexcept;

/// Installs the function that gets the log's lines from now on, in the thread that logs; null means
/// standard error, as at the start. Returns the sink before, null for standard error.
TRAMMEL_API NSLogSink SetNSLogSink(NSLogSink sink) noexcept;

#endif
