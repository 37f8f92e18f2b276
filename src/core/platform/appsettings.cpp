#include "appsettings.h"

#include "modini.h"
#include "platform.h"
#include "programdir.h"

namespace {

const QString kPrint = QStringLiteral("Print_Settings");
const QString kFiles = QStringLiteral("Files");
const QString kMisc = QStringLiteral("Misc");

QString switchText(bool on)
{
    return on ? QStringLiteral("True") : QStringLiteral("False");
}

} // namespace

AppSettings ReadAppSettings(const QString &iniPath, const FileDefaults &defaults)
{
    const auto readSwitch = [&](const QString &section, const QString &key) {
        const QString value = GetIniValue(iniPath, section, key).trimmed();
        if (value.compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0)
            return true;
        bool numeric = false;
        const double number = value.toDouble(&numeric);
        return numeric && number != 0.0;
    };
    const auto fileSetting = [&](const QString &key, const QString &fallback) {
        const QString value = GetIniValue(iniPath, kFiles, key);
        return value.isEmpty() ? fallback : value;
    };
    AppSettings s;
    // A missing or unreadable size keeps the printed recipes readable.
    const double fontSize = Val(GetIniValue(iniPath, kPrint, QStringLiteral("BaseFontSize")));
    s.BaseFontSize = fontSize >= 1 && fontSize < 73 ? int(fontSize) : 9;
    s.NewPage = readSwitch(kPrint, QStringLiteral("NewPage"));
    s.BlankLines = readSwitch(kPrint, QStringLiteral("BlankLines"));
    s.PageNumbers = readSwitch(kPrint, QStringLiteral("PageNumbers"));
    s.Transfer = ProgramFile(GetIniValue(iniPath, kFiles, QStringLiteral("Transfer")));
    s.Preview = fileSetting(QStringLiteral("Preview"), defaults.preview);
    s.Database = fileSetting(QStringLiteral("Database"), defaults.database);
    s.RecipeView = readSwitch(kMisc, QStringLiteral("RecipeView"));
    s.Seek = readSwitch(kMisc, QStringLiteral("Seek"));
    s.SeekAmount = readSwitch(kMisc, QStringLiteral("SeekAmount"));
    s.StandardAdd = readSwitch(kMisc, QStringLiteral("StandardAdd"));
    s.OnlyNewRecipes = readSwitch(kMisc, QStringLiteral("OnlyNewRecipes"));
    s.ShowMeasures = GetIniValue(iniPath, kMisc, QStringLiteral("ShowMeasures"));
    s.CombineMeasures = readSwitch(kMisc, QStringLiteral("CombineMeasures"));
    return s;
}

void WriteAppSettings(const QString &iniPath, const AppSettings &s)
{
    IniFile file(iniPath);
    file.write(kPrint, QStringLiteral("BaseFontSize=") + QString::number(s.BaseFontSize));
    file.write(kPrint, QStringLiteral("NewPage=") + switchText(s.NewPage));
    file.write(kPrint, QStringLiteral("BlankLines=") + switchText(s.BlankLines));
    file.write(kPrint, QStringLiteral("PageNumbers=") + switchText(s.PageNumbers));
    file.write(kFiles, QStringLiteral("Transfer=") + s.Transfer);
    file.write(kFiles, QStringLiteral("Preview=") + s.Preview);
    file.write(kFiles, QStringLiteral("Database=") + s.Database);
    file.write(kMisc, QStringLiteral("RecipeView=") + switchText(s.RecipeView));
    file.write(kMisc, QStringLiteral("Seek=") + switchText(s.Seek));
    file.write(kMisc, QStringLiteral("SeekAmount=") + switchText(s.SeekAmount));
    file.write(kMisc, QStringLiteral("StandardAdd=") + switchText(s.StandardAdd));
    file.write(kMisc, QStringLiteral("OnlyNewRecipes=") + switchText(s.OnlyNewRecipes));
    // The display choices of amounts are written only once changed: a file that never had them
    // keeps the settings' twelve keys alone.
    if (file.value(kMisc, QStringLiteral("ShowMeasures")) != s.ShowMeasures)
        file.write(kMisc, QStringLiteral("ShowMeasures=") + s.ShowMeasures);
    const QString combine = file.value(kMisc, QStringLiteral("CombineMeasures"));
    if ((combine.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) != s.CombineMeasures)
        file.write(kMisc, QStringLiteral("CombineMeasures=") + switchText(s.CombineMeasures));
    file.save();
}
