#pragma once

// What became of a picture in a run: Pending until a run takes it, Processing while its
// processor works, then Done or one of the failures (Failed: it could not be run at all,
// StartFailed: the processor did not start, Cancelled: stopped, Crashed, ExitCodeFailed:
// ended with another exit code than 0). The values are stored, so they never change.
enum class RowStatus {
    Pending = 0,
    Processing = 1,
    Done = 2,
    Failed = 3,
    StartFailed = 4,
    Cancelled = 5,
    Crashed = 6,
    ExitCodeFailed = 7,
};

// True for the ends that give no frame.
inline bool isFailure(RowStatus status)
{
    return status == RowStatus::Failed || status == RowStatus::StartFailed ||
           status == RowStatus::Cancelled || status == RowStatus::Crashed ||
           status == RowStatus::ExitCodeFailed;
}
