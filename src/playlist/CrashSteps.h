#pragma once

// A seam for the tests of what a crash leaves behind: writing a package and copying it to a
// card count their steps here (each file written or read back, each rename), and a test's
// child process can have itself killed at step N, as a crash, a kill or a power cut would end
// the program there. Until killAt() is called, step() only counts.
namespace CrashSteps {

void step();
// Ends this process at once (SIGKILL where there is one) when the count reaches step; 0: never.
void killAt(int step);
int count();

} // namespace CrashSteps
