#include "faultvfs.h"

#include <sqlite3.h>

#include <cstring>

namespace {

sqlite3_vfs *g_real = nullptr;
sqlite3_vfs g_shim;
sqlite3_io_methods g_methods;

struct ShimFile {
    sqlite3_file base;
    sqlite3_file *real; // the real file's state, allocated right after this one
};

struct Plan {
    bool armed = false;
    FaultOp op = FaultOp::Write;
    int nth = 0;
    int code = SQLITE_IOERR;
    int calls[2] = {0, 0};
};
Plan g_plan;
bool g_readOnly = false;

sqlite3_file *real(sqlite3_file *file)
{
    return reinterpret_cast<ShimFile *>(file)->real;
}

// Counts the call; the planned failure's code when it is due, else SQLITE_OK.
int due(FaultOp op)
{
    const int calls = ++g_plan.calls[int(op)];
    return g_plan.armed && g_plan.op == op && calls >= g_plan.nth ? g_plan.code : SQLITE_OK;
}

int shimClose(sqlite3_file *f)
{
    return real(f)->pMethods ? real(f)->pMethods->xClose(real(f)) : SQLITE_OK;
}
int shimRead(sqlite3_file *f, void *buffer, int amount, sqlite3_int64 offset)
{
    return real(f)->pMethods->xRead(real(f), buffer, amount, offset);
}
int shimWrite(sqlite3_file *f, const void *buffer, int amount, sqlite3_int64 offset)
{
    if (const int code = due(FaultOp::Write))
        return code;
    return real(f)->pMethods->xWrite(real(f), buffer, amount, offset);
}
int shimTruncate(sqlite3_file *f, sqlite3_int64 size)
{
    return real(f)->pMethods->xTruncate(real(f), size);
}
int shimSync(sqlite3_file *f, int flags)
{
    if (const int code = due(FaultOp::Sync))
        return code;
    return real(f)->pMethods->xSync(real(f), flags);
}
int shimFileSize(sqlite3_file *f, sqlite3_int64 *size)
{
    return real(f)->pMethods->xFileSize(real(f), size);
}
int shimLock(sqlite3_file *f, int level)
{
    return real(f)->pMethods->xLock(real(f), level);
}
int shimUnlock(sqlite3_file *f, int level)
{
    return real(f)->pMethods->xUnlock(real(f), level);
}
int shimCheckReservedLock(sqlite3_file *f, int *out)
{
    return real(f)->pMethods->xCheckReservedLock(real(f), out);
}
int shimFileControl(sqlite3_file *f, int op, void *arg)
{
    return real(f)->pMethods->xFileControl(real(f), op, arg);
}
int shimSectorSize(sqlite3_file *f)
{
    return real(f)->pMethods->xSectorSize(real(f));
}
int shimDeviceCharacteristics(sqlite3_file *f)
{
    return real(f)->pMethods->xDeviceCharacteristics(real(f));
}

int shimOpen(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *outFlags)
{
    auto *shim = reinterpret_cast<ShimFile *>(file);
    shim->real = reinterpret_cast<sqlite3_file *>(shim + 1);
    if (g_readOnly && (flags & SQLITE_OPEN_MAIN_DB))
        flags = (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) | SQLITE_OPEN_READONLY;
    const int result = g_real->xOpen(g_real, name, shim->real, flags, outFlags);
    // The first methods only: no shared memory or memory map, which the journal in its own
    // file (the program's mode) does not need.
    shim->base.pMethods = shim->real->pMethods ? &g_methods : nullptr;
    return result;
}

} // namespace

void InstallFaultVfs()
{
    if (g_real)
        return;
    g_real = sqlite3_vfs_find(nullptr);
    g_shim = *g_real;
    g_shim.iVersion = 1;
    g_shim.szOsFile = int(sizeof(ShimFile)) + g_real->szOsFile;
    g_shim.zName = "mirepan-fault";
    g_shim.pNext = nullptr;
    g_shim.xOpen = shimOpen;
    std::memset(&g_methods, 0, sizeof g_methods);
    g_methods.iVersion = 1;
    g_methods.xClose = shimClose;
    g_methods.xRead = shimRead;
    g_methods.xWrite = shimWrite;
    g_methods.xTruncate = shimTruncate;
    g_methods.xSync = shimSync;
    g_methods.xFileSize = shimFileSize;
    g_methods.xLock = shimLock;
    g_methods.xUnlock = shimUnlock;
    g_methods.xCheckReservedLock = shimCheckReservedLock;
    g_methods.xFileControl = shimFileControl;
    g_methods.xSectorSize = shimSectorSize;
    g_methods.xDeviceCharacteristics = shimDeviceCharacteristics;
    sqlite3_vfs_register(&g_shim, 1);
}

void ArmFault(FaultOp op, int nth, int code)
{
    g_plan.armed = true;
    g_plan.op = op;
    g_plan.nth = nth;
    g_plan.code = code;
    ResetFaultCounts();
}

void DisarmFault()
{
    g_plan.armed = false;
}

int FaultCalls(FaultOp op)
{
    return g_plan.calls[int(op)];
}

void ResetFaultCounts()
{
    g_plan.calls[0] = g_plan.calls[1] = 0;
}

void SetFaultReadOnly(bool readOnly)
{
    g_readOnly = readOnly;
}
