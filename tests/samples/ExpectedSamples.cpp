#include "ExpectedSamples.h"

namespace tresktest {

namespace {

constexpr int limit = 300 * 1000;

} // namespace

const QVector<ExpectedSample>& expectedSamples()
{
    static const QVector<ExpectedSample> samples{
        {QStringLiteral("report.pdf"),
         QStringLiteral("LibreOffice"),
         limit,
         true,
         {QStringLiteral("Write the report"), QStringLiteral("Plot the spectrum"),
          QStringLiteral("Compute the spectrum"), QStringLiteral("Record the vibration")},
         {4, 4, 4, 4}},
        {QStringLiteral("nested.pdf"),
         QStringLiteral("pdfTeX"),
         limit,
         true,
         {QStringLiteral("Compare with the drawing"), QStringLiteral("Write the evaluation note")},
         {2, 3}},
        {QStringLiteral("names.pdf"),
         QStringLiteral("cairo"),
         limit,
         true,
         {QStringLiteral("Names that are no good as paths"),
          QStringLiteral("Two lines\\nof a title"),
          QStringLiteral("Pr\u00FCfung [Teil 1\\] mit \\\\ und \u03A9")},
         {18, 9, 9}},
        {QStringLiteral("minimal.pdf"),
         QStringLiteral("cairo"),
         4096,
         true,
         {QStringLiteral("Draw the label")},
         {2}},
        {QStringLiteral("damaged.pdf"),
         QStringLiteral("GPL Ghostscript"),
         limit,
         false,
         {QStringLiteral("Label the drawing"), QStringLiteral("Draw the housing"),
          QStringLiteral("Plan the trial")},
         {2, 2, 2}},
    };
    return samples;
}

QStringList awkwardNames()
{
    return {
        QStringLiteral("Messgr\u00F6\u00DFe \u00DCberpr\u00FCfung.txt"),
        QStringLiteral("\u03BC\u03B5\u03C4\u03C1\u03AE\u03C3\u03B5\u03B9\u03C2.txt"),
        QStringLiteral("\u8EF8\u53D7\u8A66\u9A13.txt"),
        QStringLiteral("\u0438\u0441\u043F\u044B\u0442\u0430\u043D\u0438\u0435.txt"),
        QStringLiteral("bearing \U0001F529.txt"),
        QStringLiteral("M\u00FCller.txt"),
        QStringLiteral("Mu\u0308ller.txt"),
        QString(100, QChar(0x8EF8)) + QStringLiteral(".txt"),
        QStringLiteral("result [final].txt"),
        QStringLiteral("back\\slash.txt"),
        QStringLiteral("two\nlines.txt"),
        QStringLiteral("tab\tand bell\a.txt"),
        QStringLiteral("carriage\rreturn.txt"),
        QStringLiteral("\x1B[31mred\x1B[0m.txt"),
        QStringLiteral("plot\u202Egnp.exe"),
        QStringLiteral("R&D <b>draft</b>.txt"),
        QStringLiteral("../outside.txt"),
        QStringLiteral("../../../../etc/outside.txt"),
        QStringLiteral("/etc/absolute.txt"),
        QStringLiteral("C:\\rig4\\absolute.txt"),
        QStringLiteral("folder/"),
        QString(),
        QStringLiteral("."),
        QStringLiteral(".."),
        QStringLiteral("twin.txt"),
        QStringLiteral("twin.txt"),
        QStringLiteral("Readme.txt"),
        QStringLiteral("README.TXT"),
        QStringLiteral("CON"),
        QStringLiteral("nul.txt"),
        QStringLiteral("-rf"),
        QStringLiteral("ends with a dot."),
        QStringLiteral("ends with a blank "),
    };
}

} // namespace tresktest
