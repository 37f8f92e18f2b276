#pragma once
// A layer over the engine's file access that fails on command, as a full disk, a failing disk
// or a busy file would: the writers are driven through every point where the disk can fail.
// Installed as the default, it must be in place before the database is opened.

enum class FaultOp { Write, Sync };

// Puts the layer under every connection opened from now on (once per program).
void InstallFaultVfs();
// From the nth call of the operation on (1 = the next), the call fails with the engine's code
// (SQLITE_FULL, SQLITE_IOERR_WRITE...), until disarmed. Counting starts afresh.
void ArmFault(FaultOp op, int nth, int code);
void DisarmFault();
// Database files opened from now on open for reading only, as a file that may not be written to.
void SetFaultReadOnly(bool readOnly);
// Calls of the operation since the last ArmFault or ResetFaultCounts, failed ones included.
int FaultCalls(FaultOp op);
void ResetFaultCounts();
