// SPDX-License-Identifier: MIT

// NewCrossings: the choice whether simplified outlines may cross or touch anew.

#ifndef TRAMMEL_NEWCROSSINGS_H
#define TRAMMEL_NEWCROSSINGS_H

namespace trammel {

/// Tells whether simplified rings and outlines may cross or touch where they did not before.
enum class NewCrossings {
    kAllow, ///< they may
    kAvoid, ///< they may not, and keep more vertices or elements where they would
};

} // namespace trammel

#endif
