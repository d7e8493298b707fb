#pragma once

#include <functional>

// Runs work over the rows of a large image in bands, one per core, and returns when every band
// is done: work(first, end) for rows first .. end - 1, on the calling thread and on a small
// pool's threads. The bands must not touch one another's rows. A band no pool thread has begun
// by the time the caller is done with its own is done by the caller, so a call never waits for
// a thread that is busy elsewhere, and calls from several threads at once are safe. Images of
// fewer than minimumRows * cores rows are worked on in one piece, on the calling thread.
namespace RowBands {

void run(int rows, int minimumRows, const std::function<void(int first, int end)> &work);

} // namespace RowBands
