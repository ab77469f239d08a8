#include <tresk/StopWatch.h>

#include <QLocale>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>

#include <ctime>

using tresk::StopWatch;

namespace {

class TextListener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& text) { texts.append(text); }
};

const QString anyTime = QStringLiteral("[0-9]+\\.[0-9]{2}s\n");

bool isReport(const QString& text, const QString& name)
{
    const QString pattern = QRegularExpression::escape(name) + QStringLiteral(": ") + anyTime;
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

double secondsIn(const QString& report)
{
    const QString text = report.mid(report.lastIndexOf(QLatin1Char(' ')) + 1);
    return text.left(text.indexOf(QLatin1Char('s'))).toDouble();
}

double processorSeconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// Keeps the processor busy until it has counted @p seconds more.
void work(double seconds)
{
    const double end = processorSeconds() + seconds;
    while (processorSeconds() < end) { }
}

} // namespace

class TestStopWatch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void stopReports();
    void reportHasTypeZero();
    void secondStopIsSilent();
    void stopWithoutStartIsSilent();
    void stopWithoutReportEndsTiming();
    void startReportsRunningJob();
    void startDiscardsRunningJob();
    void destructorReports();
    void destructorAfterStopIsSilent();
    void constructorConnectsListener();
    void nameIsTakenAsItIs_data();
    void nameIsTakenAsItIs();
    void countsProcessorTime();
    void startBeginsAtZeroAgain();
    void decimalsAreThoseOfNoLocale();
};

void TestStopWatch::metaObject()
{
    QCOMPARE(StopWatch::staticMetaObject.className(), "tresk::StopWatch");
    QCOMPARE(StopWatch::staticMetaObject.superClass()->className(), "tresk::LogSource");
}

void TestStopWatch::stopReports()
{
    TextListener listener;
    StopWatch watch(&listener);
    watch.start(QStringLiteral("validation finished"), false);
    QCOMPARE(listener.texts, QStringList());
    watch.stop(true);
    QCOMPARE(listener.texts.size(), 1);
    QVERIFY(isReport(listener.texts.at(0), QStringLiteral("validation finished")));
}

void TestStopWatch::reportHasTypeZero()
{
    StopWatch watch;
    QSignalSpy spy(&watch, SIGNAL(log(QString, int)));
    watch.start(QStringLiteral("job"), false);
    watch.stop(true);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(1).toInt(), 0);
}

void TestStopWatch::secondStopIsSilent()
{
    TextListener listener;
    StopWatch watch(&listener);
    watch.start(QStringLiteral("job"), false);
    watch.stop(true);
    watch.stop(true);
    QCOMPARE(listener.texts.size(), 1);
}

void TestStopWatch::stopWithoutStartIsSilent()
{
    TextListener listener;
    StopWatch watch(&listener);
    watch.stop(true);
    watch.stop(false);
    QCOMPARE(listener.texts, QStringList());
}

void TestStopWatch::stopWithoutReportEndsTiming()
{
    TextListener listener;
    StopWatch watch(&listener);
    watch.start(QStringLiteral("job"), false);
    watch.stop(false);
    watch.stop(true);
    QCOMPARE(listener.texts, QStringList());
}

void TestStopWatch::startReportsRunningJob()
{
    TextListener listener;
    StopWatch watch(&listener);
    watch.start(QStringLiteral("first"), false);
    watch.start(QStringLiteral("second"), false);
    QCOMPARE(listener.texts.size(), 1);
    QVERIFY(isReport(listener.texts.at(0), QStringLiteral("first")));
    watch.stop(true);
    QCOMPARE(listener.texts.size(), 2);
    QVERIFY(isReport(listener.texts.at(1), QStringLiteral("second")));
}

void TestStopWatch::startDiscardsRunningJob()
{
    TextListener listener;
    StopWatch watch(&listener);
    watch.start(QStringLiteral("first"), false);
    watch.start(QStringLiteral("second"), true);
    QCOMPARE(listener.texts, QStringList());
    watch.stop(true);
    QCOMPARE(listener.texts.size(), 1);
    QVERIFY(isReport(listener.texts.at(0), QStringLiteral("second")));
}

void TestStopWatch::destructorReports()
{
    TextListener listener;
    {
        StopWatch watch;
        watch.publishToLogSlot(&listener);
        watch.start(QStringLiteral("job"), false);
    }
    QCOMPARE(listener.texts.size(), 1);
    QVERIFY(isReport(listener.texts.at(0), QStringLiteral("job")));
}

void TestStopWatch::destructorAfterStopIsSilent()
{
    TextListener listener;
    {
        StopWatch watch(&listener);
        watch.start(QStringLiteral("job"), false);
        watch.stop(false);
    }
    QCOMPARE(listener.texts, QStringList());
}

void TestStopWatch::constructorConnectsListener()
{
    TextListener listener;
    StopWatch watch(&listener);
    QCOMPARE(watch.parent(), nullptr);
    watch.start(QString(), true);
    watch.stop(true);
    QCOMPARE(listener.texts.size(), 1);
}

void TestStopWatch::nameIsTakenAsItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("placeholders") << QStringLiteral("%1 %2 %L1");
    QTest::newRow("line break") << QStringLiteral("a\nb");
    QTest::newRow("not ASCII") << QStringLiteral("Pr\u00fcfung \U0001f600");
}

void TestStopWatch::nameIsTakenAsItIs()
{
    QFETCH(QString, name);
    TextListener listener;
    StopWatch watch(&listener);
    watch.start(name, false);
    watch.stop(true);
    QCOMPARE(listener.texts.size(), 1);
    QVERIFY2(isReport(listener.texts.at(0), name), qPrintable(listener.texts.at(0)));
}

void TestStopWatch::countsProcessorTime()
{
    TextListener listener;
    StopWatch watch(&listener);
    const double outerStart = processorSeconds();
    watch.start(QStringLiteral("job"), false);
    const double innerStart = processorSeconds();
    work(0.03);
    const double innerEnd = processorSeconds();
    watch.stop(true);
    const double outerEnd = processorSeconds();

    // Two decimals of whole milliseconds may be off by this much.
    const double rounding = 0.0075;
    const double seconds = secondsIn(listener.texts.at(0));
    QVERIFY(seconds >= innerEnd - innerStart - rounding);
    QVERIFY(seconds <= outerEnd - outerStart + rounding);
}

void TestStopWatch::startBeginsAtZeroAgain()
{
    TextListener listener;
    StopWatch watch(&listener);
    watch.start(QStringLiteral("long"), false);
    work(0.05);
    const double outerStart = processorSeconds();
    watch.start(QStringLiteral("short"), true);
    watch.stop(true);
    const double outerEnd = processorSeconds();
    QVERIFY(secondsIn(listener.texts.at(0)) <= outerEnd - outerStart + 0.0075);
}

void TestStopWatch::decimalsAreThoseOfNoLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    TextListener listener;
    StopWatch watch(&listener);
    watch.start(QStringLiteral("job"), false);
    watch.stop(true);
    QLocale::setDefault(before);
    QVERIFY2(isReport(listener.texts.at(0), QStringLiteral("job")),
             qPrintable(listener.texts.at(0)));
}

QTEST_GUILESS_MAIN(TestStopWatch)

#include "tst_stopwatch.moc"
