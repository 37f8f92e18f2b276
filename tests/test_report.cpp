// The printed recipe: composition, the report over stored recipes, the editor's view, and the
// preview's files.

#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "recipes/frmadd2.h"
#include "recipes/reciperepository.h"
#include "reports/frmpreview.h"
#include "reports/recipeprinter.h"
#include "reports/recipereport.h"
#include "settings/frmsettings.h"
#include "core/platform/modini.h"
#include "support/testsupport.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QDialog>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>
#include <QTreeWidget>

namespace {

RecipeData pie()
{
    RecipeData r =
        TestRecipe(QStringLiteral("Apple Pie"), {"2|cup|Flour|flour", "---|---|Salt|salt", "6|---|Apples|apple"},
                   {"Make the dough.", "Bake."});
    r.category = QStringLiteral("Desserts");
    r.servings = QStringLiteral("8");
    r.prepTime = QStringLiteral("00:30");
    r.cookTime = QStringLiteral("00:00");
    r.notes = QStringLiteral("Best warm.");
    return r;
}

QStringList texts(const RecipePrinter &p)
{
    QStringList lines;
    for (const PrintLine &line : p.lines())
        lines.append(line.text());
    return lines;
}

} // namespace

class TestReport : public SessionTest
{
    Q_OBJECT

    QList<RecipePrinter> m_shown;

private Q_SLOTS:
    void init()
    {
        SessionTest::init();
        gSettings.Preview = m_home->path("recipes.rtf");
        m_shown.clear();
        SetPrintPreviewSink([this](const RecipePrinter &p) { m_shown.append(p); });
    }
    void cleanup()
    {
        SetPrintPreviewSink(nullptr);
        SessionTest::cleanup();
    }

    // Shown in the household's measures when the settings ask: amounts and temperatures
    // converted, the recipe itself unchanged; as written otherwise (the document above).
    void amountsShownInTheChosenMeasures()
    {
        RecipeData r = pie();
        r.directions[1].direction = QStringLiteral("Bake at 350°F.");
        const RecipeData before = r;
        for (const auto &[system, flour, bake] :
             {std::tuple {MeasureSystem::Metric, "  473 ml Flour", "\tBake at 350°F (175°C)."},
              std::tuple {MeasureSystem::US, "  2 cup Flour", "\tBake at 350°F."}}) {
            RecipePrinter p;
            ReportSettings s;
            s.measures = system;
            ComposeRecipe(p, r, s);
            frmPreview shown(p); // for a look by eye: the recipe in each system
            shown.show();
            SaveScreenshot(&shown, QStringLiteral("frmPreview-") + MeasureSystemText(system));
            QCOMPARE(texts(p).at(7), QString::fromUtf8(flour));
            QVERIFY(texts(p).contains(QStringLiteral("  6 Apples")));
            QVERIFY2(p.plainText().contains(QString::fromUtf8(bake)), qPrintable(p.plainText()));
        }
        QCOMPARE(Describe(r), Describe(before));
        // A cup of an item whose weight the household gave is weighed in a metric kitchen.
        WriteIniValue(m_home->iniPath(), "Densities", "FLOUR=125");
        gSettings.ShowMeasures = QStringLiteral("Metric");
        RecipePrinter weighed;
        ComposeRecipe(weighed, r, HouseholdReportSettings());
        QCOMPARE(texts(weighed).at(7), QStringLiteral("  250 g Flour"));
        // Chosen in the settings dialog and kept in the settings file.
        frmSettings dialog;
        dialog.cboMeasures->setCurrentIndex(2);
        dialog.cmdClose_Click();
        QCOMPARE(gSettings.ShowMeasures, QStringLiteral("Metric"));
        QCOMPARE(GetIniValue(m_home->iniPath(), "Misc", "ShowMeasures"), QStringLiteral("Metric"));
    }

    void oneRecipeComposed()
    {
        RecipePrinter p;
        ReportSettings s;
        ComposeRecipe(p, pie(), s);
        QCOMPARE(texts(p), (QStringList {"Apple Pie",
                                         "",
                                         "Category:\tDesserts",
                                         "Servings:\t8",
                                         "Prep Time:\t00:30",
                                         "",
                                         "Ingredients:",
                                         "  2 cup Flour",
                                         "  Salt",
                                         "  6 Apples",
                                         "",
                                         "Directions:",
                                         "  01:\tMake the dough.",
                                         "",
                                         "  02:\tBake.",
                                         "",
                                         "",
                                         "Notes:",
                                         "Best warm.",
                                         "",
                                         ""}));
        const QList<PrintLine> lines = p.lines();
        QCOMPARE(lines[0].runs[0].size, 19.0);
        QVERIFY(lines[0].runs[0].bold);
        QCOMPARE(lines[0].runs[0].font, QStringLiteral("Courier New"));
        QCOMPARE(lines[1].size(), 9.0);
        QCOMPARE(lines[2].runs[0].size, 10.0);
        QVERIFY(lines[6].runs[0].italic && !lines[6].runs[0].bold);
        QCOMPARE(lines[6].runs[0].size, 11.0);
        QCOMPARE(lines[7].runs.size(), 4); // indent, amount, measure, ingredient
        QCOMPARE(lines[7].runs[0].size, 9.0);
        QCOMPARE(lines[12].runs[1].text, QStringLiteral("01:"));
        QVERIFY(lines[12].runs[1].bold);
        QCOMPARE(lines[13].size(), 4.0); // the half blank
        QVERIFY(!lines[0].newPage);
    }

    void halfBlankRoundsToEven()
    {
        QCOMPARE(HalfBlankSize(9), 4);
        QCOMPARE(HalfBlankSize(10), 4);
        QCOMPARE(HalfBlankSize(12), 6);
        QCOMPARE(HalfBlankSize(11), 5);
    }

    void reportOfSeveralRecipes()
    {
        StoreTestRecipe(pie(), 1);
        RecipeData soup = pie();
        soup.title = QStringLiteral("Soup");
        soup.notes.clear();
        StoreTestRecipe(soup, 2);

        gSettings.PageNumbers = true;
        PrintRecipes(QList<qint32> {2});
        QCOMPARE(m_shown.size(), 1);
        QCOMPARE(texts(m_shown[0]).first(), QStringLiteral("Soup")); // one recipe: no contents, no number

        PrintRecipes({2, 1});
        const QList<PrintLine> lines = m_shown[1].lines();
        QCOMPARE(lines[0].text(), QStringLiteral("Recipes"));
        QCOMPARE(lines[2].text(), QStringLiteral("  1.  Soup"));
        QCOMPARE(lines[3].text(), QStringLiteral("  2.  Apple Pie"));
        QCOMPARE(lines[3].runs[0].size, 13.0);
        QVERIFY(lines[4].newPage);
        QCOMPARE(lines[4].text(), QStringLiteral("1 - Soup"));
        int second = -1;
        for (int i = 0; i < lines.size(); ++i)
            if (lines[i].text() == u"2 - Apple Pie")
                second = i;
        QVERIFY(second > 0);
        QVERIFY(lines[second].newPage);
        QCOMPARE(m_shown[1].fileName(), m_home->path("recipes.rtf"));

        gSettings.NewPage = false;
        gSettings.PageNumbers = false;
        gSettings.BlankLines = false;
        gRecipeType = QStringLiteral("Drink");
        PrintRecipes({1, 2});
        const QStringList plain = texts(m_shown[2]);
        QCOMPARE(plain.first(), QStringLiteral("Apple Pie"));
        QVERIFY(!plain.contains(QStringLiteral("Servings:\t8")));
        QVERIFY(plain.contains(QStringLiteral("Soup")));
        QVERIFY(plain.contains(QStringLiteral("  1:\tMake the dough."))); // the step as stored
        for (const PrintLine &line : m_shown[2].lines()) {
            QVERIFY(!line.newPage);
            QVERIFY(line.size() != 4.0); // no blanks between directions
        }
    }

    void deletedRecipesLeaveAnEmptyHeading()
    {
        StoreTestRecipe(pie(), 1);
        PrintRecipes({7, 1});
        const QStringList plain = texts(m_shown[0]);
        QCOMPARE(plain.mid(0, 3), (QStringList {"", "", "Apple Pie"}));
    }

    void largeReportsAsk()
    {
        QList<qint32> ids;
        for (int i = 1; i <= 25; ++i)
            ids.append(i);
        PrintRecipes(ids);
        QVERIFY(m_boxes->boxes.isEmpty());
        ids.append(26);
        m_boxes->answer(MsgResult::No);
        PrintRecipes(ids);
        QCOMPARE(m_boxes->prompts(),
                 QStringList {QStringLiteral("You have chosen to view/print a large number of recipes.  This may take "
                                             "a while to load.\nWould you like to continue?")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Message"));
        QCOMPARE(m_shown.size(), 1);
        CloseDatabase();
        PrintRecipes(QList<qint32> {1});
        QCOMPARE(
            m_boxes->boxes.last().prompt,
            QStringLiteral("Because you were not able to connect to the database, this function has been disabled."));
    }

    void editorViewShowsUnsavedChanges()
    {
        frmAdd2 e;
        e.TabbedView = false;
        e.RecipeType = QStringLiteral("Drink");
        e.show();
        e.cmdView_Click(); // an empty editor: the empty title and blank lines
        QCOMPARE(texts(m_shown[0]), (QStringList {"", "", ""}));
        e.txtTitle->setText(QStringLiteral("Lemonade"));
        e.txtServings->setText(QStringLiteral("4"));
        e.lvwIngredients->addTopLevelItem(new QTreeWidgetItem({"01", "---", "---", "Lemons", "lemon"}));
        e.cmdView_Click();
        QCOMPARE(texts(m_shown[1]), (QStringList {"Lemonade", "", "", "Ingredients:", "  Lemons", ""}));
        gRecipeType = QStringLiteral("Drink");
        e.RecipeType = QStringLiteral("Food"); // the editor's own type decides
        e.cmdView_Click();
        QVERIFY(texts(m_shown[2]).contains(QStringLiteral("Servings:\t4")));
    }

    void savingAsRichTextPdfAndText()
    {
        RecipePrinter p;
        ComposeRecipe(p, pie(), ReportSettings());
        p.AddLine(QStringLiteral("Buy: crème fraîche {fresh} \\ 100%"), QStringLiteral("Courier New"), 9, false, false,
                  false, 255);
        p.StartPage();
        p.AddLine(QStringLiteral("Page two"), QStringLiteral("Courier New"), 9, true, true);
        p.SetFileName(m_home->path("report.RTF"));
        QVERIFY(p.Save());
        const QString rtf = ReadFile(m_home->path("report.RTF"));
        if (qEnvironmentVariableIsSet("MIREPAN_WRITE_REFERENCE"))
            QFile::copy(m_home->path("report.RTF"), QStringLiteral(MIREPAN_SOURCE_DIR "/tests/data/report.rtf"));
        QCOMPARE(rtf, ReadFile(QFINDTESTDATA("data/report.rtf")));

        // An earlier file is replaced whole, through a copy that does not stay behind.
        WriteFile(m_home->path("report.pdf"), QByteArray(100000, 'x'));
        p.SetFileName(m_home->path("report.pdf"));
        QVERIFY(p.Save());
        QVERIFY(ReadFile(m_home->path("report.pdf")).startsWith(QStringLiteral("%PDF")));
        QVERIFY(!ReadBytes(m_home->path("report.pdf")).contains("xxxx"));
        QCOMPARE(QDir(m_home->dir()).entryList({QStringLiteral("*.new")}), QStringList());
        p.SetFileName(m_home->path("report.txt"));
        QVERIFY(p.Save());
        QVERIFY(ReadFile(m_home->path("report.txt")).contains(QStringLiteral("\fPage two\n")));

        QString error;
        p.SetFileName(m_home->path("missing/dir/report.rtf"));
        QVERIFY(!p.Save(&error));
        QVERIFY(error.contains(QStringLiteral("does not exist")));
    }

    void printedPagesCarryOnlyTheReport()
    {
        const QString reader = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
        if (reader.isEmpty())
            QSKIP("pdftotext (poppler-utils) is not installed");
        RecipeData recipe = pie();
        recipe.directions[0].direction =
            QStringLiteral("Rub the butter into the flour until it looks like fine crumbs, "
                           "then add cold water a spoonful at a time and bring it together.");
        RecipePrinter p;
        ComposeRecipe(p, recipe, ReportSettings());
        p.SetFileName(m_home->path("pie.pdf"));
        QVERIFY(p.Save());
        QProcess pdftotext;
        pdftotext.start(reader, {QStringLiteral("-layout"), m_home->path("pie.pdf"), QStringLiteral("-")});
        QVERIFY(pdftotext.waitForFinished(30000));
        const QStringList lines = QString::fromUtf8(pdftotext.readAllStandardOutput()).split(u'\n');
        // No page number at the foot of the page.
        for (const QString &line : lines)
            QVERIFY2(line.trimmed() != u"1", "a page number the report did not ask for");
        // The wrapped direction goes on under its own text, not under the step number.
        const qsizetype at = lines.indexOf(QRegularExpression(QStringLiteral("^\\s*01:\\s+Rub the butter.*")));
        QVERIFY(at >= 0 && at + 1 < lines.size());
        const qsizetype textColumn = lines[at].indexOf(QStringLiteral("Rub"));
        const qsizetype nextColumn = lines[at + 1].indexOf(QRegularExpression(QStringLiteral("\\S")));
        QVERIFY2(qAbs(nextColumn - textColumn) <= 1, qPrintable(lines[at] + u'\n' + lines[at + 1]));
    }

    void richTextOpensInLibreOffice()
    {
        const QString office = QStandardPaths::findExecutable(QStringLiteral("libreoffice"));
        if (office.isEmpty())
            QSKIP("LibreOffice is not installed");
        RecipePrinter p;
        ComposeRecipe(p, pie(), ReportSettings());
        p.SetFileName(m_home->path("pie.rtf"));
        QVERIFY(p.Save());
        QProcess convert;
        convert.setWorkingDirectory(m_home->dir());
        convert.start(office, {QStringLiteral("--headless"), QStringLiteral("--convert-to"), QStringLiteral("txt:Text"),
                               QStringLiteral("--outdir"), m_home->dir(), m_home->path("pie.rtf")});
        QVERIFY(convert.waitForFinished(120000));
        const QString text = ReadFile(m_home->path("pie.txt"));
        QVERIFY2(text.contains(QStringLiteral("Apple Pie")), qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("Category:\tDesserts")));
        QVERIFY(text.contains(QStringLiteral("2 cup Flour")));
    }

    void previewWindowShowsPages()
    {
        RecipePrinter p;
        ComposeRecipe(p, pie(), ReportSettings());
        p.StartPage();
        ComposeRecipe(p, pie(), ReportSettings(), 2);
        p.SetFileName(m_home->path("shown.rtf"));
        frmPreview preview(p);
        preview.show();
        // Inside the screen's available area, whatever its size.
        QVERIFY(preview.screen()->availableGeometry().contains(preview.geometry()));
        // Save asks where to, starting from the document's own name.
        m_boxes->answerFile(m_home->path("chosen.pdf"));
        preview.cmdSave_Click();
        QCOMPARE(m_boxes->fileDialogs, (QStringList {QStringLiteral("Save Recipes"), m_home->path("shown.rtf")}));
        QCOMPARE(m_boxes->prompts(), QStringList {QStringLiteral("Saved as: ") + m_home->path("chosen.pdf")});
        QVERIFY(ReadBytes(m_home->path("chosen.pdf")).startsWith("%PDF"));
        m_boxes->answerFile(QString()); // cancelled: nothing written
        preview.cmdSave_Click();
        QCOMPARE(m_boxes->boxes.size(), 1);
        SaveScreenshot(&preview, QStringLiteral("frmPreview"));

        const qreal fitted = preview.pvwPages->zoomFactor();
        QTest::mouseClick(preview.cmdZoomIn, Qt::LeftButton);
        QVERIFY(preview.pvwPages->zoomFactor() > fitted);
        QTest::mouseClick(preview.cmdZoomOut, Qt::LeftButton);
        QTest::mouseClick(preview.cmdZoomOut, Qt::LeftButton);
        QVERIFY(preview.pvwPages->zoomFactor() < fitted);
        QTest::mouseClick(preview.cmdFitWidth, Qt::LeftButton);
        QCOMPARE(preview.pvwPages->zoomMode(), QPrintPreviewWidget::FitToWidth);
        // Print asks for the printer at once (no second preview); declined, nothing printed.
        QString asked;
        m_boxes->onModal([&](QDialog *d) {
            asked = QString::fromLatin1(d->metaObject()->className());
            d->reject();
        });
        QTest::mouseClick(preview.cmdPrint, Qt::LeftButton);
        QCOMPARE(asked, QStringLiteral("QPrintDialog"));
    }

    void padText()
    {
        QCOMPARE(PadText(QStringLiteral("abc"), 7, QStringLiteral("Center")), QStringLiteral("  abc  "));
        QCOMPARE(PadText(QStringLiteral("ab"), 5, QStringLiteral("Center")), QStringLiteral(" ab  "));
        QCOMPARE(PadText(QStringLiteral("abc"), 5, QStringLiteral("Right")), QStringLiteral("  abc"));
        QCOMPARE(PadText(QStringLiteral("abc"), 5, QStringLiteral("Left")), QStringLiteral("abc  "));
        QCOMPARE(PadText(QStringLiteral("abcdef"), 4, QStringLiteral("Right")), QStringLiteral("abcd"));
    }
};

QTEST_MAIN(TestReport)
#include "test_report.moc"
