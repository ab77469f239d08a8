#include "ArgfileModel.h"
#include "ArgfileText.h"

#include <QRandomGenerator>

#include <algorithm>
#include <functional>

using tresk::ArgfileParser;
using tresk::ArgfileToken;
using tresktest::ArgfileModelToken;
using tresktest::parsed;
using tresktest::str;
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

using Property = std::function<bool(const QString& text)>;

/// Says for which text of at most @p length characters of @p alphabet @p holds is wrong; null if
/// for none.
QString counterexample(const QString& alphabet, int length, const Property& holds,
                       const QString& text = QLatin1String(""))
{
    if (!holds(text))
        return str("wrong for [%1]").arg(text);
    if (text.size() == length)
        return {};
    for (const QChar c : alphabet) {
        const QString found = counterexample(alphabet, length, holds, text + c);
        if (!found.isNull())
            return found;
    }
    return {};
}

const VariableTable& filledTable()
{
    static const VariableTable table{{str("X"), str("1 $2")},       {str("a"), str("'\"\\#$\n")},
                                     {str("XX"), str("")},          {str("aX"), str("\\")},
                                     {QString(), str("none")},      {str("{X"), str("brace")},
                                     {str("\\"), str("backslash")}, {str("'"), str("quote")}};
    return table;
}

QList<const VariableTable*> tables()
{
    static const VariableTable empty;
    return {nullptr, &empty, &filledTable()};
}

bool isSame(const ArgfileToken& token, const ArgfileModelToken& model)
{
    return token.str() == model.text && token.isSeparator() == model.isSeparator
        && token.position() == model.position && token.originalText() == model.originalText;
}

bool isReadAsByTheModel(const QString& text)
{
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(text);
    const QList<ArgfileModelToken> expected = tresktest::modelHighlighterList(text);
    if (!std::equal(tokens.begin(), tokens.end(), expected.begin(), expected.end(), isSame))
        return false;
    const auto hasSameArguments = [&](const VariableTable* table) {
        return parsed(text, table) == tresktest::modelArguments(text, table);
    };
    const QList<const VariableTable*> all = tables();
    return std::all_of(all.begin(), all.end(), hasSameArguments);
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
            word += QString(random.bounded(6), QLatin1Char('\\')) + str("$X");
            break;
        case 1:
            word += str("${") + anyOf(str("Xa-"), random) + str("}");
            break;
        case 2:
            word += QLatin1Char('\\') + anyOf(str("\\'\"$# \n"), random);
            break;
        case 3:
            word += QLatin1Char('$');
            break;
        case 4:
            word += str("\xf0\x9f\x98\x80");
            break;
        default:
            word += anyOf(str("XaXa01{}-_"), random);
        }
    }
    return word;
}

QString randomToken(QRandomGenerator& random)
{
    switch (random.bounded(6)) {
    case 0:
        return QString(anyOf(str(" \t\n\r"), random)).repeated(1 + random.bounded(3));
    case 1:
        return str("#") + randomWord(random, random.bounded(4)).remove(QLatin1Char('\n'))
            + anyOf(str("\n\r"), random);
    case 2:
        return str("'%1'").arg(randomWord(random, random.bounded(12)).remove(QLatin1Char('\'')));
    case 3:
        return str("\"%1\"").arg(randomWord(random, random.bounded(20)));
    default:
        return randomWord(random, random.bounded(20));
    }
}

void addAlphabets()
{
    QTest::addColumn<QString>("alphabet");
    QTest::newRow("words and strings") << str(" \n'\"\\#$X");
    QTest::newRow("variables") << str("\\${}Xa'\"");
    QTest::newRow("line breaks") << str("\r\n\t #\\");
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
        QString text;
        for (int tokens = random.bounded(12); tokens >= 0; --tokens)
            text += randomToken(random);
        if (random.bounded(8) == 0)
            text.remove(random.bounded(int(text.size()) + 1), 1);
        QVERIFY2(isReadAsByTheModel(text), qPrintable(text));
        closed += int(!parsed(text, nullptr).isEmpty());
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
        QVERIFY2(isReadAsByTheModel(str("\"%1\"").arg(word)), qPrintable(word));
    }
}

void TestArgfileParserModel::tokensCoverTheText_data()
{
    addAlphabets();
}

void TestArgfileParserModel::tokensCoverTheText()
{
    QFETCH(const QString, alphabet);
    const auto isCovered = [](const QString& text) {
        const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(text);
        QString covered;
        for (const ArgfileToken& token : tokens) {
            if (token.position() != covered.size() || token.originalLength() == 0
                || (token.isSeparator() && !token.str().isEmpty()))
                return false;
            covered += token.originalText();
        }
        return tokens.isEmpty() || covered == text;
    };
    const QString found = counterexample(alphabet, 6, isCovered);
    QVERIFY2(found.isNull(), qPrintable(found));
}

void TestArgfileParserModel::argumentsAreRunsOfTokens_data()
{
    addAlphabets();
}

void TestArgfileParserModel::argumentsAreRunsOfTokens()
{
    QFETCH(const QString, alphabet);
    const auto agree = [](const QString& text) {
        const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(text);
        QStringList runs;
        bool isInRun = false;
        for (const ArgfileToken& token : tokens) {
            if (!token.isSeparator() && !isInRun)
                runs += QString();
            isInRun = !token.isSeparator();
            if (isInRun)
                runs.last() += token.str();
        }
        return parsed(text, nullptr) == runs && parsed(text, &filledTable()).size() == runs.size();
    };
    const QString found = counterexample(alphabet, 6, agree);
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
    const auto isUnchanged = [](const QString& text) {
        return parsed(text, &filledTable()) == parsed(text, nullptr);
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
    const auto isWhole = [](const QString& text) {
        QString escaped;
        for (const QChar c : text)
            escaped += QLatin1Char('\\') + QString(c);
        QString doubled = text;
        doubled.replace(QLatin1Char('$'), str("$$"));
        const QStringList expected(doubled);
        const QString inDoubleQuotes = QLatin1Char('"') + escaped + QLatin1Char('"');
        const QString inSingleQuotes = QLatin1Char('\'') + text + QLatin1Char('\'');
        return parsed(inDoubleQuotes, nullptr) == expected
            && parsed(inDoubleQuotes, &filledTable()) == expected
            && (text.isEmpty() || parsed(escaped, &filledTable()) == expected)
            && (text.contains(QLatin1Char('\''))
                || parsed(inSingleQuotes, &filledTable()) == expected);
    };
    const QString found = counterexample(alphabet, 5, isWhole);
    QVERIFY2(found.isNull(), qPrintable(found));
}

QTEST_GUILESS_MAIN(TestArgfileParserModel)
#include "tst_argfileparser_model.moc"
