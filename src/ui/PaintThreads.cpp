#include "ui/PaintThreads.h"

#include <QThread>
#include <QThreadPool>

namespace PaintThreads {

void keepNormal() { QThreadPool::globalInstance()->setThreadPriority(QThread::NormalPriority); }

} // namespace PaintThreads
