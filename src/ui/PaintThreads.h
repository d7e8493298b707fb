#pragma once

// Qt's painting and its image scaling split large jobs across QThreadPool::globalInstance() and
// wait for the parts, on the GUI thread too. A thread of that pool takes the priority of the
// thread that happens to start it, and the program's background work (decoding, previews,
// tiles) runs at idle priority: a pool thread started from there would leave the window's
// painting waiting behind all of that work. keepNormal() makes the pool start every thread at
// normal priority, whoever asks; call it once, before the first window.
namespace PaintThreads {

void keepNormal();

} // namespace PaintThreads
