// SPDX-License-Identifier: MIT

// The rules of SVG path text that its reader and its writer share. Not installed.

#ifndef TRAMMEL_SVGPATHGRAMMAR_P_H
#define TRAMMEL_SVGPATHGRAMMAR_P_H

namespace trammel_detail {

// Characters in ASCII, whatever the locale.

inline bool IsSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f'; }
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

} // namespace trammel_detail

#endif
