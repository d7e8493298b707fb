#pragma once

// Windows only, and free of Qt and windows.h so that it can be built and run on its own: puts
// a running process into one job object of this program, created on first use with
// JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE. The handle is never closed, so the system closes it when
// this program ends, however it ends, and then kills every process in the job. Returns 0 on
// success, else the system's error code (GetLastError).
namespace JobObject {

unsigned long killWithThisProcess(unsigned long processId);

} // namespace JobObject
