#include <tresk/LogSource.h>

#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>

using tresk::LogSource;

namespace {

/// A source that says what it is told to.
class Speaker : public LogSource {
    Q_OBJECT

public:
    using LogSource::LogSource;

    void say(const QString& text) { Q_EMIT log(text); }
    void say(const QString& text, int type) { Q_EMIT log(text, type); }
};

class TextListener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& text) { texts.append(text); }
};

class TypeListener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& text, const int type)
    {
        texts.append(QStringLiteral("%1:%2").arg(type).arg(text));
    }
};

class BothListener : public QObject {
    Q_OBJECT

public:
    QStringList plain;
    QStringList typed;

public Q_SLOTS:
    void log(const QString& text) { plain.append(text); }
    void log(const QString& text, const int type)
    {
        typed.append(QStringLiteral("%1:%2").arg(type).arg(text));
    }
};

/// A slot whose type is optional can be called without it.
class DefaultListener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& text, int type = 0)
    {
        texts.append(QStringLiteral("%1:%2").arg(type).arg(text));
    }
};

} // namespace

class TestLogSource : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void signalCarriesTextAndType();
    void shortFormHasTypeZero();
    void constructorConnectsListener();
    void constructorTakesNoOwnership();
    void constructorWithoutListener();
    void slotReceivesTextAlone();
    void slotWithoutTypeIsPreferred();
    void slotWithOptionalTypeGetsZero();
    void slotWithTypeOnlyIsNotConnected();
    void slotOfNullDoesNothing();
    void slotOfDeletedListener();
    void signalRelaysIntoSignal();
    void signalLosesTypeOnTheWay();
    void signalOverTwoOwners();
    void signalOfNullDoesNothing();
    void signalOfTargetWithoutOne();
};

void TestLogSource::metaObject()
{
    QCOMPARE(LogSource::staticMetaObject.className(), "tresk::LogSource");
    QVERIFY(LogSource::staticMetaObject.indexOfSignal("log(QString,int)") >= 0);
    QVERIFY(LogSource::staticMetaObject.indexOfSignal("log(QString)") >= 0);
    QCOMPARE(LogSource::tr("text"), QStringLiteral("text"));
}

void TestLogSource::signalCarriesTextAndType()
{
    Speaker speaker;
    QSignalSpy spy(&speaker, SIGNAL(log(QString, int)));
    speaker.say(QStringLiteral("a"), 2);
    speaker.say(QStringLiteral("b"), 1);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0), QVariantList({QStringLiteral("a"), 2}));
    QCOMPARE(spy.at(1), QVariantList({QStringLiteral("b"), 1}));
}

void TestLogSource::shortFormHasTypeZero()
{
    Speaker speaker;
    QSignalSpy spy(&speaker, SIGNAL(log(QString, int)));
    speaker.say(QStringLiteral("a"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0), QVariantList({QStringLiteral("a"), 0}));
}

void TestLogSource::constructorConnectsListener()
{
    TextListener listener;
    Speaker speaker(&listener);
    speaker.say(QStringLiteral("a"), 1);
    QCOMPARE(listener.texts, QStringList({QStringLiteral("a")}));
}

void TestLogSource::constructorTakesNoOwnership()
{
    QPointer<Speaker> speaker;
    {
        TextListener listener;
        speaker = new Speaker(&listener);
        QCOMPARE(speaker->parent(), nullptr);
        QVERIFY(listener.children().isEmpty());
    }
    QVERIFY(speaker);
    delete speaker;
}

void TestLogSource::constructorWithoutListener()
{
    Speaker speaker;
    QCOMPARE(speaker.parent(), nullptr);
    speaker.say(QStringLiteral("nobody hears this"));
}

void TestLogSource::slotReceivesTextAlone()
{
    TextListener listener;
    Speaker speaker;
    speaker.publishToLogSlot(&listener);
    speaker.say(QStringLiteral("a"));
    speaker.say(QStringLiteral("b"), 2);
    QCOMPARE(listener.texts, QStringList({QStringLiteral("a"), QStringLiteral("b")}));
}

void TestLogSource::slotWithoutTypeIsPreferred()
{
    BothListener listener;
    Speaker speaker;
    speaker.publishToLogSlot(&listener);
    speaker.say(QStringLiteral("a"), 2);
    QCOMPARE(listener.plain, QStringList({QStringLiteral("a")}));
    QCOMPARE(listener.typed, QStringList());
}

void TestLogSource::slotWithOptionalTypeGetsZero()
{
    DefaultListener listener;
    Speaker speaker;
    speaker.publishToLogSlot(&listener);
    speaker.say(QStringLiteral("a"), 2);
    QCOMPARE(listener.texts, QStringList({QStringLiteral("0:a")}));
}

void TestLogSource::slotWithTypeOnlyIsNotConnected()
{
    TypeListener listener;
    Speaker speaker;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No such slot")));
    speaker.publishToLogSlot(&listener);
    speaker.say(QStringLiteral("a"), 2);
    QCOMPARE(listener.texts, QStringList());
}

void TestLogSource::slotOfNullDoesNothing()
{
    Speaker speaker;
    speaker.publishToLogSlot(nullptr);
    speaker.say(QStringLiteral("a"));
}

void TestLogSource::slotOfDeletedListener()
{
    Speaker speaker;
    TextListener stays;
    speaker.publishToLogSlot(&stays);
    {
        TextListener goes;
        speaker.publishToLogSlot(&goes);
    }
    speaker.say(QStringLiteral("a"));
    QCOMPARE(stays.texts, QStringList({QStringLiteral("a")}));
}

void TestLogSource::signalRelaysIntoSignal()
{
    TextListener listener;
    Speaker owner(&listener);
    Speaker child;
    child.publishToLogSignal(&owner);
    child.say(QStringLiteral("from the child"));
    owner.say(QStringLiteral("from the owner"));
    QCOMPARE(listener.texts,
             QStringList({QStringLiteral("from the child"), QStringLiteral("from the owner")}));
}

void TestLogSource::signalLosesTypeOnTheWay()
{
    Speaker owner;
    Speaker child;
    child.publishToLogSignal(&owner);
    QSignalSpy spy(&owner, SIGNAL(log(QString, int)));
    child.say(QStringLiteral("an error"), 2);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0), QVariantList({QStringLiteral("an error"), 0}));
}

void TestLogSource::signalOverTwoOwners()
{
    TextListener listener;
    Speaker top(&listener);
    Speaker middle;
    Speaker bottom;
    middle.publishToLogSignal(&top);
    bottom.publishToLogSignal(&middle);
    bottom.say(QStringLiteral("a"), 1);
    QCOMPARE(listener.texts, QStringList({QStringLiteral("a")}));
}

void TestLogSource::signalOfNullDoesNothing()
{
    Speaker speaker;
    speaker.publishToLogSignal(nullptr);
    speaker.say(QStringLiteral("a"));
}

void TestLogSource::signalOfTargetWithoutOne()
{
    QObject target;
    Speaker speaker;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No such signal")));
    speaker.publishToLogSignal(&target);
    speaker.say(QStringLiteral("a"));
}

QTEST_GUILESS_MAIN(TestLogSource)

#include "tst_logsource.moc"
