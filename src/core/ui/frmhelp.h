#pragma once
// The user manual inside the program: its contents beside the text, and a search through it.
// The manual is built into the program, so it always tells of this version; "Open as RTF"
// hands the printable copy to the desktop's word processor.

#include <QWidget>

class QLineEdit;
class QListWidget;
class QPushButton;
class QTextBrowser;

class frmHelp : public QWidget
{
    Q_OBJECT
public:
    explicit frmHelp(QWidget *parent = nullptr);

    QListWidget *lstContents;
    QTextBrowser *txtManual;
    QLineEdit *txtFind;
    QPushButton *cmdFindNext;
    QPushButton *cmdPrint;
    QPushButton *cmdOpenRtf;
    QPushButton *cmdClose;

    // Moves to the next place the text stands, from the top again after the last; false when
    // it stands nowhere.
    bool findNext();
    void showSection(int row);
};

// Shows the manual window (one for the session, brought forward when open).
void ShowUserManual();
