#pragma once
// One running Mirepan per program directory: two programs writing one settings file and one
// database is how a household loses data. A second start finds the first through a local
// socket named after the program directory, asks it to come forward, and ends.

#include <QObject>
#include <QString>

#include <functional>

class QLocalServer;

class SingleInstance : public QObject
{
public:
    // The name every start for the same program directory (and user) agrees on.
    static QString keyFor(const QString &programDir);

    explicit SingleInstance(const QString &key, QObject *parent = nullptr);
    ~SingleInstance() override;

    // True when this is the only running program: from then on it answers later starts.
    // False when another runs: it has been asked to come forward.
    bool claim();
    // What the running program does when a later start asks it to come forward.
    std::function<void()> onActivation;

private:
    QString m_key;
    QLocalServer *m_server = nullptr;
};
