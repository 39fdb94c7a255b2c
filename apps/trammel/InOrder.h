// SPDX-License-Identifier: MIT

// Work in several threads whose results are taken in order.

#ifndef TRAMMEL_APP_INORDER_H
#define TRAMMEL_APP_INORDER_H

#include <cstddef>
#include <functional>

namespace tool {

/// The end of a piece of work, done in its turn in the calling thread.
typedef std::function<void()> Turn;
/// A piece of work, which any thread may do. It returns its turn.
typedef std::function<Turn()> Work;

/// Does pieces of work in several threads at once, and takes their turns in order.
///
/// `next` returns the next piece, and an empty one at the end. One thread at a time calls it. A
/// turn is taken as soon as those before it are. No more than a few pieces for each thread are
/// begun and not yet taken. An exception of a piece, of `next` or of a turn is thrown when its turn
/// comes, and no turn follows.
/// \param threads  with 0 and 1, and where the system has no thread to give, the calling thread
///     does all work
void RunInOrder(std::size_t threads, std::function<Work()> const& next);

} // namespace tool

#endif
