#include "firststart.h"

#include "database.h"

#include "core/platform/modini.h"
#include "core/platform/platform.h"
#include "core/platform/programdir.h"

void RecordMaxRecipeID()
{
    gMaxRecipeID = ToInt32(Val(GetIniValue(IniPath(), QStringLiteral("Misc"), QStringLiteral("MaxRecipeID"))));
    if (gMaxRecipeID != 0 || gNotConnected)
        return;
    gSQL = QStringLiteral("SELECT MAX(id) FROM RECIPE");
    const Recordset rs = ExecuteSQL(gSQL);
    // An empty table still answers one row, holding NULL: nothing to record then.
    if (!rs || rs.eof() || rs.value(0).isNull())
        return;
    const qint32 highest = ToInt32(rs.value(0).toDouble());
    WriteIniValue(IniPath(), QStringLiteral("Misc"), QStringLiteral("MaxRecipeID=") + QString::number(highest));
    gMaxRecipeID = highest;
}
