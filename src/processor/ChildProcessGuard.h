#pragma once

class QProcess;

// Ties a child process's life to this program's, so a processor never outlives the program
// that started it, however that program ends. On Linux the child asks to be killed when its
// parent dies (PR_SET_PDEATHSIG, set in the child before exec); on Windows it joins a job
// object that kills its members when the program's handle to it closes (JobObject.h). Call
// prepare() before QProcess::start and adopt() once the process has started.
namespace ChildProcessGuard {

void prepare(QProcess *process);
void adopt(QProcess *process);

} // namespace ChildProcessGuard
