// Resizing: the dialog's rules and the editor's command from end to end.

#include "core/platform/appstate.h"
#include "quantities/frmresize.h"
#include "recipes/frmadd2.h"
#include "support/testsupport.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

namespace {

QStringList amounts(const frmAdd2 &e)
{
    return ColumnTexts(e.lvwIngredients, 1);
}

// The dialog as the user fills it: a new count (and, in fraction mode, a denominator).
std::function<void(QDialog *)> accept(const QString &count, const QString &denominator = {})
{
    return [count, denominator](QDialog *d) {
        auto *dialog = static_cast<frmResize *>(d);
        if (!denominator.isNull())
            dialog->txtOrigServings->setText(denominator);
        dialog->txtNewServings->setText(count);
        dialog->cmdResize_Click();
    };
}

} // namespace

class TestResize : public SessionTest
{
    Q_OBJECT
public:
    TestResize() : SessionTest(false) { }

    std::unique_ptr<frmAdd2> editorWith(const QString &servings, const QStringList &amountTexts)
    {
        auto e = std::make_unique<frmAdd2>();
        e->TabbedView = false;
        e->show();
        e->txtServings->setText(servings);
        int n = 0;
        for (const QString &amount : amountTexts)
            e->lvwIngredients->addTopLevelItem(
                new QTreeWidgetItem({TwoDigits(++n), amount, QStringLiteral("cup"), QStringLiteral("Item %1").arg(n),
                                     QStringLiteral("item")}));
        e->RecipeChange = false;
        return e;
    }

private Q_SLOTS:
    void dialogServingsModeAndExamples()
    {
        frmResize dialog;
        dialog.OrigServings = 4;
        dialog.show();
        QCOMPARE(dialog.focusWidget(), dialog.txtNewServings);
        QVERIFY(dialog.optResize[0]->isChecked());
        QCOMPARE(dialog.Label1[0]->text(), QStringLiteral("New"));
        QCOMPARE(dialog.txtOrigServings->text(), QStringLiteral("4"));
        QVERIFY(!dialog.txtOrigServings->isEnabled());
        QCOMPARE(dialog.lblCaption->text(), QStringLiteral("Old Amount      New Amount"));
        QTest::keyClicks(dialog.txtNewServings, QStringLiteral("6"));
        const QStringList after = {dialog.lblExample[4]->text(), dialog.lblExample[5]->text(),
                                   dialog.lblExample[6]->text(), dialog.lblExample[7]->text()};
        QCOMPARE(after, (QStringList {"3/4", "1 1/8", "2 1/4", "3"}));
        QCOMPARE(dialog.lblExample[2]->text(), QStringLiteral("1 1/2"));
        // An unusable count leaves the examples as they were.
        dialog.txtNewServings->setText(QStringLiteral("0"));
        QCOMPARE(dialog.lblExample[7]->text(), QStringLiteral("3"));
        dialog.optResize[1]->click();
        QCOMPARE(dialog.Label1[1]->text(), QStringLiteral("Denominator"));
        QVERIFY(dialog.txtOrigServings->isEnabled());
        dialog.optResize[0]->click();
        QCOMPARE(dialog.txtOrigServings->text(), QStringLiteral("4"));
        QVERIFY(!dialog.txtOrigServings->isEnabled());
        SaveScreenshot(&dialog, QStringLiteral("frmResize"));
    }

    void dialogRefusals()
    {
        frmResize dialog;
        dialog.show(); // no servings: fraction mode
        QVERIFY(dialog.optResize[1]->isChecked());
        QCOMPARE(dialog.Label1[0]->text(), QStringLiteral("Numerator"));
        QVERIFY(dialog.txtOrigServings->isEnabled());
        dialog.txtNewServings->setText(QStringLiteral("3"));
        dialog.cmdResize_Click();
        QCOMPARE(m_boxes->prompts(),
                 QStringList {QStringLiteral("You cannot resize this recipe.  0 is an invalid number!")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Division by 0"));
        QVERIFY(dialog.isVisible());
        dialog.txtOrigServings->setText(QStringLiteral("2"));
        dialog.txtNewServings->setText(QStringLiteral("-1"));
        dialog.cmdResize_Click();
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("You must enter a whole value to resize a recipe to!"));
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Mirepan"));
        dialog.txtNewServings->setText(QStringLiteral("3"));
        dialog.txtOrigServings->setText(QStringLiteral("-2"));
        dialog.cmdResize_Click();
        QCOMPARE(m_boxes->boxes.size(), 3);
        QVERIFY(dialog.isVisible());
        dialog.txtOrigServings->setText(QStringLiteral("2"));
        dialog.cmdResize_Click();
        QVERIFY(!dialog.isVisible());
        QVERIFY(!dialog.Cancel);

        dialog.show();
        dialog.close(); // the frame: a Cancel
        QVERIFY(dialog.Cancel);
        QCOMPARE(dialog.txtNewServings->text(), QStringLiteral("0"));
    }

    void editorResizesFourServingsToSix()
    {
        auto e = editorWith(QStringLiteral("4 Servings"), {"1/2", "1 1/2", "2", "---", "a pinch", "0.5", "1.5"});
        e->txtNotes->setPlainText(QStringLiteral("Family recipe."));
        e->RecipeChange = false;
        m_boxes->onModal([](QDialog *d) {
            QCOMPARE(static_cast<frmResize *>(d)->OrigServings, qint16(4));
            accept(QStringLiteral("6"))(d);
        });
        m_boxes->answerInput(QStringLiteral("6 Servings"));
        e->cmdResize_Click();
        QCOMPARE(amounts(*e), (QStringList {"3/4", "2 1/4", "3", "---", "a pinch", "0.5", "1 1/2"}));
        QCOMPARE(e->txtNotes->toPlainText(), QStringLiteral("Recipe was resized from: 4 Servings\nFamily recipe."));
        QCOMPARE(m_boxes->inputDefaults, QStringList {QStringLiteral("6 Servings")});
        QCOMPARE(m_boxes->inputPrompts, QStringList {QStringLiteral(
                                            "Yield Change Verification:\n\nOriginal Yield: 4 Servings\n\nNew Yield:")});
        QCOMPARE(e->txtServings->text(), QStringLiteral("6 Servings"));
        QVERIFY(e->RecipeChange);
        QVERIFY(m_boxes->boxes.isEmpty());

        // A second resize does not note the yield again; an empty answer keeps the servings.
        m_boxes->onModal(accept(QStringLiteral("3")));
        m_boxes->answerInput(QString());
        e->cmdResize_Click();
        QCOMPARE(amounts(*e).mid(0, 3), (QStringList {"3/8", "1 1/8", "1 1/2"}));
        QCOMPARE(e->txtNotes->toPlainText().count(QStringLiteral("Recipe was resized from:")), 1);
        QCOMPARE(e->txtServings->text(), QStringLiteral("6 Servings"));
    }

    void cancelChangesNothing_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("Cancel") << 0;
        QTest::newRow("Escape") << 1;
        QTest::newRow("frame") << 2;
    }
    void cancelChangesNothing()
    {
        QFETCH(int, how);
        auto e = editorWith(QStringLiteral("4"), {"1/2"});
        m_boxes->onModal([how](QDialog *d) {
            auto *dialog = static_cast<frmResize *>(d);
            // Left with a factor that must never be used: 3/0.
            dialog->optResize[1]->click();
            dialog->txtNewServings->setText(QStringLiteral("3"));
            dialog->txtOrigServings->setText(QStringLiteral("0"));
            if (how == 0)
                QTest::mouseClick(dialog->cmdCancel, Qt::LeftButton);
            else if (how == 1)
                QTest::keyClick(dialog->txtNewServings, Qt::Key_Escape);
            else
                dialog->close();
            QVERIFY(dialog->Cancel);
        });
        e->cmdResize_Click();
        QCOMPARE(amounts(*e), QStringList {QStringLiteral("1/2")});
        QCOMPARE(e->txtNotes->toPlainText(), QString());
        QVERIFY(!e->RecipeChange);
    }

    void countThatIsNoNumberIsAPlatformError()
    {
        auto e = editorWith(QStringLiteral("4 Servings"), {"1/2"});
        m_boxes->onModal(accept(QStringLiteral("6 people")));
        e->cmdResize_Click();
        QCOMPARE(m_boxes->prompts(), QStringList {QStringLiteral("Type mismatch")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Error"));
        QCOMPARE(m_boxes->boxes[0].style.icon, MsgIcon::Critical);
        QCOMPARE(amounts(*e), QStringList {QStringLiteral("1/2")});
        QVERIFY(e->txtNotes->toPlainText().startsWith(QStringLiteral("Recipe was resized from: 4 Servings")));
    }

    void fractionModeScalesTheYieldToo()
    {
        auto e = editorWith(QString(), {"3/4", "1/0"});
        m_boxes->onModal([](QDialog *d) {
            auto *dialog = static_cast<frmResize *>(d);
            QVERIFY(dialog->optResize[1]->isChecked());
            accept(QStringLiteral("1"), QStringLiteral("2"))(d);
        });
        m_boxes->answerInput(QString());
        e->cmdResize_Click();
        // The zero denominator shows the fraction's message; its amount becomes empty.
        QCOMPARE(m_boxes->prompts(), QStringList {QStringLiteral("Error parsing string to create fraction!")});
        QCOMPARE(amounts(*e), (QStringList {"3/8", ""}));
        QCOMPARE(e->txtNotes->toPlainText(), QString()); // no servings to note
    }

    void overflowEndsTheCommandWithRowsBeforeItScaled()
    {
        auto e = editorWith(QStringLiteral("1"), {"1/2", "300"});
        m_boxes->onModal(accept(QStringLiteral("200")));
        e->cmdResize_Click();
        QCOMPARE(m_boxes->prompts(), QStringList {QStringLiteral("Overflow")});
        QCOMPARE(amounts(*e), (QStringList {"100", "300"}));
    }
};

QTEST_MAIN(TestResize)
#include "test_resize.moc"
