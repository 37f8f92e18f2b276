#pragma once
// The resize dialog: how much to scale a recipe, by servings or by a fraction, with four
// sample amounts shown before and after.

#include <QDialog>

#include <array>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

class frmResize : public QDialog
{
    Q_OBJECT
public:
    explicit frmResize(QWidget *parent = nullptr);

    // Set by the editor before the dialog is shown: the recipe's servings count.
    qint16 OrigServings = 0;
    // True when the user left the dialog with Cancel (or by its frame).
    bool Cancel = false;

    std::array<QRadioButton *, 2> optResize; // 0 "Servings", 1 "Fraction"
    std::array<QLabel *, 2> Label1;
    QLineEdit *txtNewServings;
    QLineEdit *txtOrigServings;
    QLabel *Label2;
    QLabel *lblCaption;
    std::array<QLabel *, 8> lblExample; // 0-3 before, i + 4 the same amount scaled
    QPushButton *cmdResize;
    QPushButton *cmdCancel;

    bool fractionMode() const;

public Q_SLOTS:
    void Form_Load();
    void optResize_Click(int index);
    void UpdateExamples();
    void cmdResize_Click();
    void cmdCancel_Click();

protected:
    bool event(QEvent *event) override;
    // Escape and the window frame leave the dialog as Cancel does.
    void reject() override;

private:
    bool m_loaded = false;
};

// The whole count of a text: its leading number cut down to a whole number.
double WholeCount(const QString &text);
