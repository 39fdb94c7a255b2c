// SPDX-License-Identifier: MIT

#include "UScalar.h"

template void minmax<short>(short&, short&, short, short);
template void minmax<double>(double&, double&, double, double);
template void PinValueToRange<double>(double const&, double const&, double&);
template bool EqualTPt<double>(TPoint<double> const&, TPoint<double> const&, double);
template bool EqualTPt<short>(TPoint<short> const&, TPoint<short> const&, double);
template TPoint<double> TPt<double>(TPoint<double> const&, TPoint<double> const&, double);
template TPoint<double> MidPt<double>(TPoint<double> const&, TPoint<double> const&);
template double Hypotenuse<double>(TPoint<double> const&, TPoint<double> const&);
template double LineLength<double>(TPoint<double> const&, TPoint<double> const&);
template double LineLength<short>(TPoint<short> const&, TPoint<short> const&);
template double LineMagnitude<double>(TPoint<double> const&, TPoint<double> const&);
