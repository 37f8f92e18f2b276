#pragma once
// The times written in a direction ("bake 25 minutes", "simmer for 1 1/2 hours", "10-15 min"),
// each offered as a timer in cooking mode.

#include <QList>
#include <QString>

struct CookingTime {
    QString written; // as the direction writes it: "25 minutes", "10-15 min"
    int seconds = 0; // the shorter end of a range: the time to look first
};

QList<CookingTime> FindCookingTimes(const QString &direction);
