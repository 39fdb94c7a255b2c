// SPDX-License-Identifier: MIT

// Other libraries' boolean operations behind one interface, to be measured beside Trammel's. Each
// library has its own source file, which is compiled if the library is found.

#ifndef TRAMMEL_PEER_H
#define TRAMMEL_PEER_H

#include "../Operands.h"

#include <trammel/Tgcp.h>

#include <memory>

namespace peers {

/// A pair of operands in a library's own form.
class Job {
public:
    virtual ~Job() = default;
    /// Does one operation, from the library's form of the operands to its form of the result, and
    /// keeps the result until the next. Throws a std::exception if the library fails.
    virtual void Run(TPolyOp op) = 0;
    /// Returns the area of the last result.
    virtual double Area() const = 0;
};

/// A library.
struct Peer {
    char const* name;
    bool takesCrossing;   ///< takes contours that cross themselves
    bool isPatient;       ///< measured at every size, however long the size before has taken
    bool recursesByFaces; ///< overflows a stack of 8 MB on the 60,000 faces of the greatest combs
    std::unique_ptr<Job> (*prepare)(operands::Pair const& pair);
};

Peer Polyclipping();
Peer BoostGeometry();
Peer Geos();
Peer Cgal();

} // namespace peers

#endif
