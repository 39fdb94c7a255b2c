// SPDX-License-Identifier: MIT

// What KurboWorks.cpp calls of the Rust library kurbo. A curve is eight numbers, its control
// points' coordinates in turn. Nothing unwinds through these: the library is built to abort.

#![allow(clippy::missing_safety_doc)]

use kurbo::{
    BezPath, CubicBez, Line, ParamCurve, ParamCurveArclen, ParamCurveNearest, PathEl, PathSeg, Point,
    Shape,
};

fn cubic(c: &[f64; 8]) -> CubicBez {
    CubicBez::new((c[0], c[1]), (c[2], c[3]), (c[4], c[5]), (c[6], c[7]))
}

fn flattened(c: &[f64; 8], tolerance: f64) -> Vec<Point> {
    let curve = cubic(c);
    let elements = [
        PathEl::MoveTo(curve.p0),
        PathEl::CurveTo(curve.p1, curve.p2, curve.p3),
    ];
    let mut points = Vec::new();
    kurbo::flatten(elements.iter().copied(), tolerance, |element| match element {
        PathEl::MoveTo(p) | PathEl::LineTo(p) => points.push(p),
        _ => {}
    });
    points
}

/// The number of points of the polyline, which is made and given up.
#[no_mangle]
pub unsafe extern "C" fn kurbo_flatten(c: &[f64; 8], tolerance: f64) -> f64 {
    flattened(c, tolerance).len() as f64
}

/// Gives the points of the polyline to `sink`, one after another.
#[no_mangle]
pub unsafe extern "C" fn kurbo_points(
    c: &[f64; 8],
    tolerance: f64,
    sink: extern "C" fn(f64, f64, *mut u8),
    data: *mut u8,
) {
    for p in flattened(c, tolerance) {
        sink(p.x, p.y, data);
    }
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_length(c: &[f64; 8], accuracy: f64) -> f64 {
    cubic(c).arclen(accuracy)
}

/// The parameter nearest to a point; stores the squared distance.
#[no_mangle]
pub unsafe extern "C" fn kurbo_nearest(
    c: &[f64; 8],
    x: f64,
    y: f64,
    accuracy: f64,
    square: &mut f64,
) -> f64 {
    let (t, distance2) = cubic(c).nearest(Point::new(x, y), accuracy);
    *square = distance2;
    t
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_parameter(c: &[f64; 8], fraction: f64, accuracy: f64) -> f64 {
    let curve = cubic(c);
    curve.inv_arclen(fraction * curve.arclen(accuracy), accuracy)
}

/// A path to add elements to, which is given up by kurbo_path_free.
#[no_mangle]
pub extern "C" fn kurbo_path_new() -> *mut BezPath {
    Box::into_raw(Box::new(BezPath::new()))
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_path_free(path: *mut BezPath) {
    drop(Box::from_raw(path));
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_path_move(path: &mut BezPath, x: f64, y: f64) {
    path.move_to((x, y));
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_path_line(path: &mut BezPath, x: f64, y: f64) {
    path.line_to((x, y));
}

/// A curve to the last three of the four control points.
#[no_mangle]
pub unsafe extern "C" fn kurbo_path_curve(path: &mut BezPath, c: &[f64; 8]) {
    path.curve_to((c[2], c[3]), (c[4], c[5]), (c[6], c[7]));
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_path_close(path: &mut BezPath) {
    path.close_path();
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_path_length(path: &BezPath, accuracy: f64) -> f64 {
    path.segments().map(|s| s.arclen(accuracy)).sum()
}

/// Stores the point at a fraction of the path's length in x and y.
#[no_mangle]
pub unsafe extern "C" fn kurbo_path_point(
    path: &BezPath,
    fraction: f64,
    accuracy: f64,
    x: &mut f64,
    y: &mut f64,
) {
    let mut left = fraction * kurbo_path_length(path, accuracy);
    let mut end = Point::ZERO;
    for segment in path.segments() {
        let length = segment.arclen(accuracy);
        if left < length {
            end = segment.eval(segment.inv_arclen(left, accuracy));
            break;
        }
        left -= length;
        end = segment.end();
    }
    *x = end.x;
    *y = end.y;
}

/// The squared distance from the path to a point.
#[no_mangle]
pub unsafe extern "C" fn kurbo_path_nearest(path: &BezPath, x: f64, y: f64, accuracy: f64) -> f64 {
    let p = Point::new(x, y);
    path.segments()
        .map(|s| s.nearest(p, accuracy).1)
        .fold(f64::INFINITY, f64::min)
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_path_winding(path: &BezPath, x: f64, y: f64) -> i32 {
    path.winding(Point::new(x, y))
}

#[no_mangle]
pub unsafe extern "C" fn kurbo_path_area(path: &BezPath) -> f64 {
    path.area()
}

/// The sum of the four sides.
#[no_mangle]
pub unsafe extern "C" fn kurbo_path_bounds(path: &BezPath) -> f64 {
    let box_ = path.bounding_box();
    box_.x0 + box_.y0 + box_.x1 + box_.y1
}

/// The number of places where a line and a curve meet.
#[no_mangle]
pub unsafe extern "C" fn kurbo_line_meets(l: &[f64; 4], c: &[f64; 8]) -> f64 {
    let line = Line::new((l[0], l[1]), (l[2], l[3]));
    PathSeg::Cubic(cubic(c)).intersect_line(line).len() as f64
}
