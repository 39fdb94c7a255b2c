// SPDX-License-Identifier: MIT

// A curve class's flatness tolerance, changed for a while. Not installed.

#ifndef TRAMMEL_CURVEERRORSCOPE_P_H
#define TRAMMEL_CURVEERRORSCOPE_P_H

namespace trammel_detail {

/// Installs the class-wide flatness tolerance of CBezier or CBSpline for as long as it lives.
template <class Curve> class CurveErrorScope {
public:
    explicit CurveErrorScope(double error) : mOld(Curve::CurveError()) {
        Curve::SetCurveError(error);
    }
    ~CurveErrorScope() { Curve::SetCurveError(mOld); }
    CurveErrorScope(CurveErrorScope const&) = delete;
    CurveErrorScope& operator=(CurveErrorScope const&) = delete;

private:
    double mOld;
};

} // namespace trammel_detail

#endif
