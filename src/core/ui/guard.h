#pragma once
// The boundary of every command: a platform error (overflow, division by zero, type
// mismatch, a file that cannot be written) ends the command with an "Error" box and the
// program goes on.

#include "core/ui/msgbox.h"
#include "core/platform/platform.h"

#include <new>
#include <utility>

template<typename Command>
void Guarded(Command &&command)
{
    try {
        std::forward<Command>(command)();
    } catch (const PlatformError &error) {
        MsgBox(error.description(), Msg::Critical, QStringLiteral("Error"));
    } catch (const std::bad_alloc &) {
        MsgBox(QStringLiteral("Out of memory"), Msg::Critical, QStringLiteral("Error"));
    }
}
