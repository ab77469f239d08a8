#include <tresk/tresk.h>

#include <QCoreApplication>
#include <QFile>

#include <iostream>

/// Prints what a queue signals; a class of the library is its base, so that it needs all that the
/// library has for signals and slots.
class Checksums : public tresk::LogSource {
    Q_OBJECT

public:
    void check(const QString& document)
    {
        tresk::TreskParser parser;
        if (!parser.open(document))
            return;
        QList<int> sectionIds;
        for (const tresk::SectionTag& section : parser.getSections())
            sectionIds.append(section.id);

        tresk::ValidationQueue queue(&parser, 1 << 20);
        queue.addValidatees({}, sectionIds);
        connect(&queue, &tresk::ValidationQueue::sectionProcessed, this, &Checksums::report);
        connect(&queue, SIGNAL(sectionProcessed(int, bool)), this, SLOT(reportAgain(int, bool)));
        while (queue.process()) { }
    }

private Q_SLOTS:
    void report(int id, bool valid) { std::cout << id << (valid ? " valid" : " invalid"); }
    void reportAgain(int id, bool valid)
    {
        std::cout << (valid ? " valid " : " invalid ") << id << '\n';
    }
};

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 2 || tresk::version() != QLatin1String(TRESKLIB_VERSION_STR)
        || TRESKLIB_VERSION < QT_VERSION_CHECK(1, 0, 0))
        return 2;
    Checksums().check(QFile::decodeName(argv[1]));
}

#include "main.moc"
