// SPDX-License-Identifier: MIT

// The operations of the vectors for AVX2. Vector_p.h tells what such a file may not contain.

#include "VectorOperations.h"

namespace trammel_test {

FourLanesUnderTest WideDouble4UnderTest() {
    return OperationsOf<trammel_detail::WideDouble4>::Four();
}

void MovePairsOfWideDouble4(double const* from, double* out) {
    auto const four = trammel_detail::WideDouble4::Load(from);
    Repeat(trammel_detail::Double2::Load(from)).Store(out);
    EvenTwice(four).Store(out + 4);
    OddTwice(four).Store(out + 8);
    LowHalf(four).Store(out + 12);
    HighHalf(four).Store(out + 14);
}

} // namespace trammel_test
