// Runs under wine: a process put into the program's job object (JobObject.h) ends when the
// program that put it there ends, and one that was not put there goes on.
//   job_probe            the check; prints one line per case
//   job_probe middle G   starts a child (into the job when G is 1), then exits with its pid
//   job_probe child      sleeps until killed
#include "processor/JobObject.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>

namespace {

HANDLE startSelf(const wchar_t *args)
{
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    wchar_t commandLine[2 * MAX_PATH];
    std::swprintf(commandLine, 2 * MAX_PATH, L"\"%ls\" %ls", self, args);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info = {};
    if (!CreateProcessW(nullptr, commandLine, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info))
        return nullptr;
    CloseHandle(info.hThread);
    return info.hProcess;
}

// Starts a middle process that starts a child and ends; true when the child outlived it.
bool childOutlivesItsStarter(bool guarded, bool *ok)
{
    HANDLE middle = startSelf(guarded ? L"middle 1" : L"middle 0");
    *ok = middle && WaitForSingleObject(middle, 10000) == WAIT_OBJECT_0;
    DWORD childPid = 0;
    *ok = *ok && GetExitCodeProcess(middle, &childPid) && childPid > 1;
    if (middle)
        CloseHandle(middle);
    HANDLE child = *ok ? OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, childPid) : nullptr;
    if (!child)
        return false; // already gone
    const bool alive = WaitForSingleObject(child, 3000) == WAIT_TIMEOUT;
    TerminateProcess(child, 1);
    CloseHandle(child);
    return alive;
}

} // namespace

int wmain(int argc, wchar_t **argv)
{
    if (argc >= 2 && std::wcscmp(argv[1], L"child") == 0) {
        Sleep(INFINITE);
        return 0;
    }
    if (argc >= 3 && std::wcscmp(argv[1], L"middle") == 0) {
        HANDLE child = startSelf(L"child");
        if (!child)
            return 1;
        const DWORD pid = GetProcessId(child);
        if (argv[2][0] == L'1' && JobObject::killWithThisProcess(pid) != 0)
            return 1;
        CloseHandle(child);
        return int(pid); // the job's handle closes as this process ends
    }
    bool ok = false;
    const bool guardedAlive = childOutlivesItsStarter(true, &ok);
    std::printf("guarded %s\n", !ok ? "error" : guardedAlive ? "outlived" : "ended");
    const bool unguardedAlive = childOutlivesItsStarter(false, &ok);
    std::printf("unguarded %s\n", !ok ? "error" : unguardedAlive ? "outlived" : "ended");
    return 0;
}
