#include "processor/JobObject.h"

#include <windows.h>

namespace JobObject {

namespace {
HANDLE programJob()
{
    static HANDLE job = [] {
        HANDLE created = CreateJobObjectW(nullptr, nullptr);
        if (created) {
            JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
            limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
            if (!SetInformationJobObject(created, JobObjectExtendedLimitInformation, &limits,
                                         sizeof limits)) {
                CloseHandle(created);
                created = nullptr;
            }
        }
        return created;
    }();
    return job;
}
} // namespace

unsigned long killWithThisProcess(unsigned long processId)
{
    HANDLE job = programJob();
    if (!job)
        return GetLastError();
    HANDLE process = OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, processId);
    if (!process)
        return GetLastError();
    const BOOL assigned = AssignProcessToJobObject(job, process);
    const unsigned long error = assigned ? 0 : GetLastError();
    CloseHandle(process);
    return error;
}

} // namespace JobObject
