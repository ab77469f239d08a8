#include "ParserProperties.h"
#include "TokenText.h"
#include "Watched.h"

#include <QRandomGenerator>

#include <algorithm>
#include <functional>

using tresktest::comesOutWhole;
using tresktest::isWatched;
using tresktest::parsed;
using tresktest::text;
using tresktest::VariableTable;

/// The parser beside a model of it, and what must hold of any text: on all short texts of the
/// characters that mean something, and on long random ones.
class TestArgfileParserModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shortTextsAreReadAsByTheModel_data();
    void shortTextsAreReadAsByTheModel();
    void randomTextsAreReadAsByTheModel_data();
    void randomTextsAreReadAsByTheModel();
    void randomWordsAreReadAsByTheModel_data();
    void randomWordsAreReadAsByTheModel();
    void tokensCoverTheText_data();
    void tokensCoverTheText();
    void argumentsAreRunsOfTokens_data();
    void argumentsAreRunsOfTokens();
    void tablesOnlyChangeTextsWithDollarSigns_data();
    void tablesOnlyChangeTextsWithDollarSigns();
    void whatIsQuotedComesOutWhole_data();
    void whatIsQuotedComesOutWhole();
};

namespace {

const int longest = isWatched() ? 5 : 6; // of the texts of which all are tried

using Property = std::function<bool(const QString& content)>;

/// Says for which text of at most @p length characters of @p alphabet @p holds is wrong; null if
/// for none.
QString counterexample(const QString& alphabet, int length, const Property& holds,
                       const QString& content = QLatin1String(""))
{
    if (!holds(content))
        return text("wrong for [%1]").arg(content);
    if (content.size() == length)
        return {};
    for (const QChar c : alphabet) {
        const QString found = counterexample(alphabet, length, holds, content + c);
        if (!found.isNull())
            return found;
    }
    return {};
}

const VariableTable& filledTable()
{
    static const VariableTable table{
        {text("X"), text("1 $2")},       {text("a"), text("'\"\\#$\n")},
        {text("XX"), text("")},          {text("aX"), text("\\")},
        {QString(), text("none")},       {text("{X"), text("brace")},
        {text("\\"), text("backslash")}, {text("'"), text("quote")}};
    return table;
}

QList<const VariableTable*> tables()
{
    static const VariableTable empty;
    return {nullptr, &empty, &filledTable()};
}

bool isReadAsByTheModel(const QString& content)
{
    const auto hasSameArguments = [&content](const VariableTable* table) {
        return tresktest::argumentsAreThoseOfTheModel(content, table);
    };
    const QList<const VariableTable*> all = tables();
    return tresktest::tokensAreThoseOfTheModel(content)
        && std::all_of(all.begin(), all.end(), hasSameArguments);
}

QString anyOf(const QString& characters, QRandomGenerator& random)
{
    return characters.mid(random.bounded(int(characters.size())), 1);
}

/// Random characters, many of them of variables, without white space and with all quotes escaped.
QString randomWord(QRandomGenerator& random, int length)
{
    QString word;
    while (word.size() < length) {
        switch (random.bounded(8)) {
        case 0:
            word += QString(random.bounded(6), QLatin1Char('\\')) + text("$X");
            break;
        case 1:
            word += text("${") + anyOf(text("Xa-"), random) + text("}");
            break;
        case 2:
            word += QLatin1Char('\\') + anyOf(text("\\'\"$# \n"), random);
            break;
        case 3:
            word += QLatin1Char('$');
            break;
        case 4:
            word += text("\xf0\x9f\x98\x80");
            break;
        default:
            word += anyOf(text("XaXa01{}-_"), random);
        }
    }
    return word;
}

QString randomToken(QRandomGenerator& random)
{
    switch (random.bounded(6)) {
    case 0:
        return QString(anyOf(text(" \t\n\r"), random)).repeated(1 + random.bounded(3));
    case 1:
        return text("#") + randomWord(random, random.bounded(4)).remove(QLatin1Char('\n'))
            + anyOf(text("\n\r"), random);
    case 2:
        return text("'%1'").arg(randomWord(random, random.bounded(12)).remove(QLatin1Char('\'')));
    case 3:
        return text("\"%1\"").arg(randomWord(random, random.bounded(20)));
    default:
        return randomWord(random, random.bounded(20));
    }
}

void addAlphabets()
{
    QTest::addColumn<QString>("alphabet");
    QTest::newRow("words and strings") << text(" \n'\"\\#$X");
    QTest::newRow("variables") << text("\\${}Xa'\"");
    QTest::newRow("line breaks") << text("\r\n\t #\\");
}

void addSeeds()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 4; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

} // namespace

void TestArgfileParserModel::shortTextsAreReadAsByTheModel_data()
{
    addAlphabets();
}

void TestArgfileParserModel::shortTextsAreReadAsByTheModel()
{
    QFETCH(const QString, alphabet);
    const QString found = counterexample(alphabet, 5, isReadAsByTheModel);
    QVERIFY2(found.isNull(), qPrintable(found));
}

void TestArgfileParserModel::randomTextsAreReadAsByTheModel_data()
{
    addSeeds();
}

void TestArgfileParserModel::randomTextsAreReadAsByTheModel()
{
    QFETCH(const int, seed);
    QRandomGenerator random(static_cast<quint32>(seed));
    int closed = 0;
    const int count = 500;
    for (int i = 0; i < count; ++i) {
        QString content;
        for (int tokens = random.bounded(12); tokens >= 0; --tokens)
            content += randomToken(random);
        if (random.bounded(8) == 0)
            content.remove(random.bounded(int(content.size()) + 1), 1);
        QVERIFY2(isReadAsByTheModel(content), qPrintable(content));
        closed += int(!parsed(content, nullptr).isEmpty());
    }
    QVERIFY2(closed > count / 2 && closed < count, qPrintable(QString::number(closed)));
}

void TestArgfileParserModel::randomWordsAreReadAsByTheModel_data()
{
    addSeeds();
}

void TestArgfileParserModel::randomWordsAreReadAsByTheModel()
{
    QFETCH(const int, seed);
    QRandomGenerator random(static_cast<quint32>(seed));
    for (int i = 0; i < 500; ++i) {
        const QString word = randomWord(random, random.bounded(60));
        QVERIFY2(isReadAsByTheModel(word), qPrintable(word));
        QVERIFY2(isReadAsByTheModel(text("\"%1\"").arg(word)), qPrintable(word));
    }
}

void TestArgfileParserModel::tokensCoverTheText_data()
{
    addAlphabets();
}

void TestArgfileParserModel::tokensCoverTheText()
{
    QFETCH(const QString, alphabet);
    const QString found = counterexample(alphabet, longest, tresktest::tokensCover);
    QVERIFY2(found.isNull(), qPrintable(found));
}

void TestArgfileParserModel::argumentsAreRunsOfTokens_data()
{
    addAlphabets();
}

void TestArgfileParserModel::argumentsAreRunsOfTokens()
{
    QFETCH(const QString, alphabet);
    const auto agree = [](const QString& content) {
        return tresktest::argumentsAreRunsOfTokens(content, filledTable());
    };
    const QString found = counterexample(alphabet, longest, agree);
    QVERIFY2(found.isNull(), qPrintable(found));
}

void TestArgfileParserModel::tablesOnlyChangeTextsWithDollarSigns_data()
{
    addAlphabets();
}

void TestArgfileParserModel::tablesOnlyChangeTextsWithDollarSigns()
{
    QFETCH(QString, alphabet);
    alphabet.remove(QLatin1Char('$'));
    const auto isUnchanged = [](const QString& content) {
        return parsed(content, &filledTable()) == parsed(content, nullptr);
    };
    const QString found = counterexample(alphabet, 5, isUnchanged);
    QVERIFY2(found.isNull(), qPrintable(found));
}

void TestArgfileParserModel::whatIsQuotedComesOutWhole_data()
{
    addAlphabets();
}

void TestArgfileParserModel::whatIsQuotedComesOutWhole()
{
    QFETCH(const QString, alphabet);
    const auto isWhole = [](const QString& content) {
        return comesOutWhole(content, nullptr) && comesOutWhole(content, &filledTable());
    };
    const QString found = counterexample(alphabet, 5, isWhole);
    QVERIFY2(found.isNull(), qPrintable(found));
}

QTEST_GUILESS_MAIN(TestArgfileParserModel)
#include "tst_argfileparser_model.moc"
