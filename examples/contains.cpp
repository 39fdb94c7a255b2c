// SPDX-License-Identifier: MIT

#include <trammel/CFPolygonRef.h>

#include <cstdio>

int main() {
    CFPolygonRef polygon(true); // makes an empty block
    polygon.Append({0, 0}).Append({40, 0}).Append({40, 40}).Append({20, 10}).SetClosed(true);

    CFPolygonRef const shared = polygon; // the same block, not a copy
    CFPolygonRef copy = CFPolygonCreateCopy(polygon);
    polygon.Offset({100, 0});

    std::printf("%ld bytes\n", shared.DataSize());
    std::printf("(30, 15) in the moved polygon: %s, in the copy: %s\n",
                shared.Contains({30, 15}) ? "yes" : "no", copy.Contains({30, 15}) ? "yes" : "no");

    polygon.Dispose(); // frees the block; `shared` must not be used any more
    copy.Dispose();
    std::printf("a null reference has last index %ld\n", copy.LastIndex());
}
