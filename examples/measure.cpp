// SPDX-License-Identifier: MIT

#include <trammel/PathMeasure.h>
#include <trammel/UTrigonometry.h>

#include <array>
#include <cstdio>

int main() {
    CPath track;
    track.MoveTo({0, 0}).LineTo({100, 0}).CurveTo({140, 0}, {140, 60}, {100, 60}).ClosePath();
    trammel::PathMeasure const measure(track); // from here on the path may change or go

    // Four marks, evenly spaced, each with the direction in which the track runs.
    std::array<double, 4> const fractions = {0.125, 0.375, 0.625, 0.875};
    std::array<trammel::PathMeasure::Place, 4> places;
    measure.Places(fractions.data(), fractions.size(), places.data());
    for (trammel::PathMeasure::Place const& place : places) {
        std::printf("element %zu at (%.1f, %.1f), heading %.0f degrees\n", place.element,
                    place.point.h, place.point.v, RadToDeg(place.direction.Angle()));
    }

    trammel::PathMeasure::Nearest const nearest = measure.FindNearest({120, 100});
    std::printf("nearest: %.1f of %.1f along, %.1f away\n", nearest.length, measure.Length(),
                nearest.distance);
}
