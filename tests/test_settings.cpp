// The settings dialog: loading into memory, saving, resetting and cancelling.

#include "core/db/firststart.h"
#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "core/platform/modini.h"
#include "settings/frmmaint.h"
#include "settings/frmsettings.h"
#include "support/testsupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFrame>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTest>
#include <QTreeWidget>

class TestSettings : public SessionTest
{
    Q_OBJECT
public:
    TestSettings() : SessionTest(false) { }

private Q_SLOTS:
    void loadingFillsControlsAndMemory()
    {
        WriteFile(m_home->iniPath(),
                  "[Files]\nTransfer=/x/t.txt\nPreview=/x/p.pdf\nDatabase=/x/pantrio.mdb\n"
                  "[Print_Settings]\nBaseFontSize=12\nNewPage=False\nBlankLines=True\nPageNumbers=True\n"
                  "[Misc]\nRecipeView=False\nSeek=\nSeekAmount=True\nStandardAdd=True\nOnlyNewRecipes=garbage\n");
        frmSettings dialog;
        QCOMPARE(dialog.cboFontSize->currentText(), QStringLiteral("12"));
        QVERIFY(!dialog.chkNewPage->isChecked());
        QVERIFY(dialog.chkPageNumbers->isChecked());
        QCOMPARE(dialog.txtFilename->text(), QStringLiteral("/x/p.pdf"));
        QVERIFY(dialog.optSearch[1]->isChecked()); // Edit/Copy
        QVERIFY(!dialog.chkSeek->isChecked()); // an empty switch is off
        QVERIFY(dialog.optAdd[0]->isChecked());
        QVERIFY(!dialog.chkLimit->isChecked());

        const AppSettings &s = gSettings;
        QCOMPARE(s.BaseFontSize, 12);
        QVERIFY(!s.NewPage && s.BlankLines && s.PageNumbers);
        QCOMPARE(s.Transfer, QStringLiteral("/x/t.txt"));
        QVERIFY(!s.RecipeView && !s.Seek && s.SeekAmount && s.StandardAdd && !s.OnlyNewRecipes);
    }

    void missingFileNamesMeanTheShippedDefaults()
    {
        LoadSettings();
        QCOMPARE(gSettings.Preview, m_home->path("recipes.rtf"));
        QCOMPARE(gSettings.Database, m_home->path("PANTRIO.MDB")); // the name the set-up gives it
        // A registered database elsewhere is the one backups are made of.
        m_home->registerDatabase(QStringLiteral("/media/usb/Recipes.db"));
        LoadSettings();
        QCOMPARE(gSettings.Database, QStringLiteral("/media/usb/Recipes.db"));
        QCOMPARE(gSettings.BaseFontSize, 9);
        QVERIFY(gSettings.RecipeView && gSettings.Seek && !gSettings.StandardAdd);
    }

    void savingWritesTwelveKeysInOrder()
    {
        QFile::remove(m_home->iniPath());
        frmSettings dialog;
        dialog.cmdReset_Click();
        dialog.cboFontSize->setCurrentText(QStringLiteral("11"));
        dialog.chkLimit->setChecked(true);
        dialog.txtTransfer->setText(QStringLiteral("C:\\Recipes\\transfer.txt"));
        dialog.show();
        QTest::mouseClick(dialog.cmdClose, Qt::LeftButton);
        QCOMPARE(m_boxes->boxes.size(), 1);
        QVERIFY(m_boxes->boxes[0].prompt.startsWith(
            QStringLiteral("You have checked the limit recipe search checkbox.\n\n")));
        QVERIFY(m_boxes->boxes[0].prompt.endsWith(QStringLiteral("the search window will return no recipes!")));
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Confirmation"));
        QCOMPARE(m_boxes->boxes[0].style.icon, MsgIcon::Information);
        QVERIFY(!dialog.isVisible());
        const QString dir = m_home->dir();
        QCOMPARE(ReadFile(m_home->iniPath()),
                 QStringLiteral(
                     "[Print_Settings]\nBaseFontSize=11\nNewPage=True\nBlankLines=True\nPageNumbers=False\n\n"
                     "[Files]\nTransfer=C:\\Recipes\\transfer.txt\nPreview=%1/recipes.rtf\nDatabase=%1/PANTRIO.MDB\n\n"
                     "[Misc]\nRecipeView=True\nSeek=True\nSeekAmount=False\nStandardAdd=False\nOnlyNewRecipes=True\n")
                     .arg(dir));
        QVERIFY(gSettings.OnlyNewRecipes);
        QCOMPARE(gSettings.BaseFontSize, 11);

        // Saving again with the limit still on tells again; nothing else changes.
        frmSettings again;
        again.cmdClose_Click();
        QCOMPARE(m_boxes->boxes.size(), 2);
    }

    void savingAddsAbsentKeysWithThePlacementRule()
    {
        WriteFile(m_home->iniPath(), "[Misc]\nSeek=True\n[Rating]\n00=\n");
        frmSettings dialog;
        dialog.cmdClose_Click();
        // The new Misc keys land under the next section's header, as every writer does.
        QCOMPARE(GetIniSection(m_home->iniPath(), "Misc"), QStringList {QStringLiteral("Seek=True")});
        QCOMPARE(GetIniValue(m_home->iniPath(), "Rating", "StandardAdd"), QStringLiteral("False"));
    }

    void everyKeyTheProgramWritesIsShipped()
    {
        // Saved three times from the shipped file: each key replaces its own line, is read
        // back, and nothing piles up.
        const QStringList shipped = ReadFile(m_home->iniPath()).split(u'\n');
        for (int round = 1; round <= 3; ++round) {
            frmSettings dialog;
            dialog.txtTransfer->setText(QStringLiteral("/media/usb/transfer%1.txt").arg(round));
            dialog.txtFilename->setText(QStringLiteral("/home/cook/recipes%1.rtf").arg(round));
            dialog.txtDatabase->setText(QStringLiteral("/media/usb/PANTRIO%1.MDB").arg(round));
            dialog.cmdClose_Click();
        }
        RecordMaxRecipeID();
        frmSettings reopened;
        QCOMPARE(reopened.txtTransfer->text(), QStringLiteral("/media/usb/transfer3.txt"));
        QCOMPARE(reopened.txtFilename->text(), QStringLiteral("/home/cook/recipes3.rtf"));
        QCOMPARE(reopened.txtDatabase->text(), QStringLiteral("/media/usb/PANTRIO3.MDB"));
        const QStringList saved = ReadFile(m_home->iniPath()).split(u'\n');
        QCOMPARE(saved.size(), shipped.size());
        for (qsizetype i = 0; i < saved.size(); ++i) {
            if (saved[i] != shipped[i]) // only the three file names changed, in place
                QVERIFY2((shipped[i].startsWith(QStringLiteral("Transfer=")) &&
                          saved[i].startsWith(QStringLiteral("Transfer="))) ||
                             (shipped[i].endsWith(u'=') && saved[i].startsWith(shipped[i])),
                         qPrintable(saved[i]));
        }
    }

    void listMaintenance()
    {
        frmMaint w;
        w.show();
        SaveScreenshot(&w, QStringLiteral("frmMaint"));
        QCOMPARE(w.cboSection->count(), 11);
        QCOMPARE(w.cboSection->itemText(9), QStringLiteral("Rating"));
        QCOMPARE(w.lvwEntries->topLevelItem(1)->text(0), QStringLiteral("01=Appetizers"));
        w.lvwEntries->setCurrentItem(w.lvwEntries->topLevelItem(1));
        QCOMPARE(w.txtData[0]->text(), QStringLiteral("01"));
        QCOMPARE(w.txtData[1]->text(), QStringLiteral("Appetizers"));
        QTest::keyClick(w.lvwEntries, Qt::Key_Down); // the arrow keys choose as a click does
        QCOMPARE(w.txtData[0]->text(), w.lvwEntries->topLevelItem(2)->text(0).section(u'=', 0, 0));
        const auto enter = [&](const char *order, const char *value) {
            w.txtData[0]->setText(QLatin1String(order));
            w.txtData[1]->setText(QLatin1String(value));
        };
        const auto entries = [&] { return GetIniSection(m_home->iniPath(), QStringLiteral("Category_Food")); };
        const QStringList drinks = GetIniSection(m_home->iniPath(), QStringLiteral("Category_Drink"));
        // An existing order changes in place; a new one lands in number order, written with two
        // digits, and the last one stays in its own list.
        enter("01", "Starters");
        w.cmdAdd_Click();
        enter("9", "Pickles");
        w.cmdAdd_Click();
        enter("99", "Leftovers");
        w.cmdAdd_Click();
        const QStringList food = entries();
        QCOMPARE(food.mid(0, 2), (QStringList {"00=", "01=Starters"}));
        QCOMPARE(food.indexOf(QStringLiteral("09=Pickles")), 9); // in the place of 09=Soups
        QCOMPARE(food.last(), QStringLiteral("99=Leftovers"));
        QCOMPARE(GetIniSection(m_home->iniPath(), QStringLiteral("Category_Drink")), drinks);
        QCOMPARE(w.lvwEntries->topLevelItemCount(), food.size());
        QCOMPARE(w.txtData[0]->text(), QString()); // the boxes are emptied after each change
        // Orders that are no list number are refused; every spelling of 0 is the default's.
        for (const char *order : {"A1", "055", "1.5"}) {
            enter(order, "odd");
            w.cmdAdd_Click();
        }
        for (const char *order : {"00", "0", "000"}) {
            enter(order, "x");
            w.cmdAdd_Click();
        }
        enter("00", "x");
        w.cmdDelete_Click();
        const QString notAnOrder =
            QStringLiteral("The order is a number from 01 to 99: it places the entry in the list.");
        const QString cannotChange = QStringLiteral(
            "Users are not permitted to change this list item.  \nThis is the default value of the selected list!");
        QCOMPARE(m_boxes->prompts(),
                 (QStringList {notAnOrder, notAnOrder, notAnOrder, cannotChange, cannotChange, cannotChange,
                               "Users are not permitted to remove this list item.  \nThis is the default value of the "
                               "selected list!"}));
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Invalid Data"));
        QCOMPARE(m_boxes->boxes[3].title, QStringLiteral("Invalid Option"));
        QCOMPARE(entries(), food);
        enter("9", "Pickles");
        m_boxes->answer(MsgResult::Yes);
        w.cmdDelete_Click();
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("Are you sure you want to remove the entry: 09=Pickles?"));
        enter("", "nothing");
        w.cmdAdd_Click();
        w.cmdDelete_Click();
        QCOMPARE(m_boxes->prompts().mid(8), (QStringList {"You must have an order entered and a section selected.",
                                                          "You must enter the ID/Order for the item to delete!"}));
        // The first entry of an absent section creates it at the end of the file.
        DeleteIniKey(m_home->iniPath(), QStringLiteral("Rating"), QStringLiteral("00"));
        WriteFile(m_home->iniPath(),
                  ReadFile(m_home->iniPath()).replace(QStringLiteral("[Rating]"), QStringLiteral("[Gone]")).toUtf8());
        w.cboSection->setCurrentIndex(9);
        w.cboSection_Click();
        QCOMPARE(w.lvwEntries->topLevelItemCount(), 1); // one empty entry
        enter("01", "*");
        w.cmdAdd_Click();
        QVERIFY(ReadFile(m_home->iniPath()).endsWith(QStringLiteral("\n\n[Rating]\n01=*\n")));
    }

    void resetThenCancelLeavesTheFileUnchanged()
    {
        const QString before = ReadFile(m_home->iniPath());
        frmSettings dialog;
        dialog.chkSeek->setChecked(false);
        dialog.chkPageNumbers->setChecked(true);
        dialog.cmdReset_Click();
        QVERIFY(dialog.chkSeek->isChecked());
        QVERIFY(!dialog.chkPageNumbers->isChecked());
        QVERIFY(dialog.optAdd[1]->isChecked());
        QVERIFY(dialog.optSearch[0]->isChecked());
        QCOMPARE(dialog.cboFontSize->currentText(), QStringLiteral("9"));
        QCOMPARE(dialog.txtDatabase->text(), m_home->path("PANTRIO.MDB"));
        dialog.cmdCancel_Click();
        QCOMPARE(ReadFile(m_home->iniPath()), before);
    }

    void tabsShowOneFrame()
    {
        frmSettings dialog;
        dialog.resize(560, 380);
        dialog.show();
        QVERIFY(dialog.fraPrint->isVisible());
        QVERIFY(!dialog.fraFile->isVisible());
        SaveScreenshot(&dialog, QStringLiteral("frmSettings-print"));
        dialog.SetTab(3);
        QVERIFY(dialog.fraAction->isVisible());
        QVERIFY(!dialog.fraPrint->isVisible());
        SaveScreenshot(&dialog, QStringLiteral("frmSettings-actions"));
        dialog.tsSettings->setCurrentIndex(1);
        QVERIFY(dialog.fraFile->isVisible());
        QVERIFY(!dialog.fraAction->isVisible());
        SaveScreenshot(&dialog, QStringLiteral("frmSettings-files"));
        // Going from tab to tab keeps the dialog's size.
        const QSize size = dialog.size();
        for (int tab : {1, 3, 2, 1, 3})
            dialog.SetTab(tab);
        QCOMPARE(dialog.size(), size);
    }

    void browseButtonsFillTheFileNames()
    {
        frmSettings dialog;
        dialog.show();
        dialog.SetTab(2);
        m_boxes->answerFile(QStringLiteral("/home/cook/week.pdf"));
        QTest::mouseClick(dialog.cmdBrowseFilename, Qt::LeftButton);
        QCOMPARE(dialog.txtFilename->text(), QStringLiteral("/home/cook/week.pdf"));
        QCOMPARE(m_boxes->fileDialogs, (QStringList {"Preview File", m_home->path("recipes.rtf")}));
        m_boxes->answerFile(QString()); // Cancel keeps the name
        QTest::mouseClick(dialog.cmdBrowseTransfer, Qt::LeftButton);
        QCOMPARE(dialog.txtTransfer->text(), m_home->path("transfer.txt"));
        m_boxes->answerFile(QStringLiteral("/media/usb/PANTRIO.MDB"));
        QTest::mouseClick(dialog.cmdBrowseDatabase, Qt::LeftButton);
        QCOMPARE(dialog.txtDatabase->text(), QStringLiteral("/media/usb/PANTRIO.MDB"));
    }
};

QTEST_MAIN(TestSettings)
#include "test_settings.moc"
