#include "RandomSummary.h"

#include <QRandomGenerator>
#include <QStringList>

namespace tresktest {

namespace {

const QStringList& stepNames()
{
    static const QStringList names =
        QString::fromLatin1(
            "TreskRootFile Timestamp Title Description Comment Command Tool ToolPath Host User "
            "Creator PDFTitle PDFAuthor PDFSubject PDFKeywords PDFProducer PDFCreator title Foo "
            "InFile InFile OutFile OutFile OutFile UserAttributes UserAttributes Workflowstep")
            .split(QLatin1Char(' '));
    return names;
}

const QStringList& fileNames()
{
    static const QStringList names =
        QString::fromLatin1(
            "Filename Filepath Filetype Description Comment LastModified GenerateMD5 Embedded "
            "UncompressedSize UncompressedMD5 CompressedMethod CompressedSize CompressedMD5 "
            "Preview "
            "PreviewWS Thumbnail ThumbnailOnly FilePurpose InFile UserAttributes UserAttributes")
            .split(QLatin1Char(' '));
    return names;
}

const QStringList& parts()
{
    static const QStringList list = {
        QStringLiteral("<Title>"),
        QStringLiteral("</Title>"),
        QStringLiteral("<Title/>"),
        QStringLiteral("<Title a='b'>"),
        QStringLiteral("<InFile>"),
        QStringLiteral("</InFile>"),
        QStringLiteral("<OutFile/>"),
        QStringLiteral("<Filename>"),
        QStringLiteral("</Filename>"),
        QStringLiteral("<Key>"),
        QStringLiteral("</Key>"),
        QStringLiteral("<Attribute>"),
        QStringLiteral("</Attribute>"),
        QStringLiteral("<UserAttributes>"),
        QStringLiteral("<a>"),
        QStringLiteral("<a>"),
        QStringLiteral("</a>"),
        QStringLiteral("</a>"),
        QStringLiteral("<a/>"),
        QStringLiteral("<a/ >"),
        QStringLiteral("<>"),
        QStringLiteral("</>"),
        QStringLiteral("<"),
        QStringLiteral(">"),
        QStringLiteral("/"),
        QStringLiteral("</"),
        QStringLiteral("/>"),
        QStringLiteral("<?"),
        QStringLiteral("?>"),
        QStringLiteral("<!--"),
        QStringLiteral("-->"),
        QStringLiteral("<!"),
        QStringLiteral("-"),
        QStringLiteral("a"),
        QStringLiteral(" "),
        QStringLiteral("\n"),
        QStringLiteral("%1"),
        QStringLiteral("\""),
        QStringLiteral("1"),
        QStringLiteral("&amp;"),
        QStringLiteral("\u00e4"),
        QString(1, QChar(0)),
    };
    return list;
}

const QStringList& values()
{
    static const QStringList list = {
        QString(),
        QString(),
        QStringLiteral("0"),
        QStringLiteral("1"),
        QStringLiteral("-17"),
        QStringLiteral(" +5 "),
        QStringLiteral("12k"),
        QStringLiteral("4294967296"),
        QStringLiteral(" a > b "),
        QStringLiteral("&lt;\u20ac\\\""),
        QStringLiteral("<b>x</b>"),
        QStringLiteral("<Title>x</Title>"),
        QStringLiteral("%1\n\t"),
    };
    return list;
}

const QStringList& between()
{
    static const QStringList list = {
        QString(),
        QStringLiteral("\n  "),
        QStringLiteral("text "),
        QStringLiteral("<!-- > -->"),
        QStringLiteral("<?p <a> ?>"),
        QStringLiteral("<!-->"),
        QStringLiteral("<a/>"),
        QStringLiteral("<>y</>"),
    };
    return list;
}

/// Puts a document together from the outside to the inside.
class Maker {
public:
    explicit Maker(QRandomGenerator& random)
        : m_random(random)
    {
    }

    QString document()
    {
        QString text = oneIn(3) ? from(between()) : QStringLiteral("<?xml version='1.0'?>\n");
        for (int i = oneIn(8) ? 2 : 1; i > 0; --i) {
            QString content;
            for (int j = number(0, 3); j > 0; --j)
                content += gap()
                    + (oneIn(4) ? element(QStringLiteral("MD5Signature"), value())
                                : element(QStringLiteral("Workflowstep"), step()));
            text += element(QStringLiteral("trxchange"), content) + gap();
        }
        return text;
    }

    QString soup(int most)
    {
        QString text;
        for (int i = number(0, most); i > 0; --i)
            text += from(parts());
        return text;
    }

    int number(int from, int to) { return m_random.bounded(from, to + 1); }
    bool oneIn(int count) { return m_random.bounded(count) == 0; }

private:
    QString from(const QStringList& list) { return list.at(m_random.bounded(int(list.size()))); }
    QString gap() { return oneIn(4) ? from(between()) : QString(); }
    QString value() { return oneIn(8) ? soup(4) : from(values()); }

    QString element(const QString& name, const QString& content)
    {
        if (content.isEmpty() && oneIn(2))
            return QStringLiteral("<%1/>").arg(name);
        if (oneIn(20))
            return QStringLiteral("<%1><%1>%2</%1>%2</%1>").arg(name, content);
        return QStringLiteral("<%1>%2</%1>").arg(name, content);
    }

    QString step()
    {
        QString text;
        for (int i = number(0, 8); i > 0; --i) {
            const QString name = from(stepNames());
            QString content;
            if (name.endsWith(QLatin1String("nFile")) || name == QLatin1String("OutFile"))
                content = file();
            else
                content = name == QLatin1String("UserAttributes") ? attributes() : value();
            text += gap() + element(name, content);
        }
        return text + gap();
    }

    QString file()
    {
        QString text;
        for (int i = number(0, 8); i > 0; --i) {
            const QString name = from(fileNames());
            const bool list = name == QLatin1String("UserAttributes");
            text += gap() + element(name, list ? attributes() : value());
        }
        return text + gap();
    }

    QString attributes()
    {
        static const QStringList names =
            QString::fromLatin1("Key Key Value Value Unit key").split(QLatin1Char(' '));
        QString text;
        for (int i = number(0, 4); i > 0; --i) {
            QString content;
            for (int j = number(0, 4); j > 0; --j)
                content += gap() + element(from(names), value());
            text += element(oneIn(10) ? value() : QStringLiteral("Attribute"), content) + gap();
        }
        return text;
    }

    QRandomGenerator& m_random;
};

} // namespace

QString randomSummary(QRandomGenerator& random)
{
    return Maker(random).document();
}

void damage(QString& text, QRandomGenerator& random)
{
    Maker maker(random);
    for (int i = maker.number(1, 3); i > 0; --i) {
        int place = maker.number(0, int(text.size()));
        if (!maker.oneIn(3)) {
            const QChar mark = maker.oneIn(2) ? QLatin1Char('<') : QLatin1Char('>');
            place = qMax(0, int(text.indexOf(mark, place)) + maker.number(-1, 1));
        }
        switch (maker.number(0, 3)) {
        case 0:
            text.remove(place, maker.number(1, 3));
            break;
        case 1:
            text.insert(place, maker.soup(2));
            break;
        case 2:
            text.insert(place, text.mid(maker.number(0, int(text.size())), maker.number(1, 40)));
            break;
        default:
            text.remove(place, maker.oneIn(4) ? text.size() : maker.number(1, 40));
        }
    }
}

QString randomTags(QRandomGenerator& random)
{
    Maker maker(random);
    const QString step = QStringLiteral("<trxchange><Workflowstep>%1</Workflowstep></trxchange>");
    return maker.oneIn(8) ? maker.soup(20) : step.arg(maker.soup(20));
}

} // namespace tresktest
