// Writes the sample documents: make_samples BASE-DIR OUTPUT-DIR

#include "maker/Samples.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSaveFile>
#include <QTextStream>

namespace {

struct Sample {
    const char* name;
    QByteArray (*make)(const samples::Workshop&);
};

const Sample allSamples[] = {
    {"report.pdf", samples::makeReport},   {"nested.pdf", samples::makeNested},
    {"names.pdf", samples::makeNames},     {"damaged.pdf", samples::makeDamaged},
    {"minimal.pdf", samples::makeMinimal},
};

bool write(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    QTextStream(stderr) << "make_samples: " << path << ": " << file.errorString() << '\n';
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Writes the sample documents."));
    parser.addHelpOption();
    const QCommandLineOption level(QStringLiteral("level"),
                                   QStringLiteral("How hard to compress, from 1 to 9."),
                                   QStringLiteral("number"), QStringLiteral("6"));
    parser.addOption(level);
    parser.addPositionalArgument(QStringLiteral("base"), QStringLiteral("Folder of base files."));
    parser.addPositionalArgument(QStringLiteral("output"), QStringLiteral("Folder to write to."));
    parser.process(application);

    const QStringList folders = parser.positionalArguments();
    const samples::Workshop workshop{QDir(folders.value(0)), parser.value(level).toInt()};
    if (folders.size() != 2 || workshop.level < 1 || workshop.level > 9)
        parser.showHelp(2);
    if (!workshop.base.exists()) {
        QTextStream(stderr) << "make_samples: " << folders.at(0) << ": no such folder\n";
        return 1;
    }

    const QDir output(folders.at(1));
    for (const Sample& sample : allSamples) {
        const QString path = output.filePath(QString::fromLatin1(sample.name));
        if (!write(path, sample.make(workshop)))
            return 1;
    }
    return 0;
}
