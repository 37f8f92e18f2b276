#pragma once
// Starting Mirepan: connect to the recipe database (setting up the data source on the first
// run), show the main window and record the highest recipe identifier.

#include <QApplication>
#include <QIcon>
#include <memory>

class frmMain;

// Opens the data source; when that fails, runs "reg_vesk /s" from the program's directory,
// gives it eight seconds and tries once more. The program goes on unconnected after a
// second failure.
void ConnectAtStartup();
// Checks that the open database file is whole; a damaged one is named, and nothing is saved
// into it until it is restored.
void CheckDatabaseAtStartup();
// Records the database file as this program leaves it, sound: the next start need not read it
// through.
void RecordCheckedDatabase();
// The whole start-up; the returned main window is shown.
std::unique_ptr<frmMain> Startup();

// The program's icon, the drawing of its menu entry.
QIcon ProgramIcon();

// The application object: a platform error that escapes a command anywhere ends that
// command with a message instead of the program.
class MirepanApplication : public QApplication
{
public:
    MirepanApplication(int &argc, char **argv);
    bool notify(QObject *receiver, QEvent *event) override;
};
