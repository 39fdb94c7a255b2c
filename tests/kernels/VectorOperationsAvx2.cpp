// SPDX-License-Identifier: MIT

// The operations of the vectors for AVX2. Vector_p.h tells what such a file may not contain.

#include "VectorOperations.h"

namespace trammel_test {

FourLanesUnderTest WideDouble4UnderTest() {
    return OperationsOf<trammel_detail::WideDouble4>::Four();
}

} // namespace trammel_test
