// SPDX-License-Identifier: MIT

// What paints are: the gradients and patterns that they refer to, and what shows through them.

#ifndef TRAMMEL_APP_PAINTSERVER_H
#define TRAMMEL_APP_PAINTSERVER_H

#include "SvgDocument.h"

#include <string>
#include <vector>

namespace tool {

/// A gradient or pattern, and the others that its href leads to. Attributes that it lacks come
/// from them.
class PaintServer {
public:
    PaintServer(SvgDocument const& document, std::string const& id);

    /// "linearGradient", "radialGradient", "pattern" or another name; empty without an element.
    std::string Kind() const { return mKinds.empty() ? "" : mKinds.front(); }
    pugi::xml_node Node() const { return mChain.front(); }
    /// Returns the value of an attribute; empty where none of them has it. \param kind  empty: any
    std::string Value(char const* name, std::string const& kind = "") const;
    /// True where something else may show through: in a pattern, and in a gradient with a stop that
    /// is not opaque. Style sheets' stops count as opaque.
    bool IsTranslucent() const;

private:
    std::vector<pugi::xml_node> mChain;
    std::vector<std::string> mKinds;
};

/// True for a paint through which something else may show.
bool IsTranslucent(SvgDocument const& document, std::string const& paint);

} // namespace tool

#endif
