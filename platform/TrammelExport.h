// SPDX-License-Identifier: MIT

// The mark that makes a symbol part of the shared library's interface.

#ifndef TRAMMEL_TRAMMELEXPORT_H
#define TRAMMEL_TRAMMELEXPORT_H

/// Marks a function, class or variable that applications link against. The library is built with
/// hidden visibility: names without the mark stay inside.
#if defined(__GNUC__) || defined(__clang__)
#define TRAMMEL_API __attribute__((visibility("default")))
#else
#define TRAMMEL_API
#endif

#endif
