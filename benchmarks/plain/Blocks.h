// SPDX-License-Identifier: MIT

// Relocatable blocks behind handles, as the plain library's polygons use them: growing keeps spare
// room, so that appending costs linear time, as it does in the library proper.

#ifndef TRAMMEL_BENCH_BLOCKS_H
#define TRAMMEL_BENCH_BLOCKS_H

namespace plain {

char** NewHandle(long size);
long GetHandleSize(char** handle);
void PtrAndHand(void const* source, char** handle, long count);
void DisposeHandle(char** handle);

} // namespace plain

#endif
