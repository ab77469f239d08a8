#include "IteratorModel.h"
#include "RandomDocument.h"
#include "TestFiles.h"

#include <tresk/FileIterator.h>

#include <QRandomGenerator>
#include <QTest>
#include <QVector>

#include <optional>

using tresk::FileIterator;
using tresktest::IteratorModel;
using tresktest::TestDir;

namespace {

const char searched[] = "%<--!";

/// Reads a file with the real iterator and with the model side by side.
class Pair {
public:
    Pair(const QString& path, const QByteArray& bytes)
        : m_bytes(bytes)
        , m_opened(m_real.open(path))
    {
        m_model.open(bytes);
    }

    /// Does one operation, chosen at random, with both; returns its name and what differs
    /// afterwards, or nothing if all is the same.
    QString step(QRandomGenerator& random)
    {
        switch (random.bounded(16)) {
        case 0:
            return compareRead(QStringLiteral("firstLine"), m_real.firstLine(),
                               m_model.firstLine());
        case 1:
            return compareRead(QStringLiteral("lastLine"), m_real.lastLine(), m_model.lastLine());
        case 2:
        case 3:
        case 4:
        case 5:
            return compareRead(QStringLiteral("nextLine"), m_real.nextLine(), m_model.nextLine());
        case 6:
        case 7:
        case 8:
        case 9:
            return compareRead(QStringLiteral("prevLine"), m_real.prevLine(), m_model.prevLine());
        case 10:
        case 11:
        case 12: {
            const int pos = somePosition(random);
            return compareRead(QStringLiteral("gotoPos(%1)").arg(pos), m_real.gotoPos(pos),
                               m_model.gotoPos(pos));
        }
        case 13: {
            const int pos = somePosition(random);
            const int length = random.bounded(-2, int(m_bytes.size()) + 3);
            const QString name = QStringLiteral("getBytes(%1, %2)").arg(pos).arg(length);
            if (m_real.getBytes(pos, length) != m_model.getBytes(pos, length))
                return name + QStringLiteral(": bytes");
            return differences(name, true, true);
        }
        case 14:
            return searchForwards();
        default:
            return searchBackwards();
        }
    }

    QString start() const { return differences(QStringLiteral("open"), m_opened, true); }

private:
    /// Often one near the border of a slice.
    int somePosition(QRandomGenerator& random) const
    {
        const auto size = static_cast<int>(m_bytes.size());
        if (random.bounded(2) == 0)
            return random.bounded(-2, size + 3);
        return 5120 * random.bounded(size / 5120 + 2) + random.bounded(-2, 3);
    }

    /// Finding a line stands for reading until it is there.
    QString searchForwards()
    {
        const QByteArray before = expectedLine();
        bool found = m_model.nextLine();
        while (found && !m_model.curLineStartsWith(searched))
            found = m_model.nextLine();
        const bool really = m_real.nextLineStartingWith(searched);
        return compareSearch(QStringLiteral("nextLineStartingWith"), really, found, before);
    }

    QString searchBackwards()
    {
        const QByteArray before = expectedLine();
        bool found = m_model.prevLine();
        while (found && !m_model.curLine().contains(searched))
            found = m_model.prevLine();
        const bool really = m_real.prevLineContaining(searched);
        return compareSearch(QStringLiteral("prevLineContaining"), really, found, before);
    }

    QString compareRead(const QString& name, bool really, bool expected)
    {
        if (expected)
            m_keptLine.reset();
        return differences(name, really, expected);
    }

    /// A search that finds nothing keeps the line that was there before, where reading line
    /// after line makes the last one current.
    QString compareSearch(const QString& name, bool really, bool expected, const QByteArray& before)
    {
        m_keptLine = expected ? std::nullopt : std::optional<QByteArray>(before);
        return differences(name, really, expected);
    }

    QByteArray expectedLine() const { return m_keptLine.value_or(m_model.curLine()); }

    QString differences(const QString& name, bool really, bool expected) const
    {
        const QByteArray line = expectedLine();
        QString differing;
        const auto check = [&](bool same, const char* what) {
            if (!same)
                differing += QLatin1Char(' ') + QLatin1String(what);
        };
        const QSharedPointer<QByteArray> realLine = m_real.curLine();
        const QSharedPointer<QString> realText = m_real.curLineAsString();
        check(really == expected, "result");
        check(realLine && *realLine == line, "curLine");
        check(realText.isNull() == line.contains('\0'), "whether there is a text");
        check(!realText || *realText == QString::fromUtf8(line), "curLineAsString");
        check(m_real.curPos() == m_model.curPos(), "curPos");
        check(m_real.reachedStart() == m_model.reachedStart(), "reachedStart");
        check(m_real.reachedEnd() == m_model.reachedEnd(), "reachedEnd");
        check(m_real.empty() == m_model.empty(), "empty");
        return differing.isEmpty() ? QString() : name + QStringLiteral(": differs in") + differing;
    }

    QByteArray m_bytes;
    FileIterator m_real;
    IteratorModel m_model;
    std::optional<QByteArray> m_keptLine;
    bool m_opened;
};

/// A line of @p length bytes without its line feed, some of them beginning as markers do.
QByteArray line(QRandomGenerator& random, int length)
{
    QByteArray bytes(length, static_cast<char>('a' + random.bounded(26)));
    if (length > 8 && random.bounded(4) == 0)
        bytes.replace(random.bounded(2) == 0 ? 0 : random.bounded(length - 5), 5, searched);
    if (length > 0 && random.bounded(8) == 0)
        bytes[random.bounded(length)] = '\0';
    if (length > 0 && random.bounded(8) == 0)
        bytes[random.bounded(length)] = '\xc3';
    return bytes;
}

/// Lines whose lengths are near @p slice or small.
QByteArray linesAround(QRandomGenerator& random, int slice, int count)
{
    QByteArray file;
    for (int i = 0; i < count; ++i) {
        const int choice = random.bounded(10);
        int length = random.bounded(60);
        if (choice < 3)
            length = slice + random.bounded(-2, 3);
        else if (choice == 3)
            length = slice / 2 + random.bounded(-2, 3);
        else if (choice == 4)
            length = 2 * slice + random.bounded(-2, 3);
        else if (choice == 5)
            length = 0;
        file += line(random, length) + '\n';
    }
    if (random.bounded(2) == 0)
        file.chop(1 + random.bounded(qMin(20, static_cast<int>(file.size()))));
    return file;
}

/// Short lines that fill a file until a border of slices comes to lie just around a line feed.
QByteArray linesUpToBorder(QRandomGenerator& random, int slice)
{
    QByteArray file;
    const int border = slice * (1 + random.bounded(2)) + random.bounded(-2, 3);
    while (file.size() < border)
        file += line(random, random.bounded(200)) + '\n';
    file.truncate(border);
    file += '\n' + line(random, random.bounded(300));
    return file;
}

QByteArray fileOf(QRandomGenerator& random, int kind)
{
    switch (kind % 8) {
    case 0:
        return linesUpToBorder(random, 10240);
    case 1:
        return QByteArray("\n").repeated(random.bounded(3));
    case 2:
        return QByteArray("\n").repeated(random.bounded(25000));
    case 3:
        return QByteArray("x").repeated(10240 * random.bounded(4) + random.bounded(3));
    case 4:
        return tresktest::randomBytes(random, random.bounded(30000));
    case 5:
        return linesAround(random, 20, 12);
    default:
        return linesAround(random, 10240, 1 + random.bounded(6));
    }
}

} // namespace

/// The iterator beside its model, with operations chosen at random.
class TestFileIteratorRandom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void smallSlices_data();
    void smallSlices();
    void largeSlices_data();
    void largeSlices();

private:
    void compare(QRandomGenerator& random, const QByteArray& bytes, int sequences, int length);

    TestDir m_dir;
};

void TestFileIteratorRandom::compare(QRandomGenerator& random, const QByteArray& bytes,
                                     int sequences, int length)
{
    const QString path = m_dir.write(QStringLiteral("file"), bytes);
    for (int sequence = 0; sequence < sequences; ++sequence) {
        Pair pair(path, bytes);
        QString differing = pair.start();
        for (int step = 0; step < length && differing.isEmpty(); ++step)
            differing = pair.step(random);
        QVERIFY2(differing.isEmpty(), qPrintable(differing));
    }
}

void TestFileIteratorRandom::smallSlices_data()
{
    QTest::addColumn<int>("kind");
    for (int kind = 0; kind < 120; ++kind)
        QTest::addRow("file %d", kind) << kind;
}

void TestFileIteratorRandom::smallSlices()
{
    QFETCH(int, kind);
    QRandomGenerator random(static_cast<quint32>(1000 + kind));
    compare(random, fileOf(random, kind), 25, 25);
}

void TestFileIteratorRandom::largeSlices_data()
{
    QTest::addColumn<int>("slice");
    QTest::newRow("64 KiB") << 64 * 1024;
    QTest::newRow("256 KiB") << 256 * 1024;
    QTest::newRow("512 KiB") << 512 * 1024;
}

void TestFileIteratorRandom::largeSlices()
{
    QFETCH(int, slice);
    QRandomGenerator random(static_cast<quint32>(slice));
    for (int i = 0; i < 3; ++i)
        compare(random, linesAround(random, slice, 5), 3, 20);
    for (int i = 0; i < 3; ++i)
        compare(random, linesUpToBorder(random, slice), 3, 20);
}

QTEST_GUILESS_MAIN(TestFileIteratorRandom)

#include "tst_fileiterator_random.moc"
