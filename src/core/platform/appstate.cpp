#include "appstate.h"

#include "core/platform/platform.h"

QString gRecipeType = QStringLiteral("Food");
qint16 gSubWindows = 0;
AppSettings gSettings;

QStringList RecipeTypes()
{
    return {QStringLiteral("Food"), QStringLiteral("Drink"), QStringLiteral("Other")};
}

QString TypeCode(const QString &recipeType)
{
    return recipeType.left(1);
}

bool SubWindowCount::load()
{
    if (m_state != State::Fresh)
        return false;
    m_state = State::Open;
    gSubWindows = Add16(gSubWindows, 1);
    return true;
}

void SubWindowCount::unload()
{
    if (m_state != State::Open)
        return;
    m_state = State::Closed;
    gSubWindows = Sub16(gSubWindows, 1);
}
